// The decision for one port by the images of the firmware directory, under /auto.
#pragma once

#include "records/hba_record.h"

// Decides, downloads what is due, and reports. The outcome lies in the record and the counters.
void processHbaAuto(HbaRecord* hba);
