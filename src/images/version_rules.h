// The rules for one port and one image: is it allowed on the port, is a download due, and which of several images is
// chosen.
#pragma once

#include "records/hba_record.h"

// Results of isUpdateNeededCNA and isUpdateNeeded.
enum UpdateNeeded { UPDATE_NOT_NEEDED = 0, UPDATE_NEEDED = 1, UPDATE_INVALID_ARGUMENT = 4 };

// Returns 1 when `imageType` is that of a family, else 0.
int isValidCNAImageType(uint32_t imageType);

// Tells whether `candidate` is newer than `current`, or equal to it and `sameVersionCounts` is 1. An image of a higher
// family counts as newer, whatever its version. Returns an UpdateNeeded, UPDATE_INVALID_ARGUMENT when either is null or
// both are of no family.
int isUpdateNeededCNA(const CLUImage* current, const CLUImage* candidate, int sameVersionCounts);

// The same for the selected operation: an equal version counts under rewrite and downgrade. Under downgrade the caller
// inverts the result, so that counting it there keeps an equal version from being downloaded.
int isUpdateNeeded(const CLUImage* current, const CLUImage* candidate);

// True when the selected operation calls for downloading `candidate` over `current`.
bool isDownloadDue(const CLUImage* current, const CLUImage* candidate);

// Returns 1 for a port with the newer ASIC revision of its family, which refuses older images, else 0.
int isB1Adapter(const HbaRecord* hba);

// Returns 1 when the image may go on the port, else 0.
int isCompatibleImage(const HbaRecord* hba, const CLUImage* image);

// The first, and so the highest, image of the sorted list that fits the port or is of the family; null when there is none.
CLUImage* getFirstB1FwMatch(const HbaRecord* hba, CLUImage* head);
CLUImage* getFirstFwMatch(uint32_t imageType, CLUImage* head);
