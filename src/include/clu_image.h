// One firmware or boot code image, in a file or on a port.
#pragma once

#include <cstdint>

inline constexpr int IMAGE_FILENAME_SIZE = 64;
inline constexpr int DECODED_VERSION_SIZE = 64;

// CLUImage::extType of a .grp file name, and of what runs on a port of a .grp family.
inline constexpr uint32_t GRP_EXTENSION_TYPE = 14;

struct CLUImage {
    uint32_t CNAMajorVer;  // the version in the form in which it is compared; a major 3 lies here as 2
    uint32_t CNAMinorVer;
    uint32_t CNAReleaseVer;
    uint32_t CNABuildVer;
    uint32_t imageType;                         // adapter family, 0 when not known
    uint32_t extType;                           // GRP_EXTENSION_TYPE, or 0
    char filename[IMAGE_FILENAME_SIZE];         // without directory; empty for an image on a port
    char decodedVersion[DECODED_VERSION_SIZE];  // the version as read; the numbers come from it, never the reverse
    uint32_t asicRevisionId;                    // port: low 8 bits of its RevID; file: 0 or B1_ASIC_REVISION
    CLUImage* next;
    CLUImage* prev;
};
