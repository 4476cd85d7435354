// One firmware or boot code image, in a file or on a port: the record, the encoding and order of versions, the list of
// file images, the dump.
#pragma once

#include <cstdint>

inline constexpr int IMAGE_FILENAME_SIZE = 64;
inline constexpr int DECODED_VERSION_SIZE = 64;

// CLUImage::extType of a .grp file name, and of the firmware on a port of a .grp family.
inline constexpr uint32_t GRP_EXTENSION_TYPE = 14;

struct CLUImage {
    uint32_t CNAMajorVer;  // the four numbers by which versions are compared; a major 3 is stored as 2
    uint32_t CNAMinorVer;
    uint32_t CNAReleaseVer;
    uint32_t CNABuildVer;
    uint32_t imageType;                         // adapter family, 0 when not known
    uint32_t extType;                           // GRP_EXTENSION_TYPE, or 0
    char filename[IMAGE_FILENAME_SIZE];         // without directory; empty for an image on a port
    char decodedVersion[DECODED_VERSION_SIZE];  // the version as read; the numbers are made from it, never the reverse
    uint32_t asicRevisionId;                    // port: low 8 bits of its RevID; file: 0 or the newer ASIC's revision
    CLUImage* next;
    CLUImage* prev;
};

// The images of the firmware directory in a run with /auto, else null. Owned by the list; freed by cleanup.
extern CLUImage* gFirmwareImageList;

enum VersionEncoding { VERSION_ENCODED = 0, VERSION_NOT_ENCODED = 4 };

// Reads the first four numbers of a version text; missing numbers are 0, a major 3 becomes 2. A text of `bufSize`
// characters or more is read as if cut to `bufSize` - 1. Returns VERSION_NOT_ENCODED for a null or empty text or fewer
// than four numbers.
int encodeCNAVersion(uint32_t* major, uint32_t* minor, uint32_t* release, uint32_t* build, uint32_t bufSize,
                     const char* decodedVersion);

enum ImageOrder { IMAGE_BELOW = -1, IMAGE_EQUAL = 0, IMAGE_ABOVE = 1, IMAGE_ORDER_UNKNOWN = 4 };

// Tells whether `a` orders above `b`: by family, then by version. Returns an ImageOrder, unknown when either is null.
int isGreaterCNAVersion(const CLUImage* a, const CLUImage* b);

enum FieldOrder { FIELD_LOWER = 0, FIELD_HIGHER = 1, FIELD_EQUAL = 2 };

// Compares one number of two versions. Returns a FieldOrder.
int compareVersionField(uint32_t curVersion, uint32_t testVersion);

// Returns 1 when the first version is equal to or higher than the second, else 0.
int isEqualOrHigherThanTestVersion(uint32_t majorVer, uint32_t minorVer, uint32_t releaseVer, uint32_t buildVer,
                                   uint32_t testMajorVer, uint32_t testMinorVer, uint32_t testReleaseVer,
                                   uint32_t testBuildVer);

// Links an image, whose links are null, into the list at `head`, which may be null and is in descending order. Among
// equal images the order of insertion stays. Returns the list's new head.
CLUImage* insertCLUImage(CLUImage* image, CLUImage* head);

// Frees every record of the list.
void freeCLUImageList(CLUImage* head);

// Traces.
void printCLUImage(const CLUImage* image);
void printCLUImageList(const CLUImage* head);
void printCLUImageVersion(uint32_t major, uint32_t minor, uint32_t release, uint32_t build);
void printCLUImageType(uint32_t imageType);
void printCLUImageExtType(uint32_t extType);
