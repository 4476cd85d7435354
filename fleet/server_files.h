// The files of a directory, by server.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "judgement.h"

namespace fleet {

// The files of one server. A path is empty where there is no file.
struct ServerFiles {
    std::string name;               // as the file names have it, or as the list of servers has it
    std::filesystem::path run;      // NAME.xml
    std::filesystem::path query;    // NAME.query.xml
    std::filesystem::path code;     // NAME.code
    std::filesystem::path refusal;  // NAME.refused: a line that tells why nothing was run for the server
    bool rebooted = false;          // whether there is NAME.rebooted
};

// Finds the servers of a directory, whatever the case of the letters in the ends of the names. Other files are skipped.
// Without a result, after a message, when the directory cannot be read.
std::optional<std::vector<ServerFiles>> findServers(const std::filesystem::path& directory);

// Adds the servers of a list that have no file: one name a line; case does not count, empty lines are skipped. Returns
// false, after a message, when the list cannot be read.
bool addMissingServers(const std::filesystem::path& list, std::vector<ServerFiles>& servers);

// Reads the files of a server.
Evidence readEvidence(const ServerFiles& files);

}  // namespace fleet
