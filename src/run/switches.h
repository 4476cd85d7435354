// The command line: fills runOptions, opens the two output files that switches ask for, rejects
// combinations that are not allowed.
#pragma once

#include "settings/run_options.h"

// Parses the arguments after argv[0] into runOptions, which initGlobals has cleared. Returns 0, or RETURN_COMMAND_LINE
// after a message; the caller prints the help when the result is not 0 or runOptions.help is set. argv is modified:
// an argument may be cut at its first "=".
int parseCommandLine(int argc, char** argv);

// Returns 1 when the combination of switches is acceptable, else 0 after one line with the reason. /ff clears the
// operations that it overrides.
int validateSwitches();

// Traces the flags.
void printSwitches();

// Sets ramDriveLetter from the system drive.
void setDefaultRamDrive();
