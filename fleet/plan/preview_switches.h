// The switches that a plan hands to tarnlift.exe. Only known ones that leave the run a preview are accepted.
#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace fleet {

// Makes the arguments of a preview run from what the user wrote after "--": "/p" and "/xml" first, and both directories
// as absolute paths, by default `defaultDirectory`. On false the problem says what to write instead.
bool readPreviewSwitches(std::span<const std::string> switches, const std::filesystem::path& defaultDirectory,
                         std::vector<std::string>& arguments, std::string& problem);

}  // namespace fleet
