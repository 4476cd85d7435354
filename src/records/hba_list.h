// The list of the adapter ports, in the order of the listing.
#pragma once

#include <cstdint>

#include "records/hba_record.h"

// The list owns its records; cleanup frees them.
extern HbaRecord* gHbaList;

// Records made by allocHba. Also counts a record whose allocation failed.
extern uint16_t gHbaCount;

// Returns a new record, already linked into the list: at its tail when `append` is 1, else at its head. All of it is 0
// but adapterNumber and sfj. Returns null when memory runs out.
HbaRecord* allocHba(uint32_t append);

// Frees every record; the list is empty afterwards.
void freeHbaList();

// Counts the port in knownHbaCount. Returns 0.
int markHbaKnown();

// Traces the list.
void printHbaList();
