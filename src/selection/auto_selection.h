// The decision for one port by the images of the firmware directory, under /auto.
#pragma once

#include "records/clu_image.h"
#include "records/hba_record.h"

// Decides, downloads the image that is due, and reports. The outcome is in the record and the counters.
void processHbaAuto(HbaRecord* hba);

// Results of isUpdateRequired; any other value is the failure status of downloadFirmware.
enum UpdateRequired { UPDATE_DOWNLOADED = 0, UPDATE_NOT_REQUIRED = 2 };

// Decides for one image, downloads it if it is due, and reports the port. Under downgrade an image that is not due is
// skipped without a report, since the walk goes on. Returns an UpdateRequired or a failure.
int isUpdateRequired(HbaRecord* hba, const CLUImage* image);
