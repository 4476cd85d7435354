// Finds the saved listings of the servers that a plan is about.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace fleet {

struct PlannedServer {
    std::filesystem::path name;     // a file's name without its extension
    std::filesystem::path listing;  // its saved listing
};

struct Refusal {
    std::string server;
    std::string reason;
};

struct SavedListings {
    std::vector<PlannedServer> servers;  // in the order of their names
    std::vector<Refusal> refused;        // files after which no result can be named
};

// Lists the files NAME.txt of the directory. On false the problem says why there is none.
bool findListings(const std::filesystem::path& directory, SavedListings& found, std::string& problem);

}  // namespace fleet
