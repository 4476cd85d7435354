// Images (include/clu_image.h): the encoding and the order of versions, the sorted list of file images, the dump.
#pragma once

#include "include/clu_image.h"

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
