// How tarnfleet ends.
#pragma once

namespace fleet {

enum ExitCode : int {
    EXIT_ALL_WELL = 0,    // nothing failed and nothing is missing
    EXIT_UNFINISHED = 1,  // something waits or is not verified
    EXIT_ATTENTION = 2,   // something failed, is not installed or is missing
    EXIT_NOT_DONE = 3,    // the command could not be carried out
    // For a command's function only, after its message on standard error: main adds the command's help, and the
    // process ends with EXIT_NOT_DONE.
    EXIT_WRONG_ARGUMENTS = 4,
};

}  // namespace fleet
