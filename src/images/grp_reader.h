// Reads the 140-byte header of a .grp firmware file, which tells whether it is one, its family and its version. The body
// is never read, however large, and no file stays open between two operations.
#pragma once

#include <cstddef>

#include "records/adapter_families.h"
#include "records/clu_image.h"

enum GrpStatus {
    RM_STATUS_OK = 0,
    RM_STATUS_ERROR = 1,  // header of no family, or the version cannot be decoded
    RM_STATUS_INVALID_ARGUMENT = 4,
    RM_STATUS_NO_FIRMWARE_NAME = 6,          // the image's name was not that of a firmware file
    RM_STATUS_ERROR_INCOMP_IMAGE = 194,      // path without ".grp" or ".GRP"; internal: magic number of another family
    RM_STATUS_ERROR_SHORT_FWIMAGE = 197,     // shorter than a header
    RM_STATUS_ERROR_READING_RESOURCE = 199,  // cannot be opened or read
    RM_STATUS_OTHER_SIGNATURE = 245,         // internal: good magic number, signature of another family
};

// Who calls isValidFileExtension. It accepts no other value.
enum ImageClass { IMAGE_CLASS_SELECTION = 0, IMAGE_CLASS_SHOW_VERSION = 2 };

inline constexpr size_t GRP_BUILD_STRING_SIZE = 128;

// A header, with its words in host byte order. The first word of the file has no meaning and is skipped.
struct GrpHeader {
    uint32_t magicNumber;
    uint32_t signature;                       // the family's in the top 16 bits
    char buildString[GRP_BUILD_STRING_SIZE];  // not necessarily ended by a NUL
};

// Returns 0 and sets `extType` when the name, which may be a whole path, holds ".grp" or ".GRP" anywhere. Otherwise
// returns 1 (4 for a null argument) and sets it to 0.
int isValidFileExtension(const char* fileName, uint32_t* extType, uint32_t imageClass);

// Sets imageType and decodedVersion of an image from the file's header. Its extType must be set already. Returns a
// GrpStatus, never one of the two internal values. imageType is 0 after a failure.
int verifyFwFile(const char* path, CLUImage* image);

// The steps of verifyFwFile. `version` has DECODED_VERSION_SIZE bytes, `pSignature` gets the 16 bits of the family.
int getGRPBuildVersion(const char* path, CLUImage* image);
int getGRPBuildString(uint32_t* pSignature, const char* path, char* version);
int checkGRPExtension(const char* path);

// Reads the header and tests whether it belongs to the family.
int readGRPHeader(GrpHeader* header, const char* path, const AdapterFamily* family);

// Copies the digits and dots at the start of the build string. Returns 0, or 1 with an empty version when the build
// string has no NUL or the version does not fit.
int GetTamborBuildString(char* version, const GrpHeader* header);
