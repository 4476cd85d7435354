// The counters of a run. initGlobals clears them; report/summaries turns them into the return code.
#pragma once

#include <cstdint>

struct RunCounters {
    uint16_t knownHbaCount = 0;         // listed ports plus matrix matches; only the test for 0 counts
    uint16_t queryCount = 0;            // ports of a query-only run
    uint16_t queryFailCount = 0;        // those of them with invalid data
    uint16_t compatibleImageCount = 0;  // usable images that selection met
    uint16_t downloadAttemptCount = 0;  // required downloads, those without a usable image included
    uint16_t downloadFailCount = 0;     // those that failed, inherited failures included
    uint16_t boardDownloadCount = 0;    // .grp families: downloads that ran or failed before they could
    uint16_t boardFailCount = 0;        // .grp families: ports with a failed result
    uint16_t boardNoRebootCount = 0;    // .grp families: downloads in effect without a reboot
    uint16_t twiceCount = 0;            // downloads of a release that has to be downloaded twice
};

extern RunCounters runCounters;
