// The download command: whether the image fits the port, what the utility answers, what changes on the board.
#pragma once

#include <cstdint>
#include <string>

#include "machine.h"

namespace simulator {

// How the utility answers one download command.
struct DownloadAnswer {
    uint32_t exitStatus = 0;
    std::string output;    // everything for standard output
    bool changed = false;  // the machine now differs from its file
    Script script;         // the caller carries out crash and crashAfter
};

// Carries the download out on the machine: uses up the port's next scripted line, waits as it says, reads the image (a
// native path), and stores the new version in every port of the board when the answer is a success.
void downloadImage(Machine& machine, uint32_t portNumber, const std::string& imagePath, DownloadAnswer& answer);

// Activates firmware that waits for a reboot. Returns the number of ports that had some.
size_t rebootMachine(Machine& machine);

}  // namespace simulator
