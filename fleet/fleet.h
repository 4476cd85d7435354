// The servers of a roll-out: from the arguments of a command and the files of a directory to their states.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "exit_codes.h"
#include "judgement.h"

namespace fleet {

// What a command on a whole fleet is called with: DIR [--servers FILE] [-o FILE]
struct FleetRequest {
    std::string directory;
    std::optional<std::string> serverList;
    std::optional<std::string> output;
};

enum class OutputOption { REFUSED, ALLOWED, REQUIRED };

// Reads the arguments. On any result but EXIT_ALL_WELL there was a message.
ExitCode readRequest(std::span<const std::string> arguments, OutputOption outputOption, FleetRequest& request);

// Reads and judges all servers: the worst first, then by name. Without a result, after a message, when a file of the
// request cannot be read, or when the directory has no server's file.
std::optional<std::vector<ServerResult>> readFleet(const FleetRequest& request);

// Writes the output's file, or to standard output byte by byte as it is. Returns false after a message.
bool writeOutput(const FleetRequest& request, const std::string& content);

// All reasons of a server's state in one line.
std::string reasonText(const ServerResult& server);

}  // namespace fleet
