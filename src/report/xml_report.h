// The XML report of /xml: a stream of prints, one element at a time, in the order in which the run learns the facts.
// Every writer but xmlWriteVersionChange does nothing without /xml. Values from outside are made safe, so that the
// document is well formed whatever the adapters say.
#pragma once

#include <cstdint>

#include "records/hba_record.h"

// The building pieces. A level of indent is four blanks; an open tag ends in a blank, its attributes must follow.
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

// What lies in a device of every other run.
void xmlWriteApplicationOpen(const HbaRecord* hba);
void xmlWriteSupportedImage(const char* version, const char* file);

// Writes VersionChange and, always with it, DownloadStatus. `status` is a PortOutcome. Call it only under /xml.
void xmlWriteVersionChange(const char* update, const char* currentVersion, const char* newVersion, uint32_t status);

// The whole application element of a port that gets no image, in a download run.
void xmlWriteNoImageApplication(const HbaRecord* hba);

// `flag` is 1 when a reboot is called for, else 0.
void xmlWriteRebootRequired(int flag, int level);
