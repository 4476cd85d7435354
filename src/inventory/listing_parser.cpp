#include "inventory/listing_parser.h"

#include <cstdlib>
#include <cstring>

#include "base/text.h"
#include "inventory/utility_runner.h"
#include "output/output.h"
#include "platform/platform.h"
#include "records/adapter_families.h"
#include "records/clu_image.h"
#include "records/fixed_words.h"
#include "records/hba_list.h"
#include "records/port_outcome.h"
#include "settings/run_options.h"
#include "settings/working_paths.h"

static constexpr char BLOCK_START[] = "HBA";
static constexpr size_t BLOCK_GAP = 2;  // the line end before the next block
static constexpr size_t VALUE_SIZE = 256;
static constexpr uint32_t ASIC_REVISION_MASK = 0xFF;
static constexpr uint32_t CSF_NOT_KNOWN = UINT32_MAX;

int getAttribute(const char* block, const char* key, char* out, size_t size, char separator) {
    const char* found = strstr(block, key);
    const char* value = found == nullptr ? nullptr : strchr(found, separator);
    if (value != nullptr) {
        value++;
        value += strspn(value, " ");
        copyPrefix(out, size, value, strcspn(value, "\n\r ,;"));
    }
    if (value == nullptr || out[0] == '\0') {
        copyText(out, size, WORD_NOT_AVAILABLE);
        return 1;
    }
    return 0;
}

static void readTextKey(const char* block, const char* key, char* out, size_t size) {
    getAttribute(block, key, out, size, ':');
}

static uint32_t readNumberKey(const char* block, const char* key, int base) {
    char value[VALUE_SIZE];
    getAttribute(block, key, value, sizeof value, ':');
    return parseUnsigned(value, base);
}

static const char* activationText(uint32_t changeStatus, uint32_t csf) {
    if (csf == CSF_NOT_KNOWN) {
        return WORD_NOT_AVAILABLE;
    }
    if (changeStatus != 0) {
        return REBOOT_TO_ACTIVATE_TEXT;
    }
    return csf != 0 ? ACTIVATED_TEXT : WORD_NOT_AVAILABLE;
}

static void readAddress(HbaRecord* hba, const char* block) {
    hba->adapterNumber = readNumberKey(block, BLOCK_START, 10);
    readTextKey(block, "Port WWN", hba->portWwn, sizeof hba->portWwn);
    upperCaseInPlace(hba->portWwn);
    hba->busNumber = readNumberKey(block, "PCI Bus Number", 16);
    hba->devNumber = readNumberKey(block, "PCI Dev Number", 16);
    hba->funNumber = readNumberKey(block, "PCI Fun Number", 16);
}

static void readModel(HbaRecord* hba, const char* block) {
    readTextKey(block, "Model", hba->model, sizeof hba->model);
    if (!runOptions.vpd) {
        hba->model[strcspn(hba->model, "-")] = '\0';
    }
    copyText(hba->fwMatrixType, sizeof hba->fwMatrixType, hba->model);
}

static void readIdentity(HbaRecord* hba, const char* block) {
    hba->deviceId = readNumberKey(block, "Device ID", 16);
    hba->vendorId = readNumberKey(block, "Vendor ID", 16);
    hba->subDeviceId = readNumberKey(block, "Sub Device ID", 16);
    hba->subVendorId = readNumberKey(block, "Sub Vendor ID", 16);
    hba->multiChannel = readNumberKey(block, "Multi Channel", 10);
    readTextKey(block, "Serial Number", hba->serialNumber, sizeof hba->serialNumber);
    upperCaseInPlace(hba->serialNumber);
    hba->vpdModel = readNumberKey(block, "VPD Model", 10);
}

static void readState(HbaRecord* hba, const char* block) {
    uint32_t revision = readNumberKey(block, "RevID", 16) & ASIC_REVISION_MASK;
    hba->fwImage.asicRevisionId = revision;
    hba->bootImage.asicRevisionId = revision;
    hba->sfj = static_cast<int32_t>(readNumberKey(block, "SFJ", 10));
    uint32_t changeStatus = readNumberKey(block, "Change Status", 10);
    uint32_t csf = readNumberKey(block, "CSF", 10);
    copyText(hba->fwStatus, sizeof hba->fwStatus, activationText(changeStatus, csf));
    readTextKey(block, "Flash Part", hba->flashPart, sizeof hba->flashPart);
}

static void readFirmwareVersion(HbaRecord* hba, const char* block) {
    readTextKey(block, "FW Version", hba->fwVersion, sizeof hba->fwVersion);
    printDbg("\n[makeHbaList]\nDiscovered fwVersion = %s\n", hba->fwVersion);
    upperCaseInPlace(hba->fwVersion);
    if (strstr(hba->fwVersion, WORD_NOT_AVAILABLE) != nullptr) {
        copyText(hba->fwVersion, sizeof hba->fwVersion, WORD_NO_VERSION);
    }
}

