#include "images/grp_reader.h"

#include <cstring>

#include "base/text.h"
#include "output/output.h"
#include "platform/platform.h"
#include "records/fixed_words.h"

static constexpr size_t GRP_HEADER_SIZE = 140;
static constexpr size_t GRP_BUILD_STRING_OFFSET = 12;

// Case matters: a.Grp is not a firmware file.
static bool holdsGrp(const char* name) {
    return strstr(name, ".GRP") != nullptr || strstr(name, ".grp") != nullptr;
}

int isValidFileExtension(const char* fileName, uint32_t* extType, uint32_t imageClass) {
    if (fileName == nullptr || extType == nullptr) {
        printDbg("[isValidFileExtension] - Invalid arguments!\n");
        return RM_STATUS_INVALID_ARGUMENT;
    }
    bool knownClass = imageClass == IMAGE_CLASS_SELECTION || imageClass == IMAGE_CLASS_SHOW_VERSION;
    bool valid = knownClass && holdsGrp(fileName);
    *extType = valid ? GRP_EXTENSION_TYPE : 0;
    return valid ? 0 : 1;
}

int verifyFwFile(const char* path, CLUImage* image) {
    if (path == nullptr || image == nullptr) {
        printDbg("[verifyFwFile] - Invalid arguments!\n");
        return RM_STATUS_INVALID_ARGUMENT;
    }
    if (image->extType != GRP_EXTENSION_TYPE) {
        image->imageType = 0;
        return RM_STATUS_NO_FIRMWARE_NAME;
    }
    return getGRPBuildVersion(path, image);
}

int getGRPBuildVersion(const char* path, CLUImage* image) {
    printDbg("\n[getGRPBuildVersion]\n");
    if (path == nullptr || image == nullptr) {
        printDbg("Invalid arguments!\n");
        return RM_STATUS_INVALID_ARGUMENT;
    }
    printDbg("Input file = %s\n", path);
    copyText(image->decodedVersion, sizeof image->decodedVersion, WORD_NO_VERSION);
    image->imageType = 0;
    uint32_t signature = 0;
    int status = getGRPBuildString(&signature, path, image->decodedVersion);
    if (status == RM_STATUS_OK) {
        image->imageType = familyOfSignature(signature)->imageType;
    }
    return status;
}

int checkGRPExtension(const char* path) {
    if (holdsGrp(path)) {
        return RM_STATUS_OK;
    }
    printDbg("RM_STATUS_ERROR_INCOMP_IMAGE - Invalid GRP image extension! Status = %d\n", RM_STATUS_ERROR_INCOMP_IMAGE);
    return RM_STATUS_ERROR_INCOMP_IMAGE;
}

static uint32_t bigEndianWord(const unsigned char* bytes) {
    return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
           static_cast<uint32_t>(bytes[2]) << 8 | bytes[3];
}

// Reads the first bytes of an open file. Does not ask for its length: a `long` of 32 bits cannot hold every length. The
// seek refuses a device, whose reader would wait for input.
static int readHeaderBytes(FILE* file, unsigned char bytes[GRP_HEADER_SIZE]) {
    if (fseek(file, 0, SEEK_SET) != 0) {
        return RM_STATUS_ERROR_READING_RESOURCE;
    }
    if (fread(bytes, GRP_HEADER_SIZE, 1, file) == 1) {
        return RM_STATUS_OK;
    }
    return ferror(file) != 0 ? RM_STATUS_ERROR_READING_RESOURCE : RM_STATUS_ERROR_SHORT_FWIMAGE;
}

