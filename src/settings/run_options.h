// The one record of switch flags and values. Only run/switches writes it.
#pragma once

#include <cstdint>

inline constexpr int DIRECTORY_SWITCH_SIZE = 220;
inline constexpr int IMAGE_VERSION_FILE_SIZE = 255;

// Flags are 0 or 1. A text longer than its field is cut.
struct RunOptions {
    int autoSelect;  // /auto (`auto` is a keyword)
    int dbgLog;      // /xv: dbg.log was asked for; see dbgFile for whether it opened
    int downgrade;
    int forceFw;
    int help;
    int imageVersion;  // /iv: show imageVersionFile's version and stop
    int preview;       // nothing is written to an adapter
    int query;
    int ramDrive;  // the temp file goes to the root of ramDriveLetter
    int rewrite;
    int update;
    int verbose;
    int silent;  // no standard output
    int xml;
    int vpd;                     // show the VPD model name
    uint16_t downloadRequested;  // derived: this run writes firmware
    char ramDriveLetter;         // as typed, unchecked; 0 when unset
    char imageDir[DIRECTORY_SWITCH_SIZE];
    char fwMatrixDir[DIRECTORY_SWITCH_SIZE];
    char imageVersionFile[IMAGE_VERSION_FILE_SIZE];
};

extern RunOptions runOptions;

// True when the run only lists the ports.
bool isQueryOnly();

// True when update, downgrade, rewrite or forceFw is set.
bool isDownloadRun();

// True when isDownloadRun() or autoSelect holds.
bool isAutoOrDownloadRun();
