// The command line: fills runOptions, opens the two output files that switches ask for, refuses what does not go
// together.
#pragma once

#include "settings/run_options.h"

// Parses the arguments behind argv[0] into runOptions, which initGlobals has cleared. Returns 0, or RETURN_COMMAND_LINE
// after a message; the caller prints the help when the result is not 0 or runOptions.help is set. It may cut an argument
// at its first "=".
int parseCommandLine(int argc, char** argv);

// Returns 1 when the combination of switches is acceptable, else 0 after one line that says why. /ff clears the
// operations that it beats.
int validateSwitches();

// Traces the flags.
void printSwitches();

// Takes ramDriveLetter from the system drive.
void setDefaultRamDrive();
