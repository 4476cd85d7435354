#include "plan/rehearsal_programs.h"

#include <array>

#include "files.h"
#include "simulator/identity.h"
#include "text.h"

using namespace fleet;
namespace fs = std::filesystem;

namespace {

constexpr char UTILITY_NAME[] = "winhbcfg.exe";
constexpr char REHEARSAL_FOLDER[] = "rehearsal only - simulated adapters";
constexpr size_t LARGEST_PROGRAM = size_t{64} * 1024 * 1024;

}  // namespace

// Windows programs begin with these letters. Both systems' programs have the same file names.
static bool isOfThisSystem(std::string_view program) {
#ifdef _WIN32
    return program.starts_with("MZ");
#else
    return !program.starts_with("MZ");
#endif
}

static bool isSimulated(std::string_view program) {
    return program.find(SIMULATED_UTILITY_MARK) != std::string_view::npos;
}

static bool isAny(std::string_view /*program*/) {
    return true;
}

// Reads the first file of this name that is accepted. Appends to the problem why others are not.
static bool readProgram(const fs::path& directory, const char* name, bool (*isWanted)(std::string_view),
                        std::string& program, std::string& problem) {
    const std::array<fs::path, 2> places = {directory / name, directory / REHEARSAL_FOLDER / name};
    for (const fs::path& place : places) {
        FileContent content = readFile(place, LARGEST_PROGRAM);
        std::string fault = content.fault;
        if (fault.empty() && !isOfThisSystem(content.bytes)) {
            fault = "is a program of another system";
        } else if (fault.empty() && !isWanted(content.bytes)) {
            fault = "is not the simulated adapter utility, and a plan runs no other";
        }
        if (fault.empty()) {
            program = std::move(content.bytes);
            return true;
        }
        if (content.exists) {
            problem.append(textOf(place)).append(" ").append(fault).append(". ");
        }
    }
    problem.append(name)
        .append(" must be beside tarnfleet, or there in the folder '")
        .append(REHEARSAL_FOLDER)
        .append("'");
    return false;
}

bool fleet::readRehearsalPrograms(const fs::path& directory, RehearsalPrograms& programs, std::string& problem) {
    problem.clear();
    return readProgram(directory, UPDATER_NAME, isAny, programs.updater, problem) &&
           readProgram(directory, UTILITY_NAME, isSimulated, programs.utility, problem);
}

static bool installProgram(const std::string& content, const fs::path& file, std::string& problem) {
    const std::string fault = writeFile(file, content);
    std::error_code failure;
    fs::permissions(file, fs::perms::owner_all, failure);
    if (!fault.empty()) {
        problem = textOf(file) + ": " + fault;
    }
    return fault.empty();
}

bool fleet::installPrograms(const RehearsalPrograms& programs, const fs::path& directory, std::string& problem) {
    return installProgram(programs.updater, directory / UPDATER_NAME, problem) &&
           installProgram(programs.utility, directory / UTILITY_NAME, problem);
}
