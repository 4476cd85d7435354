// The decision for one port by fwmatrix.txt.
#pragma once

#include "records/hba_record.h"

// Decides, downloads the image that is due, and reports. The outcome is in the record and the counters.
void processHbaWithFwMatrix(HbaRecord* hba);

// Sets `reason` to the fixed text for a selected operation that is not required.
void setNotRequiredReason(const char** reason);
