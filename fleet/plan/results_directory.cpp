#include "plan/results_directory.h"

#include <algorithm>
#include <array>
#include <set>

#include "files.h"
#include "text.h"

using namespace fleet;
namespace fs = std::filesystem;

namespace {

// Present in a directory with the results of a plan. Written after the last of them, it names them all, one a line, so
// that results of another origin are known by their names or their times.
constexpr char MARK_NAME[] = ".tarnfleet-plan";

constexpr std::array<std::string_view, 4> resultExtensions = {".xml", ".code", ".refused", ".rebooted"};

constexpr size_t LARGEST_MARK = size_t{64} * 1024 * 1024;

struct EarlierPlan {
    std::set<std::string> names;  // of the files, fit to be shown
    fs::file_time_type end;
};

}  // namespace

static bool isResult(const fs::path& file) {
    const std::string name = lowerCase(textOf(file.filename()));
    return std::any_of(resultExtensions.begin(), resultExtensions.end(),
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

static EarlierPlan readMark(const fs::path& file) {
    EarlierPlan earlier;
    std::error_code failure;
    earlier.end = fs::last_write_time(file, failure);
    const FileContent content = readFile(file, LARGEST_MARK);
    for (std::string_view rest = content.bytes; !rest.empty();) {
        earlier.names.emplace(takeLine(rest));
    }
    return earlier;
}

static bool isResultOf(const EarlierPlan& earlier, const fs::directory_entry& entry) {
    std::error_code failure;
    const fs::file_time_type changed = entry.last_write_time(failure);
    return !failure && changed <= earlier.end && earlier.names.contains(shownText(textOf(entry.path().filename())));
}

bool ResultsDirectory::open(const fs::path& path, std::string& problem) {
    directory = path;
    std::error_code failure;
    fs::create_directories(directory, failure);
    if (!fs::is_directory(directory, failure)) {
        return fail(problem, directory, "it is no directory and cannot be made one");
    }
    const EarlierPlan earlier = readMark(directory / MARK_NAME);
    fs::directory_iterator entries(directory, failure);
    for (const fs::directory_iterator end; !failure && entries != end; entries.increment(failure)) {
        const fs::path& file = entries->path();
        if (!isResult(file)) {
            continue;
        }
        if (!isResultOf(earlier, *entries)) {
            return fail(problem, file, "the directory holds results that are not of an earlier plan; name a new one");
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
    return writeResult(directory / MARK_NAME, mark, problem);
}

bool ResultsDirectory::publish(const fs::path& server, std::string_view extension, std::string_view content,
                               std::string& problem) {
    fs::path file = directory / server;
    file += extension;
    if (!(begun || begin(problem)) || !writeResult(file, content, problem)) {
        return false;
    }
    mark.append(shownText(textOf(file.filename()))).append("\n");
    return true;
}

bool ResultsDirectory::close(std::string& problem) {
    return !begun || writeResult(directory / MARK_NAME, mark, problem);
}
