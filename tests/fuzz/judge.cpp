#include "fuzz/memory_platform.h"

#include <algorithm>
#include <set>

#include "include/run_counters.h"
#include "include/run_options.h"
#include "inventory/hba_list.h"
#include "platform/platform.h"

int tarnliftMain(int argc, char** argv);

static size_t portsWalked;
static std::map<std::string, int> boards;  // 1 after a download, 2 when its reply was good

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts = {""};
    for (char c : text) {
        c == separator ? parts.push_back("") : parts.back().push_back(c);
    }
    return parts;
}

#define MUST(truth)                                                                                                    \
    (truth) ? void() : (fprintf(stderr, "broken when operation %zu fails: %s\n", machine.failAt, #truth), abort())

// From where a document starts, every element is closed, no quote is open, and no control character stands.
static bool isWellFormed(const std::string& text) {
    std::vector<std::string> open = {""};
    size_t at = text.find("<?xml version");
    bool good = at > text.size() || text.find_first_of("\x01\x02\x07\x08\x0B\x0C\x1B\x1F", at) > text.size();
    for (; (at = text.find('<', at)) != std::string::npos; at++) {
        const std::string tag = text.substr(at + 1, text.find_first_of("<>", at + 1) - at - 1);
        good = good && text[at + 1 + tag.size()] == '>' && (tag[0] != '/' || open.back() == tag.substr(1)) &&
               std::count(tag.begin(), tag.end(), '"') % 2 == 0;
        open.resize(open.size() + (tag[0] == '/'                        ? -1UL
                                   : tag.back() == '/' || tag[0] == '?' ? 0
                                                                        : 1),
                    tag.substr(0, tag.find(' ')));
    }
    return good && open.size() == 1;
}

extern "C" void __real__Z11processPortP9HbaRecord(HbaRecord* hba);
extern "C" void __wrap__Z11processPortP9HbaRecord(HbaRecord* hba) {
    static const std::set<int> successes = {0, 1, 22, 29}, others = {2, 10, 13, 16};
    const RunCounters before = runCounters;
    const size_t downloads = machine.downloads;
    machine.lastReply.clear();
    __real__Z11processPortP9HbaRecord(hba);
    portsWalked++;
    const size_t ran = machine.downloads - downloads;
    const int outcome = isQueryOnly() ? 2 : hba->fwDownloadStatus;
    const std::string board = hba->serialNumber + std::string(isGrpAdapter(hba) ? "" : std::to_string(portsWalked)) +
                              "/" + std::to_string(hba->busNumber);
    MUST(ran <= (runOptions.preview || isQueryOnly() || boards[board] != 0 ? 0 : 1));
    boards[board] += ran == 0 ? 0 : machine.lastReply.find("NO Error") != std::string::npos ? 2 : 1;
    const bool failed = !successes.contains(outcome) && !others.contains(outcome) && outcome != 17;
    MUST(!successes.contains(outcome) || (boards[board] == 2 && hba->downloadAttempted));
    MUST(ran == 0 || boards[board] == 2 || failed);
    MUST(runCounters.downloadFailCount - before.downloadFailCount == failed);
    MUST(runCounters.downloadAttemptCount - before.downloadAttemptCount == !others.contains(outcome));
}

void judgedRun(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "C:\\t\\tarnlift.exe");
    std::vector<char*> argv(arguments.size() + 1);
    std::transform(arguments.begin(), arguments.end(), argv.begin(), [](std::string& text) { return text.data(); });
    FILE* console = stdout;
    stdout = openFile("stdout", OPEN_WRITE);
    portsWalked = 0;
    boards.clear();
    machine.running = true;
    const int code = tarnliftMain(static_cast<int>(arguments.size()), argv.data());
    machine.running = false;
    fclose(stdout);
    stdout = console;

    const bool query = isQueryOnly();
    const int all = query ? runCounters.queryCount : runCounters.downloadAttemptCount;
    const int failed = query ? runCounters.queryFailCount : runCounters.downloadFailCount;
    const int counted = failed != 0 ? (failed == all ? 2 : 3) : all != 0 || query ? 0 : 1;
    MUST((code >= 0 && code <= 9) || code == 19);
    MUST(portsWalked == 0 || code == (query || runCounters.compatibleImageCount != 0 ? counted : 7));
    MUST(portsWalked == 0 || machine.listings == 1);
    MUST(runOptions.verbose || isWellFormed(machine.files["stdout"]));
    MUST(machine.openFiles == 0 && gHbaList == nullptr);
    MUST(machine.redirectTouched || !machine.files.contains(machine.redirect));
}
