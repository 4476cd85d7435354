#include "images/version_rules.h"

#include "download/download_driver.h"
#include "output/output.h"
#include "records/adapter_families.h"
#include "records/clu_image.h"
#include "records/port_outcome.h"
#include "report/summaries.h"
#include "report/xml_report.h"
#include "settings/run_options.h"

static constexpr int INVALID_ARGUMENT = 4;

int isValidCNAImageType(uint32_t imageType) {
    return familyOfImageType(imageType) != nullptr ? 1 : 0;
}

int isUpdateNeededCNA(const CLUImage* current, const CLUImage* candidate, int sameVersionCounts) {
    if (current == nullptr || candidate == nullptr) {
        printDbg("[isUpdateNeededCNA] - Invalid arguments!\n");
        return INVALID_ARGUMENT;
    }
    if (!isValidCNAImageType(candidate->imageType) && !isValidCNAImageType(current->imageType)) {
        printDbg("[isUpdateNeededCNA] - ERROR: Invalid image type!\n");
        return INVALID_ARGUMENT;
    }
    int order = isGreaterCNAVersion(candidate, current);
    return order > 0 || (order == 0 && sameVersionCounts == 1) ? 1 : 0;
}

int isUpdateNeeded(const CLUImage* current, const CLUImage* candidate) {
    int sameVersionCounts = runOptions.rewrite || runOptions.downgrade ? 1 : 0;
    return isUpdateNeededCNA(current, candidate, sameVersionCounts);
}

int isDownloadDue(const CLUImage* current, const CLUImage* candidate) {
    bool needed = isUpdateNeeded(current, candidate) != 0;
    if (runOptions.downgrade) {
        needed = !needed;
    }
    bool operation = runOptions.update || runOptions.rewrite || runOptions.downgrade;
    return runOptions.forceFw || (operation && needed) ? 1 : 0;
}

int isB1Adapter(const HbaRecord* hba) {
    return hba->deviceId == B1_DEVICE_ID && hba->fwImage.asicRevisionId >= B1_ASIC_REVISION ? 1 : 0;
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

// Shows the image that was looked at for the port.
static void reportSupportedImage(HbaRecord* hba, const CLUImage* image) {
    if (runOptions.xml) {
        xmlWriteSupportedImage(image->decodedVersion, image->filename);
    } else {
        printHbaRowConsole(hba, image->filename, ROW_SUPPORTED_IMAGE);
    }
}

int isUpdateRequired(HbaRecord* hba, const CLUImage* image) {
    if (isDownloadDue(&hba->fwImage, image)) {
        printDbg("update needed = true\n");
        reportSupportedImage(hba, image);
        return downloadFirmware(hba, image);
    }
    hba->fwDownloadStatus = OUTCOME_NOT_NEEDED;
    if (runOptions.downgrade) {
        return UPDATE_NOT_REQUIRED;
    }
    printDbg("update needed = false\n");
    if (runOptions.update || runOptions.rewrite) {
        reportSupportedImage(hba, image);
        if (runOptions.xml) {
            xmlWriteVersionChange("false", hba->fwVersion, image->decodedVersion, OUTCOME_NOT_NEEDED);
        }
    }
    if (runOptions.verbose) {
        printUpdateNotRequired(hba, "firmware");
    }
    return UPDATE_NOT_REQUIRED;
}
