// The two programs of a preview run: the updater, and the simulated adapter utility that it is run beside.
#pragma once

#include <filesystem>
#include <string>

namespace fleet {

// The contents of the program files.
struct RehearsalPrograms {
    std::string updater;
    std::string utility;
};

// Reads tarnlift.exe and winhbcfg.exe from `directory`, or from the release's folder for rehearsals there. Programs of
// the other system are skipped. Only a file that holds the mark of the simulated utility is accepted as winhbcfg.exe,
// since the real one has the same name and reaches the adapters of this machine. On false the problem says what is
// missing.
bool readRehearsalPrograms(const std::filesystem::path& directory, RehearsalPrograms& programs, std::string& problem);

// Writes both programs into a directory. On false the problem says why that failed.
bool installPrograms(const RehearsalPrograms& programs, const std::filesystem::path& directory, std::string& problem);

// The updater's name in the directory.
inline constexpr char UPDATER_NAME[] = "tarnlift.exe";

}  // namespace fleet
