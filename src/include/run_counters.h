// What a run counts while it walks the ports. Read once, at the end, by report/summaries.
#pragma once

#include <cstdint>

struct RunCounters {
    uint16_t knownHbaCount;         // listed ports plus matrix matches; only the test for 0 counts
    uint16_t queryCount;            // ports of a query-only run
    uint16_t queryFailCount;        // those of them with invalid data
    uint16_t compatibleImageCount;  // usable images that selection met
    uint16_t downloadAttemptCount;  // required downloads, those without a usable image included
    uint16_t downloadFailCount;     // those that failed, inherited failures included
    uint16_t boardDownloadCount;    // .grp families: downloads that ran or failed before they could
    uint16_t boardFailCount;        // .grp families: ports with a failed result
    uint16_t boardNoRebootCount;    // .grp families: downloads in effect without a reboot
    uint16_t twiceCount;            // downloads of a release that has to be downloaded twice
};

extern RunCounters runCounters;
