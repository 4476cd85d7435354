// The Application event log: one event for each port that selection left without a download, and the registry key that
// makes the event source known. Nothing here ends the run or changes its return code.
#pragma once

#include <cstdint>

#include "records/hba_record.h"

// HbaRecord::eventKind: which report ends a port's selection by fwmatrix.txt.
enum EventKind : uint32_t {
    EVENT_NONE = 0,
    EVENT_NO_IMAGE = 1,    // no usable entry in fwmatrix.txt
    EVENT_IMAGE_FILE = 2,  // the entry's file is missing or no image
    EVENT_NOT_REQUIRED = 3,
};

// The byte of the port's secure firmware state that events carry.
uint8_t sfjLowByte(const HbaRecord* hba);

// The reporters. `version` is what the port runs now, `status` a PortOutcome. A `sfjByte` of 0 adds the note that
// secure firmware is disabled. `fileName` is reported without its directory.
void reportNoImageEvent(const char* portWwn, const char* version, const char* reason, uint32_t status, uint8_t sfjByte);
void reportImageFileEvent(const char* portWwn, const char* version, const char* fileName, const char* reason,
                          uint32_t status, uint8_t sfjByte);
void reportNoCompatibleImageEvent(const char* portWwn, const char* version, const char* reason, uint32_t status,
                                  uint8_t sfjByte);
void reportNotRequiredEvent(const char* portWwn, const char* fileName, const char* version, const char* reason,
                            uint32_t status, uint8_t sfjByte);

// Registers the event source in the registry, with the directory of `programPath` as the place of its messages. A
// step that fails is traced, and the next one is tried. Returns 0.
int createTarnliftRegKey(const char* programPath);
