#include "plan/preview_result.h"

#include <algorithm>
#include <array>

#include "files.h"
#include "text.h"

using namespace fleet;
namespace fs = std::filesystem;

namespace {

constexpr size_t LARGEST_MESSAGE = size_t{1024} * 1024;

constexpr std::string_view DOCUMENT_START = "<?xml";
constexpr std::string_view DOCUMENT_END = "</Execution>";
constexpr std::string_view LISTING_CALL = "listattr";
constexpr std::array<std::string_view, 3> complainers = {"winhbcfg: ", "tarnlift.exe: ", "cannot run "};

// Return codes of the updater.
constexpr std::array<int, 5> codesOfAReport = {0, 1, 2, 3, 7};
constexpr int CODE_NO_ADAPTERS = 5;
constexpr int CODE_NO_RIGHTS = 8;

}  // namespace

static std::string firstLine(std::string_view text) {
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        if (!line.empty()) {
            return std::string(line);
        }
    }
    return "(no message)";
}

// The first call of the utility that was more than a listing.
static std::string forbiddenCall(const fs::path& directory) {
    const FileContent calls = readFile(directory / CALLS_NAME, LARGEST_MESSAGE);
    for (std::string_view rest = calls.bytes; !rest.empty();) {
        const std::string_view call = takeLine(rest);
        if (!call.starts_with(LISTING_CALL)) {
            return std::string(call);
        }
    }
    return {};
}

// What the programs themselves have printed on standard error. The system may add lines of its own.
static std::string complaint(const fs::path& directory) {
    const FileContent errors = readFile(directory / ERRORS_NAME, LARGEST_MESSAGE);
    for (std::string_view rest = errors.bytes; !rest.empty();) {
        const std::string_view line = takeLine(rest);
        for (std::string_view complainer : complainers) {
            if (line.starts_with(complainer)) {
                return std::string(line);
            }
        }
    }
    return {};
}

static bool isWholeReport(std::string_view report) {
    const size_t end = report.find_last_not_of("\r\n");
    return report.starts_with(DOCUMENT_START) && report.substr(0, end + 1).ends_with(DOCUMENT_END);
}

// The output of a run that ended before it looked at the adapters: switches or files are wrong, or the rights.
static PreviewResult judgeMessage(const std::string& output, int code) {
    if (code == CODE_NO_RIGHTS) {
        return {Verdict::REPEAT,
                {},
                "tarnlift.exe needs an administrator's rights, even for a preview (return code 8). Run tarnfleet as "
                "an administrator, or plan on Linux"};
    }
    return {Verdict::STOP, {}, "tarnlift.exe ends with return code " + std::to_string(code) + ": " + firstLine(output)};
}

PreviewResult fleet::judgePreview(const fs::path& directory, const ChildEnd& end) {
    const std::string call = forbiddenCall(directory);
    if (!call.empty()) {
        return {Verdict::STOP,
                {},
                "this tarnlift.exe called the simulated utility with '" + call + "' in a preview; do not use it"};
    }
    if (!end.violent.empty()) {
        return {Verdict::REFUSED, {}, "tarnlift.exe was ended by " + end.violent};
    }
    FileContent output = readFile(directory / OUTPUT_NAME, TEXT_FILE_LIMIT);
    if (!output.fault.empty()) {
        return {Verdict::REFUSED, {}, "the report of tarnlift.exe " + output.fault};
    }
    const std::string reason = complaint(directory);
    if (!reason.empty()) {
        return {Verdict::REFUSED, {}, reason};
    }
    if (end.code == CODE_NO_ADAPTERS) {
        return {Verdict::REFUSED, {}, "tarnlift.exe found no port in it"};
    }
    if (!output.bytes.starts_with(DOCUMENT_START)) {
        return judgeMessage(output.bytes, end.code);
    }
    if (!isWholeReport(output.bytes) ||
        std::find(codesOfAReport.begin(), codesOfAReport.end(), end.code) == codesOfAReport.end()) {
        return {Verdict::REFUSED,
                {},
                "the report of tarnlift.exe is cut off (return code " + std::to_string(end.code) + ")"};
    }
    return {Verdict::PLANNED, std::move(output.bytes), {}};
}
