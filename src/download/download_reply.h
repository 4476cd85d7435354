// What the utility's reply to a download means for the port, and for the later ports of its board.
#pragma once

#include "records/port_outcome.h"
#include "records/run_counters.h"

inline constexpr int ANY_EXIT_STATUS = -1;

// The text of a reply decides between success and failure, the exit status decides which kind.
struct ReplyMeaning {
    bool noError;  // the reply holds "NO Error"
    int exitStatus;
    BoardResult boardResult;
    PortOutcome outcome;
    uint16_t RunCounters::*boardCounter;  // counted for ports of a .grp family; null for none
};

// The meaning of a reply. With ANY_EXIT_STATUS it is the plain success or failure.
const ReplyMeaning& meaningOfReply(bool noError, int exitStatus);

// True for the outcome of a failure that an exit status of its own names.
bool isNamedFailure(uint8_t outcome);

// What a later port of a board reports.
struct InheritedResult {
    BoardResult boardResult;
    PortOutcome outcome;
    bool succeeded;
};

// The result to report for a board's `downloadStat`, a BoardResult; any other value counts as a failure.
const InheritedResult& inheritedResult(uint32_t downloadStat);
