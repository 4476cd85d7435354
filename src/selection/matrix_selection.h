// The decision for one port by fwmatrix.txt.
#pragma once

#include "records/hba_record.h"

// Decides, downloads what is due, and reports. The outcome lies in the record and the counters.
void processHbaWithFwMatrix(HbaRecord* hba);

// Sets `reason` to the fixed text that says that the operation in force was not required.
void setNotRequiredReason(const char** reason);
