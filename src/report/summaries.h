// The end of a run: the summary of /v, and the counters turned into one sentence, the return code and the reboot advice.
#pragma once

#include "settings/return_codes.h"

// The summary that /v adds to a download run; nothing when no download was required.
void printSummaries();
void printDownloadSummary();

// Report the closing sentence. Return the run's return code.
ReturnCode reportUpdateStatus();
ReturnCode reportQueryStatus();

// Reports whether the downloads of the run need a reboot.
void reportRebootRequired();
