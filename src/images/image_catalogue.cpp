#include "images/image_catalogue.h"

#include <cstdlib>
#include <cstring>

#include "base/text.h"
#include "images/grp_reader.h"
#include "output/output.h"
#include "platform/platform.h"
#include "records/adapter_families.h"
#include "records/clu_image.h"
#include "settings/program_names.h"
#include "settings/run_options.h"
#include "settings/working_paths.h"

static constexpr size_t DIRECTORY_LIMIT = 220;  // characters; a path that reaches it is refused
static constexpr size_t IMAGE_PATH_SIZE = DIRECTORY_LIMIT - 1 + IMAGE_FILENAME_SIZE;

// The reason why a directory path is refused, null if it is not.
static const char* directoryFault(const char* directory) {
    size_t length = strlen(directory);
    if (length == 0) {
        return "Directory path is null!";
    }
    if (length >= DIRECTORY_LIMIT) {
        return "Directory path is too long!";
    }
    return directory[length - 1] == '\\' ? nullptr : "Directory path does not include trailing \\";
}

// True when the image runs on the newer ASIC revision of its family.
static bool runsOnNewerAsic(const CLUImage* image, const NewerAsic* asic) {
    const uint32_t* lowest = asic->lowestVersion;
    return asic->revision != 0 &&
           isEqualOrHigherThanTestVersion(image->CNAMajorVer, image->CNAMinorVer, image->CNAReleaseVer,
                                          image->CNABuildVer, lowest[0], lowest[1], lowest[2], lowest[3]) != 0;
}

// Derives the version numbers and the ASIC revision from the header of a verified image.
static void completeImage(CLUImage* image, const char* fileName) {
    copyText(image->filename, sizeof image->filename, fileName);
    encodeCNAVersion(&image->CNAMajorVer, &image->CNAMinorVer, &image->CNAReleaseVer, &image->CNABuildVer,
                     sizeof image->decodedVersion, image->decodedVersion);
    const AdapterFamily* family = familyOfImageType(image->imageType);
    if (family != nullptr && runsOnNewerAsic(image, &family->newerAsic)) {
        image->asicRevisionId = family->newerAsic.revision;
    }
    // initFileImage traces under this name, too: readers of the trace expect it.
    printDbg("\n[makeFileNameList] asicRevisionId = 0x%x\n", image->asicRevisionId);
}

// Inserts a verified image as a record of its own; skipped if out of memory. Returns the list's head.
static CLUImage* addToList(CLUImage* head, const CLUImage* verified, const char* fileName) {
    CLUImage* image = static_cast<CLUImage*>(malloc(sizeof(CLUImage)));
    if (image == nullptr) {
        return head;
    }
    *image = *verified;
    completeImage(image, fileName);
    return insertCLUImage(image, head);
}

// Reads the header of one entry of the directory. Returns true when it is a firmware image.
static bool verifyEntry(const char* directory, const DirectoryEntry* entry, uint32_t imageClass, CLUImage* image) {
    if (entry->isDirectory) {
        return false;
    }
    *image = {};
    if (isValidFileExtension(entry->name, &image->extType, imageClass) != 0 ||
        strlen(entry->name) >= IMAGE_FILENAME_SIZE) {
        printDbg("\n[makeFileNameList] - Skipping invalid file = %s\n\n", entry->name);
        return false;
    }
    char path[IMAGE_PATH_SIZE];
    formatText(path, sizeof path, "%s%s", directory, entry->name);
    return verifyFwFile(path, image) == RM_STATUS_OK;
}

CLUImage* makeFileNameList(const char* directory, uint32_t* status, uint32_t imageClass) {
    if (directory == nullptr || status == nullptr) {
        printDbg("\n[makeFileNameList] - Invalid arguments!\n");
        return nullptr;
    }
    if (directory[0] != '\0') {
        *status = CATALOGUE_READ;
    }
    const char* fault = directoryFault(directory);
    if (fault != nullptr) {
        printDbg("\n[makeFileNameList] - %s\n", fault);
        return nullptr;
    }
    char pattern[DIRECTORY_LIMIT + 1];
    formatText(pattern, sizeof pattern, "%s*", directory);
    DirectoryEntry entry;
    DirectorySearch* search = openDirectorySearch(pattern, &entry);
    if (search == nullptr) {
        *status = CATALOGUE_NO_DIRECTORY;
        return nullptr;
    }
    CLUImage* head = nullptr;
    *status = CATALOGUE_EMPTY;
    do {
        CLUImage image;
        if (verifyEntry(directory, &entry, imageClass, &image)) {
            *status = CATALOGUE_READ;
            head = addToList(head, &image, entry.name);
        }
    } while (nextDirectoryEntry(search, &entry));
    closeDirectorySearch(search);
    return head;
}

int initFileImage(CLUImage* image, const char* directory, const char* fileName, uint32_t imageClass) {
    const char* fault = directoryFault(directory);
    if (fault != nullptr) {
        printDbg("[initFileImage] - %s\n", fault);
        return 1;
    }
    if (isValidFileExtension(fileName, &image->extType, imageClass) != 0) {
        printDbg("ERROR: [initFileImage] - Skipping invalid file = %s\n", fileName);
        return 1;
    }
    char path[IMAGE_PATH_SIZE];
    formatText(path, sizeof path, "%s%s", directory, fileName);
    int status = verifyFwFile(path, image);
    if (status == RM_STATUS_OK) {
        completeImage(image, fileName);
    }
    return status;
}

int discoverAutoFirmware() {
    if (!runOptions.autoSelect || !isDownloadRun()) {
        return RETURN_SUCCEEDED;
    }
    uint32_t status = CATALOGUE_READ;
    printDbg("\n[Auto Firmware Discovery]\n");
    gFirmwareImageList = makeFileNameList(firmwarePath, &status, IMAGE_CLASS_SELECTION);
    if (status == CATALOGUE_NO_DIRECTORY) {
        return printEndingError(RETURN_NO_FIRMWARE_DIRECTORY, "the firmware subdirectory was not found");
    }
    printDbg("\n[Firmware List]\n");
    printCLUImageList(gFirmwareImageList);
    return RETURN_SUCCEEDED;
}

int showImageVersion(const char* path) {
    CLUImage image = {};
    const char* fault = nullptr;
    if (isValidFileExtension(path, &image.extType, IMAGE_CLASS_SHOW_VERSION) != 0) {
        fault = "Unknown image file type";
    } else if (verifyFwFile(path, &image) != RM_STATUS_OK) {
        fault = "Unable to decode the image version";
    }
    if (fault != nullptr) {
        printOut("\n%s: Error - %s - Return Code=%d\n", appName, fault, RETURN_IMAGE_VERSION);
        return RETURN_IMAGE_VERSION;
    }
    printOut("%s", image.decodedVersion);
    return RETURN_SUCCEEDED;
}
