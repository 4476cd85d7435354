// Turns firmware files into images: a whole directory for /auto, one file for an entry of fwmatrix.txt, one for /iv.
#pragma once

#include "records/clu_image.h"

// The status that makeFileNameList sets.
enum CatalogueStatus { CATALOGUE_READ = 0, CATALOGUE_EMPTY = 1, CATALOGUE_NO_DIRECTORY = 6 };

// Reads the header of each firmware file of `directory`, which must end in a backslash and have fewer than 220
// characters. Returns the sorted list of the good ones, null when there is none. `status` gets a CatalogueStatus; a
// path that is refused leaves 0, an empty one leaves it alone.
CLUImage* makeFileNameList(const char* directory, uint32_t* status, uint32_t imageClass);

// Fills the zeroed `image` from one file of `directory`, for which the same limits hold. Returns 0, 1, or the GrpStatus
// of a file that is not an image.
int initFileImage(CLUImage* image, const char* directory, const char* fileName, uint32_t imageClass);

// Under /auto with an operation: fills gFirmwareImageList from firmwarePath. Returns 0, or RETURN_NO_FIRMWARE_DIRECTORY
// after its message.
int discoverAutoFirmware();

// Prints the version of the firmware file at `path`. Returns 0, or RETURN_IMAGE_VERSION after a message.
int showImageVersion(const char* path);
