// One firmware or boot code image, in a file or on a port: its record, the encoding and the order of versions, the list
// of file images, the dump.
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

// The images of the firmware directory in a run with /auto, else null. Owned by the list; freed by run/cleanup.
extern CLUImage* gFirmwareImageList;

// Reads the first four numbers of a version text; what is missing is 0, a major 3 becomes 2. A text of `bufSize`
// characters or more is read as if cut to `bufSize` - 1. Returns 0, or 4 for bad arguments or fewer than four numbers.
int encodeCNAVersion(uint32_t* major, uint32_t* minor, uint32_t* release, uint32_t* build, uint32_t bufSize,
                     const char* decodedVersion);

// Orders by family, then version: 1 when `a` is above `b`, 0 when equal, -1 when below, 4 when either is null.
int isGreaterCNAVersion(const CLUImage* a, const CLUImage* b);

// Returns 0 when `curVersion` is smaller, 1 when it is larger, 2 when they are equal.
int compareVersionField(uint32_t curVersion, uint32_t testVersion);

// Returns 1 when the first version is equal to or higher than the second, else 0.
int isEqualOrHigherThanTestVersion(uint32_t majorVer, uint32_t minorVer, uint32_t releaseVer, uint32_t buildVer,
                                   uint32_t testMajorVer, uint32_t testMinorVer, uint32_t testReleaseVer,
                                   uint32_t testBuildVer);

// Brings a list, of which only the links forward count, into descending order; images that are equal keep their order.
// Returns the list's new head. Takes n log n steps.
CLUImage* sortCLUImageList(CLUImage* head);

// Frees every record of the list.
void freeCLUImageList(CLUImage* head);

// Traces.
void printCLUImage(const CLUImage* image);
void printCLUImageList(const CLUImage* head);
void printCLUImageVersion(uint32_t major, uint32_t minor, uint32_t release, uint32_t build);
void printCLUImageType(uint32_t imageType);
void printCLUImageExtType(uint32_t extType);
