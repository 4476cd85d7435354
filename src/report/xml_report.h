// The elements of the XML document of /xml, printed one at a time as the run learns the facts. report/port_report decides
// whether there is a document. Values from outside are made safe, so the document is well formed whatever the adapters'
// texts are.
#pragma once

#include <cstdint>

#include "records/hba_record.h"
#include "settings/return_codes.h"

// The building blocks. A level of indent is four blanks. xmlOpenTag leaves the tag open: print the attributes and ">"
// next.
void xmlIndent(int level);
void xmlOpenTag(const char* name, int level);
void xmlCloseTag(const char* name, int level);

void xmlWriteProlog();
void xmlWriteRootOpen(const char* name);
void xmlWriteRootClose(const char* name);

void xmlWriteDeviceOpen(const HbaRecord* hba);

// The whole device of a query-only run, and its two application elements.
void xmlWriteDeviceInventory(const HbaRecord* hba);
void xmlWriteApplicationRows(const HbaRecord* hba);

// The content of a device in every other run.
void xmlWriteApplicationOpen(const HbaRecord* hba);
void xmlWriteSupportedImage(const char* version, const char* file);

// Writes VersionChange followed by DownloadStatus. `status` is a PortOutcome.
void xmlWriteVersionChange(const char* update, const char* currentVersion, const char* newVersion, uint32_t status);

// The whole application element of a port that gets no image, in a download run.
void xmlWriteNoImageApplication(const HbaRecord* hba);

// The closing sentence, without its full stop. A `twiceCount` above 0 adds the advice to download a special release a
// second time.
void xmlWriteMessage(ReturnCode code, const char* sentence, uint16_t twiceCount);

// `flag` is 1 when a reboot is needed, else 0.
void xmlWriteRebootRequired(int flag, int level);
