#include "images/version_rules.h"

#include "output/output.h"
#include "records/adapter_families.h"
#include "records/clu_image.h"
#include "settings/run_options.h"

int isValidCNAImageType(uint32_t imageType) {
    return familyOfImageType(imageType) != nullptr ? 1 : 0;
}

int isUpdateNeededCNA(const CLUImage* current, const CLUImage* candidate, int sameVersionCounts) {
    if (current == nullptr || candidate == nullptr) {
        printDbg("[isUpdateNeededCNA] - Invalid arguments!\n");
        return UPDATE_INVALID_ARGUMENT;
    }
    if (!isValidCNAImageType(candidate->imageType) && !isValidCNAImageType(current->imageType)) {
        printDbg("[isUpdateNeededCNA] - ERROR: Invalid image type!\n");
        return UPDATE_INVALID_ARGUMENT;
    }
    int order = isGreaterCNAVersion(candidate, current);
    return order == IMAGE_ABOVE || (order == IMAGE_EQUAL && sameVersionCounts == 1) ? UPDATE_NEEDED : UPDATE_NOT_NEEDED;
}

int isUpdateNeeded(const CLUImage* current, const CLUImage* candidate) {
    int sameVersionCounts = runOptions.rewrite || runOptions.downgrade ? 1 : 0;
    return isUpdateNeededCNA(current, candidate, sameVersionCounts);
}

bool isDownloadDue(const CLUImage* current, const CLUImage* candidate) {
    bool needed = isUpdateNeeded(current, candidate) != UPDATE_NOT_NEEDED;
    if (runOptions.downgrade) {
        needed = !needed;
    }
    bool operation = runOptions.update || runOptions.rewrite || runOptions.downgrade;
    return runOptions.forceFw || (operation && needed);
}

int isB1Adapter(const HbaRecord* hba) {
    const AdapterFamily* family = familyOfDevice(hba->deviceId);
    bool hasNewerAsic = family != nullptr && family->newerAsic.revision != 0;
    return hasNewerAsic && hba->fwImage.asicRevisionId >= family->newerAsic.revision ? 1 : 0;
}

int isCompatibleImage(const HbaRecord* hba, const CLUImage* image) {
    printDbg("\n[isCompatibleImage]\n");
    printDbg("Evaluating newFileImage = %s", image->decodedVersion);
    bool compatible = image->imageType == hba->imageType &&
                      !(isB1Adapter(hba) && image->asicRevisionId < hba->fwImage.asicRevisionId);
    printDbg("[isCompatibleImage] returnStatus = %d\n", compatible ? 1 : 0);
    return compatible ? 1 : 0;
}

CLUImage* getFirstB1FwMatch(const HbaRecord* hba, CLUImage* head) {
    printDbg("\n[getFirstB1FwMatch]\n");
    if (hba == nullptr) {
        return nullptr;
    }
    for (CLUImage* image = head; image != nullptr; image = image->next) {
        if (image->imageType == hba->fwImage.imageType && image->asicRevisionId >= hba->fwImage.asicRevisionId) {
            printDbg("Found a compatible image\n");
            printDbg("imageType      = %d\n", image->imageType);
            printDbg("decodedVersion = %s\n", image->decodedVersion);
            printDbg("asicRevisionId = 0x%x\n\n", image->asicRevisionId);
            return image;
        }
    }
    return nullptr;
}

CLUImage* getFirstFwMatch(uint32_t imageType, CLUImage* head) {
    CLUImage* image = head;
    while (image != nullptr && image->imageType != imageType) {
        image = image->next;
    }
    return image;
}
