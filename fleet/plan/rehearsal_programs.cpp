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

static bool readUtility(const fs::path& directory, std::string& program, std::string& problem) {
    const std::array<fs::path, 2> places = {directory / UTILITY_NAME, directory / REHEARSAL_FOLDER / UTILITY_NAME};
    for (const fs::path& place : places) {
        FileContent content = readFile(place, LARGEST_PROGRAM);
        if (content.bytes.find(SIMULATED_UTILITY_MARK) != std::string::npos) {
            program = std::move(content.bytes);
            return true;
        }
        if (content.exists) {
            problem += textOf(place) + " is not the simulated adapter utility, and a plan runs no other. ";
        }
    }
    problem.append("The simulated ").append(UTILITY_NAME).append(" must be beside tarnfleet, or there in the folder '");
    problem.append(REHEARSAL_FOLDER).append("'");
    return false;
}

bool fleet::readRehearsalPrograms(const fs::path& directory, RehearsalPrograms& programs, std::string& problem) {
    problem.clear();
    FileContent content = readFile(directory / UPDATER_NAME, LARGEST_PROGRAM);
    if (!content.exists) {
        content = readFile(directory / REHEARSAL_FOLDER / UPDATER_NAME, LARGEST_PROGRAM);
    }
    if (!content.fault.empty()) {
        problem = textOf(directory / UPDATER_NAME) + ", which a plan runs, " + content.fault;
        return false;
    }
    programs.updater = std::move(content.bytes);
    return readUtility(directory, programs.utility, problem);
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
