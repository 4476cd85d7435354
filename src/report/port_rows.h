// The rows of a port on the console: its facts, and how its download ended.
#pragma once

#include "records/hba_record.h"

// What follows the common part of a port's row.
enum RowKind {
    ROW_PORT = 0,                // no image: boot enabled, firmware status, flash part
    ROW_SUPPORTED_IMAGE = 1,     // image, firmware status, boot enabled
    ROW_NO_SUPPORTED_IMAGE = 3,  // image, boot enabled
};

// Prints the port's row under /q, else nothing. `imageName` is shown in capitals, cut to 63 characters.
void printHbaRow(const HbaRecord* hba, const char* imageName, RowKind rowKind);

// Writes the head of a download's row, up to "Status=", to `row`, which has the size of HbaRecord::downloadRow.
void formatDownloadRow(char* row, const HbaRecord* hba, const char* newVersion, const char* updateWord,
                       const char* oldVersion, const char* imageFile);

// Prints the port's finished download row, with the sentence on activation that belongs to its outcome.
void printDownloadRow(const HbaRecord* hba);

// Prints that the selected operation was not required, or nothing under /ff. `what` is "firmware".
void printUpdateNotRequired(const HbaRecord* hba, const char* what);
