#include <algorithm>
#include <sstream>
#include <utility>

#include <expat.h>

#include "fuzz/memory_platform.h"
#include "platform/platform.h"
#include "records/hba_list.h"
#include "records/run_counters.h"
#include "run/cleanup.h"
#include "run/run.h"
#include "settings/run_options.h"

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream rest(text + separator);
    for (std::string part; std::getline(rest, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

extern "C" void __real__Z11processPortP9HbaRecord(HbaRecord* hba);
extern "C" void __wrap__Z11processPortP9HbaRecord(HbaRecord* hba) {
    static const std::set<int> successes = {0, 1, 22, 29}, passed = {2, 10, 13, 16};
    const RunCounters before = runCounters;
    const size_t downloads = machine.downloads;
    machine.download = machine.reply = "";
    machine.port = machine.portEnds.size() + 1;
    __real__Z11processPortP9HbaRecord(hba);
    const std::string name = isGrpAdapter(hba) ? hba->serialNumber : "port " + std::to_string(machine.port);
    const std::string board = name + "/" + std::to_string(hba->busNumber);
    int& downloaded = machine.boards[board];
    machine.port = 0;
    const size_t ran = machine.downloads - downloads;
    const bool attempted = hba->downloadAttempted, previewed = hba->fwDownloadStatus == 17;
    const int outcome = isQueryOnly() ? 2 : hba->fwDownloadStatus;
    MUST(ran <= (runOptions.preview || isQueryOnly() || downloaded != 0 ? 0 : 1));
    MUST(ran == 0 ||
         machine.download.find(" download n=" + std::to_string(static_cast<int>(hba->adapterNumber)) + " i=\"") < 300);
    downloaded += ran == 0 ? 0 : machine.reply.find("NO Error") != std::string::npos ? 2 : 1;
    const bool succeeded = successes.contains(outcome), failed = !succeeded && !passed.contains(outcome) && !previewed;
    MUST(!succeeded || (downloaded == 2 && attempted));
    MUST(!previewed || (runOptions.preview && attempted));
    MUST(!attempted || !passed.contains(outcome));
    MUST(ran == 0 || downloaded == 2 || failed);
    MUST(runCounters.downloadFailCount - before.downloadFailCount == failed);
    MUST(runCounters.downloadAttemptCount - before.downloadAttemptCount == !passed.contains(outcome));
    machine.portEnds.push_back({board, std::to_string(outcome) + machine.download});
}

// What a run has shown tells its code, and a document is well formed.
static void judgeOutput(const char* file, int code) {
    const std::string text = machine.touched.contains(file) ? "" : machine.files[file];
    const size_t start = text.find("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"), told = text.rfind(" Return Code=");
    if (start > text.size()) {
        MUST(told > text.size() || atoi(text.c_str() + told + 13) == code);
        MUST(text.empty() || machine.portEnds.empty() || !runOptions.xml);
    } else if (!runOptions.verbose) {
        XML_Parser parser = XML_ParserCreate(nullptr);
        MUST(text.find("<Message id=\"" + std::to_string(code) + "\">") < text.size());
        MUST(XML_Parse(parser, text.data() + start, static_cast<int>(text.size() - start), 1) == XML_STATUS_OK);
        XML_ParserFree(parser);
    }
}

void judgedRun() {
    std::vector<std::string> arguments = split("C:\\t\\tarnlift.exe " + machine.switches, ' ');
    std::vector<char*> argv(arguments.size() + 1);
    std::transform(arguments.begin(), arguments.end(), argv.begin(), [](std::string& text) { return text.data(); });
    FILE* console = std::exchange(stdout, openFile("the console", OPEN_WRITE));
    runOptions = {};
    machine.running = true;
    startPlatform();
    int code = prepareRun(argv.data());
    if (code == RETURN_SUCCEEDED) {
        code = runTarnlift(static_cast<int>(arguments.size()), argv.data());
        cleanup();
    }
    machine.running = false;
    fclose(std::exchange(stdout, console));

    static const std::set<int> stops = {0, 2, 4, 5, 6, 8, 9, 19};
    const bool query = isQueryOnly(), walked = !machine.portEnds.empty();
    const int all = query ? runCounters.queryCount : runCounters.downloadAttemptCount;
    const int failed = query ? runCounters.queryFailCount : runCounters.downloadFailCount;
    const int counted = failed != 0 ? (failed == all ? 2 : 3) : all != 0 || query ? 0 : 1;
    MUST(walked ? code == (query || runCounters.compatibleImageCount != 0 ? counted : 7) : stops.contains(code));
    MUST(walked || code != 0 || runOptions.help || runOptions.imageVersion || gHbaCount != 0);
    if (!runOptions.silent) {
        judgeOutput("the console", code);
    }
    judgeOutput("run.log", code);
    MUST((machine.listings == 1 || !walked) && machine.openFiles == 0 && gHbaList == nullptr);
    MUST(machine.touched.contains(machine.redirect) || !machine.files.contains(machine.redirect));
}
