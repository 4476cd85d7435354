// The list of the adapter ports, in the order of the listing, and the tests on one port.
#pragma once

#include <cstdint>

#include "records/hba_record.h"

// The list owns its records; run/cleanup frees them.
extern HbaRecord* gHbaList;

// Records made by allocHba. One too high after a record for which there was no memory.
extern uint16_t gHbaCount;

// Returns a new record, which already stands in the list: at its tail when `append` is 1, else at its head. All of it
// is 0 but for adapterNumber and sfj. Returns null when memory runs out.
HbaRecord* allocHba(uint32_t append);

// Frees every record; the list is empty afterwards.
void freeHbaList();

// Counts the port in knownHbaCount. Returns 0.
int markHbaKnown();

// Returns 1 when the port's data are unusable, else 0.
int isInvalidHba(const HbaRecord* hba);

// Returns 1 when the port's firmware comes in .grp files, so that its board shares one download, else 0.
int isGrpAdapter(const HbaRecord* hba);

// Returns 1 when the two ports sit on one board, else 0.
int isSameBoard(const HbaRecord* a, const HbaRecord* b);

// Traces the list.
void printHbaList();
