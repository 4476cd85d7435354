#include "fuzz/judge.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>
#include <sstream>
#include <utility>

#include <expat.h>
#include <unistd.h>

#include "fuzz/memory_platform.h"
#include "platform/platform.h"
#include "records/hba_list.h"
#include "records/port_outcome.h"
#include "run/cleanup.h"
#include "run/port.h"
#include "run/run.h"
#include "settings/run_options.h"

std::vector<PortEnd> portEnds;

static std::string switchesOfRun;
static std::map<std::string, std::string> boardReplies;  // the utility's reply to the download of a board

static const std::set<int> successes = {OUTCOME_SUCCEEDED, OUTCOME_REBOOT_REQUIRED, OUTCOME_DOWNLOAD_TWICE,
                                        OUTCOME_ACTIVATED};
static const std::set<int> notDue = {OUTCOME_NOT_NEEDED, OUTCOME_UNKNOWN_FIRMWARE_VERSION,
                                     OUTCOME_NO_COMPATIBLE_FIRMWARE, OUTCOME_NO_MATRIX_MODEL};

void judge(bool holds, const std::string& rule, const std::string& got, const std::string& wanted) {
    if (holds) {
        return;
    }
    const std::string failed = machine.firstFailure.empty() ? "nothing"
                               : machine.failOnwards        ? machine.firstFailure + " and all after it"
                                                            : machine.firstFailure;
    const std::string port =
        machine.portAtWork == 0 ? "none at work" : "number " + std::to_string(machine.portAtWork) + " of the listing";
    dprintf(STDERR_FILENO, "\nBroken rule: %s\n  got:      %s\n  wanted:   %s\n", rule.c_str(), got.c_str(),
            wanted.c_str());
    dprintf(STDERR_FILENO, "  switches: %s\n  port:     %s\n  failing:  %s (operation %zu)\n", switchesOfRun.c_str(),
            port.c_str(), failed.c_str(), machine.failAt);
    abort();
}

static void judgeEqual(const std::string& rule, long got, long wanted) {
    judge(got == wanted, rule, std::to_string(got), std::to_string(wanted));
}

static std::string shown(int outcome) {
    const bool known = outcome >= 0 && outcome < static_cast<int>(OUTCOME_COUNT);
    const char* message = known ? DownloadStatusMessages[outcome] : nullptr;
    return "outcome " + std::to_string(outcome) + ", " + (message == nullptr ? "without a message" : message);
}

static std::string boardOf(const HbaRecord* hba) {
    const std::string ownBoard = "port " + std::to_string(machine.portAtWork);
    return (isGrpAdapter(hba) ? hba->serialNumber : ownBoard) + "/" + std::to_string(hba->busNumber);
}

static void judgeDownload(const HbaRecord* hba, const PortEnd& end, size_t count) {
    const bool writes = !runOptions.preview && !isQueryOnly();
    const size_t allowed = writes && !boardReplies.contains(end.board) ? 1 : 0;
    judge(count <= allowed, "a board gets at most one download in a run, and none in a preview or query",
          std::to_string(count) + " downloads for this port", "at most " + std::to_string(allowed));
    if (count > 0) {
        const std::string port = " download n=" + std::to_string(static_cast<int>(hba->adapterNumber)) + " i=\"";
        judge(end.download.find(port) != std::string::npos, "the download is for the port at work", end.download, port);
        boardReplies[end.board] = machine.downloads.back().reply;
    }
}

static const std::string goodReply = "NO Error";

// Whether the program must find the good reply: in a short text, before its last character, which the program cuts.
static bool isClear(const std::string& reply) {
    const size_t position = reply.find(goodReply);
    return position != std::string::npos && position + goodReply.size() < reply.size() && reply.size() < 200 &&
           reply.find('\0') == std::string::npos;
}

