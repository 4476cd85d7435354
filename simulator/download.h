// The download command: whether the image fits the port, what the utility answers, what changes on the board.
#pragma once

#include <cstdint>
#include <string>

#include "machine.h"

namespace simulator {

// What the utility is to do about one download command.
struct DownloadAnswer {
    uint32_t exitStatus = 0;
    std::string output;    // all that goes to standard output
    bool changed = false;  // the machine differs from its file now
    Script script;         // for the rest of what was scripted: crash and crashAfter are left to the caller
};

// Carries the download out on the machine: takes the port's next scripted line, waits as it says, reads the
// image (a native path), and puts the new version on every port of the board when the answer is a success.
void downloadImage(Machine& machine, uint32_t portNumber, const std::string& imagePath, DownloadAnswer& answer);

// Activates firmware that waits for a reboot. Gives the number of ports that had some.
size_t rebootMachine(Machine& machine);

}  // namespace simulator