static void readBootVersion(HbaRecord* hba, const char* block) {
    readTextKey(block, "Boot Version", hba->bcVersion, sizeof hba->bcVersion);
    printDbg("\n[makeHbaList]\nDiscovered bcVersion = %s\n", hba->bcVersion);
    upperCaseInPlace(hba->bcVersion);
    if (strstr(hba->bcVersion, WORD_NOT_AVAILABLE) != nullptr) {
        return;
    }
    if (beginsIgnoringCase(hba->bcVersion, WORD_NONE)) {
        copyText(hba->bcVersion, sizeof hba->bcVersion, WORD_NONE);
        return;
    }
    CLUImage* boot = &hba->bootImage;
    encodeCNAVersion(&boot->CNAMajorVer, &boot->CNAMinorVer, &boot->CNAReleaseVer, &boot->CNABuildVer,
                     DECODED_VERSION_SIZE, hba->bcVersion);
    hba->bootEnabled = readNumberKey(block, "Boot Enabled", 10);
}

// The image type of a .grp adapter. The tests nest, so the latest model of a line is tried first.
static ImageType imageTypeOf(const HbaRecord* hba) {
    if (isTamborAdapter(hba)) {
        return isTamborT6Device(hba->deviceId) ? GRP_T6_IMAGE : GRP_IMAGE;
    }
    if (isCoralPlusSSecDevice(hba->deviceId)) {
        return GRP_CORAL_PLUS_S_SEC_IMAGE;
    }
    return isCoralPlusDevice(hba->deviceId) ? GRP_CORAL_PLUS_IMAGE : GRP_CORAL_IMAGE;
}

void encodeAndUpdateFCVersion(HbaRecord* hba) {
    encodeCNAVersion(&hba->CNAMajorVer, &hba->CNAMinorVer, &hba->CNAReleaseVer, &hba->CNABuildVer,
                     sizeof hba->fwVersion, hba->fwVersion);
    CLUImage* firmware = &hba->fwImage;
    if (isGrpAdapter(hba)) {
        hba->imageType = imageTypeOf(hba);
        firmware->imageType = hba->imageType;
        firmware->extType = GRP_EXTENSION_TYPE;
    }
    firmware->CNAMajorVer = hba->CNAMajorVer;
    firmware->CNAMinorVer = hba->CNAMinorVer;
    firmware->CNAReleaseVer = hba->CNAReleaseVer;
    firmware->CNABuildVer = hba->CNABuildVer;
    copyText(firmware->decodedVersion, sizeof firmware->decodedVersion, hba->fwVersion);
    copyText(hba->bootImage.decodedVersion, sizeof hba->bootImage.decodedVersion, hba->bcVersion);
}

static void readPort(HbaRecord* hba, const char* block) {
    copyText(hba->portType, sizeof hba->portType, "FC");
    readAddress(hba, block);
    readModel(hba, block);
    readIdentity(hba, block);
    readState(hba, block);
    readFirmwareVersion(hba, block);
    readBootVersion(hba, block);
    markHbaKnown();
    encodeAndUpdateFCVersion(hba);
    printDbg("\n[encodeAndUpdateFCVersion] - firmware\n");
    printCLUImage(&hba->fwImage);
}

// Makes a port from the `length` characters at `start`; skipped if out of memory.
static void addPort(const char* start, size_t length) {
    char* block = static_cast<char*>(malloc(length + 1));
    if (block == nullptr) {
        printDbg("Unable to allocate hbaBuffer of size %d\n", static_cast<int>(length + 1));
        return;
    }
    copyPrefix(block, length + 1, start, length);
    HbaRecord* hba = allocHba(1);
    if (hba != nullptr) {
        readPort(hba, block);
    }
    free(block);
}

void parseListing(const char* text) {
    gHbaCount = 0;
    const char* block = strstr(text, BLOCK_START);
    while (block != nullptr) {
        const char* next = strstr(block + strlen(BLOCK_START), BLOCK_START);
        size_t length = next == nullptr ? strlen(block) : static_cast<size_t>(next - block) - BLOCK_GAP;
        addPort(block, length);
        block = next;
    }
}

// Removes the temp file; `tag` (v0 to v3) tells in the trace where makeHbaList was.
static void removeListing(const char* tag) {
    int removal = removeFile(tempFilePath);
    if (removal != 0) {
        printDbg("makeHbaList: remove %s failed status %d\n", tag, removal);
    }
}

static int failListing(const char* tag, const char* why) {
    removeListing(tag);
    printDbg("%s", why);
    return LISTING_FAILED;
}

int makeHbaList() {
    uint16_t returnStatus = 0;
    uint32_t count = 0;
    if (executeUtilityCommandToFile(runOptions.vpd ? "listattr" : "listattr /c", &returnStatus) != 0) {
        return LISTING_FAILED;
    }
    if (getCharacterCountFromTempFile(&count) != 0) {
        return failListing("v0", "Error determing the character count\n");
    }
    char* text = static_cast<char*>(calloc(static_cast<size_t>(count) + 1, 1));
    if (text == nullptr) {
        return failListing("v1", "Could not allocate buffer space\n");
    }
    if (getBufferDataFromTempFile(text, count) != 0) {
        free(text);
        return failListing("v2", "Error filling buffer\n");
    }
    removeListing("v3");
    parseListing(text);
    free(text);
    return LISTING_READ;
}
