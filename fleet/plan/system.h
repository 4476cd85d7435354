// The few things that the plan asks of the system. Two implementations: linux/ and windows/.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace fleet {

// The directory of the running program; empty when the system does not tell.
std::filesystem::path programDirectory();

// Directories for temporary files, the preferred one first.
std::vector<std::filesystem::path> temporaryDirectories();

// Makes a new directory below `parent` that only this user (on Windows: only administrators) can change. Empty when
// that fails; the problem says why.
std::filesystem::path makePrivateDirectory(const std::filesystem::path& parent, std::string& problem);

bool standardErrorIsTerminal();

}  // namespace fleet
