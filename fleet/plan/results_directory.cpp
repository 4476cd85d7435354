#include "plan/results_directory.h"

#include <algorithm>
#include <array>

#include "files.h"
#include "text.h"

using namespace fleet;
namespace fs = std::filesystem;

namespace {

// Present in a directory with the results of a plan, and written after the last of them.
constexpr char MARK_NAME[] = ".tarnfleet-plan";
constexpr char MARK_TEXT[] = "Results of 'tarnfleet plan'. The next plan into this directory replaces them.\n";

constexpr std::array<std::string_view, 4> resultExtensions = {".xml", ".code", ".refused", ".rebooted"};

// Only a real run has these.
constexpr std::array<std::string_view, 2> laterExtensions = {".query.xml", ".rebooted"};

}  // namespace

template <size_t count>
static bool endsInOne(const fs::path& file, const std::array<std::string_view, count>& extensions) {
    const std::string name = lowerCase(textOf(file.filename()));
    return std::any_of(extensions.begin(), extensions.end(),
                       [&](std::string_view extension) { return name.ends_with(extension); });
}

static bool fail(std::string& problem, const fs::path& file, const std::string& why) {
    problem = textOf(file) + ": " + why;
    return false;
}

static bool writeResult(const fs::path& file, std::string_view content, std::string& problem) {
    const std::string fault = writeFile(file, content);
    return fault.empty() || fail(problem, file, fault);
}

bool ResultsDirectory::open(const fs::path& path, std::string& problem) {
    directory = path;
    std::error_code failure;
    fs::create_directories(directory, failure);
    if (!fs::is_directory(directory, failure)) {
        return fail(problem, directory, "it is no directory and cannot be made one");
    }
    std::error_code noMark;
    const auto marked = fs::last_write_time(directory / MARK_NAME, noMark);
    fs::directory_iterator entries(directory, failure);
    for (const fs::directory_iterator end; !failure && entries != end; entries.increment(failure)) {
        const fs::path& file = entries->path();
        if (!endsInOne(file, resultExtensions)) {
            continue;
        }
        if (noMark || endsInOne(file, laterExtensions)) {
            return fail(problem, file, "the directory holds results of another run; name a new one");
        }
        std::error_code unknownTime;
        if (entries->last_write_time(unknownTime) > marked || unknownTime) {
            return fail(problem, file, "it came after the plan whose results this directory holds; name a new one");
        }
        earlierResults.push_back(file);
    }
    return !failure || fail(problem, directory, failure.message());
}

bool ResultsDirectory::begin(std::string& problem) {
    begun = true;
    for (const fs::path& file : earlierResults) {
        std::error_code failure;
        fs::remove(file, failure);
        if (failure) {
            return fail(problem, file, "this result of an earlier plan cannot be removed: " + failure.message());
        }
    }
    return writeResult(directory / MARK_NAME, MARK_TEXT, problem);
}

bool ResultsDirectory::publish(const fs::path& server, std::string_view extension, std::string_view content,
                               std::string& problem) {
    fs::path file = directory / server;
    file += extension;
    return (begun || begin(problem)) && writeResult(file, content, problem);
}

bool ResultsDirectory::close(std::string& problem) {
    return !begun || writeResult(directory / MARK_NAME, MARK_TEXT, problem);
}
