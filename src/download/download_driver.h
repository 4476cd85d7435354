// The one place at which firmware is written: has the adapter utility download an image, and turns its reply into the
// port's outcome. The ports of a board share one download.
#pragma once

#include <cstddef>

#include "records/hba_record.h"

inline constexpr size_t DOWNLOAD_COMMAND_SIZE = 508;

// Downloads the image for the port's board, or reports the result of an earlier download for the board. Writes the
// port's outcome, its row, the counters and the report. Returns 0 when the port counts as done, 1 when it failed.
int executeFwDownload(HbaRecord* hba, const CLUImage* image);

// The name by which selection starts a download. Returns what executeFwDownload returns.
int downloadFirmware(HbaRecord* hba, const CLUImage* image);

// Writes the utility's arguments for a download to `out`, which has DOWNLOAD_COMMAND_SIZE bytes.
void makeDownloadCommand(const HbaRecord* hba, const char* filename, char* out);

// Copies the port's result to every port of its board.
void updateCNAdownloadStatus(const HbaRecord* hba);
