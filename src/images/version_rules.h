// The rules for one port and one image: may it go on the port, is a download due, which image of several is the one.
#pragma once

#include "records/hba_record.h"

// Results of isUpdateRequired; any other value is the failure status of downloadFirmware.
enum UpdateRequired { UPDATE_DOWNLOADED = 0, UPDATE_NOT_REQUIRED = 2 };

// Returns 1 when `imageType` is that of a family, else 0.
int isValidCNAImageType(uint32_t imageType);

// Returns 1 when `candidate` is newer than `current`, or equal to it and `sameVersionCounts` is 1; else 0. Returns 4
// when one is null or both are of no family. An image of a higher family counts as newer, whatever its version.
int isUpdateNeededCNA(const CLUImage* current, const CLUImage* candidate, int sameVersionCounts);

// The same by the operation in force: an equal version counts under rewrite and downgrade.
int isUpdateNeeded(const CLUImage* current, const CLUImage* candidate);

// Returns 1 when the operation in force calls for downloading `candidate` over `current`, else 0.
int isDownloadDue(const CLUImage* current, const CLUImage* candidate);

// Returns 1 for a port of the family's second ASIC revision, which refuses older images, else 0.
int isB1Adapter(const HbaRecord* hba);

// Returns 1 when the image may go on the port, else 0.
int isCompatibleImage(const HbaRecord* hba, const CLUImage* image);

// The first image of the sorted list, so the highest, that fits; null when none does.
CLUImage* getFirstB1FwMatch(const HbaRecord* hba, CLUImage* head);
CLUImage* getFirstFwMatch(uint32_t imageType, CLUImage* head);

// Decides for one image under /auto, downloads it when it is due, and reports the port; under downgrade an image that
// is not due is passed over without a report, since the walk goes on. Returns an UpdateRequired or a failure.
int isUpdateRequired(HbaRecord* hba, const CLUImage* image);