int readGRPHeader(GrpHeader* header, const char* path, const AdapterFamily* family) {
    unsigned char bytes[GRP_HEADER_SIZE] = {};
    FILE* file = openFile(path, OPEN_READ_BINARY);
    if (file == nullptr) {
        return RM_STATUS_ERROR_READING_RESOURCE;
    }
    int status = readHeaderBytes(file, bytes);
    fclose(file);
    if (status != RM_STATUS_OK) {
        return status;
    }
    header->magicNumber = bigEndianWord(bytes + 4);
    header->signature = bigEndianWord(bytes + 8);
    memcpy(header->buildString, bytes + GRP_BUILD_STRING_OFFSET, sizeof header->buildString);
    for (uint32_t magicNumber : family->magicNumbers) {
        if (magicNumber != 0 && magicNumber == header->magicNumber) {
            return header->signature >> 16 == family->signature ? RM_STATUS_OK : RM_STATUS_OTHER_SIGNATURE;
        }
    }
    return RM_STATUS_ERROR_INCOMP_IMAGE;
}

int GetTamborBuildString(char* version, const GrpHeader* header) {
    int status = RM_STATUS_OK;
    size_t length = 0;
    if (memchr(header->buildString, '\0', sizeof header->buildString) == nullptr) {
        status = RM_STATUS_ERROR;
    } else {
        length = strspn(header->buildString, "0123456789.");
    }
    if (length >= DECODED_VERSION_SIZE) {
        status = RM_STATUS_ERROR;
        length = 0;
    }
    copyPrefix(version, DECODED_VERSION_SIZE, header->buildString, length);
    printDbg("GRP GetTamborBuildString = %s\n", version);
    return status;
}

static int decodeGoodHeader(const GrpHeader* header, uint32_t* pSignature, char* version) {
    *pSignature = header->signature >> 16;
    printDbg("RM_STATUS_OK - Firmware file GRP Header magic number is OK = %X\n", header->magicNumber);
    printDbg("RM_STATUS_OK - Firmware file GRP Header signature is OK    = %X\n", header->signature);
    printDbg("RM_STATUS_OK - Firmware file GRP Header pSignature is OK   = %X\n", *pSignature);
    if (GetTamborBuildString(version, header) != 0) {
        printDbg("RM_STATUS_ERROR - Firmware file GRP Header version decode bad.\n");
        return RM_STATUS_ERROR;
    }
    printDbg("Build version  = %s\n", version);
    return RM_STATUS_OK;
}

// Traces what is wrong with a header of no family. The trace knows the first magic number of each family only.
static void printBadHeader(const GrpHeader* header) {
    bool knownMagicNumber = false;
    for (const AdapterFamily& family : adapterFamilies) {
        knownMagicNumber =
            knownMagicNumber || (family.magicNumbers[0] != 0 && family.magicNumbers[0] == header->magicNumber);
    }
    if (!knownMagicNumber) {
        printDbg("RM_STATUS_ERROR - Firmware file GRP Header magic number bad = %X\n", header->magicNumber);
    }
    if (familyOfSignature(header->signature >> 16) == nullptr) {
        printDbg("RM_STATUS_ERROR - Firmware file GRP Header signature bad    = %X\n", header->signature);
    }
}

int getGRPBuildString(uint32_t* pSignature, const char* path, char* version) {
    printDbg("\n[getGRPBuildString]\n");
    if (checkGRPExtension(path) != RM_STATUS_OK) {
        printDbg("Invalid GRP Image! Not a Tambor Image!\n");
        return RM_STATUS_ERROR_INCOMP_IMAGE;
    }
    GrpHeader header = {};
    int status = RM_STATUS_ERROR;
    for (const AdapterFamily& family : adapterFamilies) {
        if (family.signature != 0) {
            status = readGRPHeader(&header, path, &family);
        }
        if (status == RM_STATUS_OK) {
            return decodeGoodHeader(&header, pSignature, version);
        }
    }
    switch (status) {
    case RM_STATUS_ERROR_READING_RESOURCE:
        printDbg("RM_STATUS_ERROR_READING_RESOURCE - Unable to open ifstream! Status = %d\n", status);
        return status;
    case RM_STATUS_ERROR_SHORT_FWIMAGE:
        printDbg("RM_STATUS_ERROR_SHORT_FWIMAGE - GRP fileLength is smaller than the GRP header length! Status = %d\n",
                 status);
        return status;
    default:
        printBadHeader(&header);
        return RM_STATUS_ERROR;
    }
}
