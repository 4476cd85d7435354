// The one place at which firmware is written: has the adapter utility download an image, and turns its reply into the
// port's outcome. The ports of a board share one download.
#pragma once

#include <cstddef>

#include "download/download_status.h"
#include "include/hba_record.h"
#include "include/run_counters.h"

inline constexpr size_t DOWNLOAD_COMMAND_SIZE = 508;

// What a reply of the utility means. `exitStatus` is ANY_EXIT_STATUS in the row for all that has none of its own.
struct ReplyMeaning {
    bool noError;  // the reply holds "NO Error"
    int exitStatus;
    BoardResult boardResult;
    PortOutcome outcome;
    uint16_t RunCounters::*boardCounter;  // counted for ports of a .grp family; null for none
};

inline constexpr int ANY_EXIT_STATUS = -1;

// Returns the meaning of a reply; never null.
const ReplyMeaning* meaningOfReply(bool noError, int exitStatus);

// Downloads the image for the port's board, or reports what an earlier download for the board brought. The port's
// outcome, its row, the counters and the report are written. Returns 0 when the port counts as done, 1 when it failed.
int executeFwDownload(HbaRecord* hba, const CLUImage* image);

// The name by which selection starts a download. Returns what executeFwDownload returns.
int downloadFirmware(HbaRecord* hba, const CLUImage* image);

// Writes the utility's arguments for a download to `out`, which has DOWNLOAD_COMMAND_SIZE bytes.
void makeDownloadCommand(const HbaRecord* hba, const char* filename, char* out);