static void judgeOutcome(const PortEnd& end) {
    const std::string got = shown(end.outcome) + (end.attempted ? "; a download was due" : "; no download was due");
    const bool previewed = end.outcome == OUTCOME_PREVIEW_SUCCEEDED;
    const bool succeeded = successes.contains(end.outcome);
    const bool skipped = notDue.contains(end.outcome);
    const std::string reply = boardReplies.contains(end.board) ? boardReplies[end.board] : "(none)";
    const bool good = reply.find(goodReply) != std::string::npos;
    const bool replyLost = machine.failedPaths.contains(machine.tempFile);
    judge(!succeeded || (good && end.attempted), "a success is reported only after a download with a good reply",
          got + "; the utility's reply: " + reply, "a reply with " + goodReply + ", or a failure");
    judge(end.download.empty() || succeeded || !isClear(reply) || replyLost,
          "a download with a good reply is a success", got + "; the utility's reply: " + reply, "a success");
    judge(end.download.empty() || !(skipped || previewed), "a port with a download ends as a success or a failure", got,
          "a success or a failure");
    judge(!previewed || (runOptions.preview && end.attempted), "only a preview ends as previewed", got,
          "another outcome");
    judge(!skipped || !end.attempted, "a port that is skipped had no download", got, "no download was due");
}

static void watchPort(HbaRecord* hba) {
    machine.portAtWork = portEnds.size() + 1;
    const size_t downloadsBefore = machine.downloads.size();
    processPort(hba);
    const size_t count = machine.downloads.size() - downloadsBefore;
    const PortEnd end = {
        .board = boardOf(hba),
        .outcome = isQueryOnly() ? isInvalidHba(hba) : hba->fwDownloadStatus,
        .download = count > 0 ? machine.downloads.back().command : "",
        .attempted = hba->downloadAttempted != 0,
    };
    judgeDownload(hba, end, count);
    if (!isQueryOnly()) {
        judgeOutcome(end);
    }
    portEnds.push_back(end);
    machine.portAtWork = 0;
}

// The code that the ends of the ports call for.
static int expectedCode() {
    size_t asked = 0;
    size_t failed = 0;
    bool metAnImage = false;
    for (const PortEnd& end : portEnds) {
        const bool query = isQueryOnly();
        const bool due = !notDue.contains(end.outcome);
        const bool succeeded = successes.contains(end.outcome) || end.outcome == OUTCOME_PREVIEW_SUCCEEDED;
        asked += query || due ? 1 : 0;
        failed += query ? end.outcome != 0 : due && !succeeded;
        metAnImage = metAnImage || query || end.attempted || end.outcome == OUTCOME_NOT_NEEDED;
    }
    if (!metAnImage) {
        return RETURN_NO_COMPATIBLE_FIRMWARE;
    }
    if (failed > 0) {
        return failed == asked ? RETURN_ALL_FAILED : RETURN_SOME_FAILED;
    }
    return asked > 0 ? RETURN_SUCCEEDED : RETURN_NOT_REQUIRED;
}

// `listed` is the number of ports in the listing; without memory for their records there is none to work on.
static void judgeCode(int code, int listed) {
    static const std::set<int> endsWithoutPorts = {
        RETURN_SUCCEEDED,     RETURN_ALL_FAILED, RETURN_COMMAND_LINE,  RETURN_NO_ADAPTERS, RETURN_NO_FIRMWARE_DIRECTORY,
        RETURN_NO_PRIVILEGES, RETURN_OLD_SYSTEM, RETURN_IMAGE_VERSION,
    };
    if (!portEnds.empty()) {
        judgeEqual("the return code follows from how the ports ended", code, expectedCode());
        return;
    }
    const bool showed = runOptions.help || runOptions.imageVersion;
    judge(endsWithoutPorts.contains(code), "a run that works on no port ends with the code of such a run",
          std::to_string(code), "0, 2, 4, 5, 6, 8, 9 or 19");
    judge(code != RETURN_SUCCEEDED || showed || listed > 0,
          "a run that works on no port succeeds only by showing something", "code 0",
          "the help, a version, or an error");
}

