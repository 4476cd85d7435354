// The work on one port.
#pragma once

#include "records/hba_record.h"

// Reports the port in a query-only run; in every other run selects an image for it, downloads it if due, and reports.
void processPort(HbaRecord* hba);
