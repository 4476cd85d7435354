// What a person or a script reads of the ports and, at the end, of the run: rows, the summary of /v, the one sentence
// with the return code, the reboot advice.
#pragma once

#include "records/hba_record.h"
#include "settings/return_codes.h"

// What follows the common part of a port's row.
enum RowKind {
    ROW_PORT = 0,                // no image: boot enabled, firmware status, flash part
    ROW_SUPPORTED_IMAGE = 1,     // image, firmware status, boot enabled
    ROW_NO_SUPPORTED_IMAGE = 3,  // image, boot enabled
};

// Prints the port's row under /q, else nothing. `imageName` is shown in capitals, cut to 63 characters.
void printHbaRow(const HbaRecord* hba, const char* imageName, RowKind rowKind);

// The same, but nothing under /xml.
void printHbaRowConsole(const HbaRecord* hba, const char* imageName, RowKind rowKind);

// The port in a query-only run: its XML device under /xml, else its row.
void printQueryRow(const HbaRecord* hba, const char* imageName, RowKind rowKind);

// Writes the head of a download's row, up to "Status=", to `row`, which has the size of HbaRecord::downloadRow.
void formatDownloadRow(char* row, const HbaRecord* hba, const char* newVersion, const char* updateWord,
                       const char* oldVersion, const char* imageFile);

// Prints the port's finished download row, with the sentence on the activation that its outcome brings.
void printDownloadRow(const HbaRecord* hba);

// Says that the operation in force was not required. `what` is "firmware".
void printUpdateNotRequired(const HbaRecord* hba, const char* what);

// The summary that /v adds to a download run; nothing when no download was required.
void printSummaries();
void printDownloadSummary();

// The closing sentence. Return the run's return code.
ReturnCode reportUpdateStatus();
ReturnCode reportQueryStatus();

// The reboot advice of a download run.
void reportRebootRequired();