static void judgeText(const std::string& file, const std::string& text, int code) {
    static const std::string label = " Return Code=";
    const size_t position = text.rfind(label);
    if (position != std::string::npos) {
        judgeEqual("the code in " + file + " is the return code", atoi(&text[position + label.size()]), code);
    }
    judge(text.empty() || portEnds.empty() || !runOptions.xml,
          "under /xml a run with ports writes a document to " + file, text.substr(0, 100), "a document");
}

static void judgeDocument(const std::string& file, const std::string& document, int code) {
    const std::string message = "<Message id=\"" + std::to_string(code) + "\">";
    judge(document.find(message) != std::string::npos, "the document in " + file + " has the return code",
          document.substr(std::min(document.size(), document.find("<Message"))), message);
    XML_Parser parser = XML_ParserCreate(nullptr);
    const bool parsed = XML_Parse(parser, document.data(), static_cast<int>(document.size()), 1) == XML_STATUS_OK;
    judge(parsed, "the document in " + file + " is well formed",
          std::string(parsed ? "" : XML_ErrorString(XML_GetErrorCode(parser))) + ", line " +
              std::to_string(XML_GetCurrentLineNumber(parser)),
          "a document without errors");
    XML_ParserFree(parser);
}

static void judgeOutput(const std::string& file, int code) {
    if (machine.failedPaths.contains(file) || !machine.files.contains(file)) {
        return;
    }
    const std::string& text = machine.files[file];
    const size_t start = text.find("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    if (start == std::string::npos) {
        judgeText(file, text, code);
    } else if (!runOptions.verbose) {  // the texts of /v are between the elements
        judgeDocument(file, text.substr(start), code);
    }
}

static std::vector<std::string> argumentsOf(const std::string& switches) {
    std::vector<std::string> arguments = {PROGRAM_DIRECTORY + "tarnlift.exe"};
    std::istringstream rest(switches + " ");
    for (std::string argument; std::getline(rest, argument, ' ');) {
        arguments.push_back(argument);
    }
    return arguments;
}

int judgedRun(const std::string& switches) {
    switchesOfRun = switches;
    portEnds.clear();
    boardReplies.clear();
    std::vector<std::string> arguments = argumentsOf(switches);
    std::vector<char*> argv(arguments.size() + 1);
    std::transform(arguments.begin(), arguments.end(), argv.begin(), [](std::string& text) { return text.data(); });

    FILE* console = std::exchange(stdout, openFile(CONSOLE.c_str(), OPEN_WRITE));
    FILE* errors = std::exchange(stderr, openFile(ERROR_CONSOLE.c_str(), OPEN_WRITE));
    runOptions = {};
    int listed = 0;
    machine.running = true;
    int code = prepareRun(argv.data());
    if (code == RETURN_SUCCEEDED) {
        code = runTarnlift(static_cast<int>(arguments.size()), argv.data(), watchPort);
        listed = gHbaCount;
        cleanup();
    }
    machine.running = false;
    fclose(std::exchange(stdout, console));
    fclose(std::exchange(stderr, errors));

    judgeCode(code, listed);
    if (!runOptions.silent) {
        judgeOutput(CONSOLE, code);
    }
    judgeOutput("run.log", code);
    // A warning about RM.INI is the only text that may wait for the next message to reach the console.
    const bool warned = machine.files[CONSOLE].find("Unkonw Token Found") != std::string::npos;
    if (!warned && !machine.failedPaths.contains(CONSOLE)) {
        judgeEqual("all that was printed is on the console when the utility is started",
                   static_cast<long>(machine.hiddenBytes), 0);
    }
    judgeEqual("the files that are left open", std::ssize(machine.openFiles), 0);
    judge(gHbaList == nullptr, "the port list is freed", "a list", "none");
    judgeEqual("the listings of a run with ports", machine.listings, portEnds.empty() ? machine.listings : 1);
    judge(machine.failedPaths.contains(machine.tempFile) || !machine.files.contains(machine.tempFile),
          "the temp file is removed", machine.tempFile, "no such file");
    return code;
}
