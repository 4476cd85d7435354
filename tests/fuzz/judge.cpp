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
static std::map<std::string, bool> downloadedBoards;  // whether the reply to the board's download was good

static const std::set<int> successes = {OUTCOME_SUCCEEDED, OUTCOME_REBOOT_REQUIRED, OUTCOME_DOWNLOAD_TWICE,
                                        OUTCOME_ACTIVATED};
static const std::set<int> notDue = {OUTCOME_NOT_NEEDED, OUTCOME_UNKNOWN_FIRMWARE_VERSION,
                                     OUTCOME_NO_COMPATIBLE_FIRMWARE, OUTCOME_NO_MATRIX_MODEL};

void judge(const std::string& rule, const std::string& got, const std::string& wanted) {
    if (got == wanted) {
        return;
    }
    const std::string port = machine.portAtWork == 0 ? "none at work" : std::to_string(machine.portAtWork);
    const std::string failed = machine.firstFailure.empty() ? "nothing"
                               : machine.failOnwards        ? machine.firstFailure + " and all after it"
                                                            : machine.firstFailure;
    dprintf(STDERR_FILENO, "\nBroken rule: %s\n  got:      %s\n  wanted:   %s\n", rule.c_str(), got.c_str(),
            wanted.c_str());
    dprintf(STDERR_FILENO, "  switches: %s\n  port:     %s\n  failed:   %s (operation %zu)\n", switchesOfRun.c_str(),
            port.c_str(), failed.c_str(), machine.failAt);
    abort();
}

void judge(const std::string& rule, long got, long wanted) {
    judge(rule, std::to_string(got), std::to_string(wanted));
}

static void judgeTruth(const std::string& rule, bool holds) {
    judge(rule, holds ? "yes" : "no", "yes");
}

static std::string boardOf(const HbaRecord* hba) {
    const std::string ownBoard = "port " + std::to_string(machine.portAtWork);
    return (isGrpAdapter(hba) ? hba->serialNumber : ownBoard) + "/" + std::to_string(hba->busNumber);
}

static void judgeDownload(const HbaRecord* hba, const PortEnd& end, size_t count) {
    const bool downloads = !runOptions.preview && !isQueryOnly() && !downloadedBoards.contains(end.board);
    judgeTruth("a board gets at most one download in a run, in a preview or query none", count <= (downloads ? 1 : 0));
    if (count > 0) {
        const std::string port = " download n=" + std::to_string(static_cast<int>(hba->adapterNumber)) + " i=\"";
        judgeTruth("the utility's command line names the port at work: " + end.download,
                   end.download.find(port) != std::string::npos);
        downloadedBoards[end.board] = machine.downloads.back().reply.find("NO Error") != std::string::npos;
    }
}

static void judgeOutcome(const PortEnd& end) {
    const std::string outcome = " (outcome " + std::to_string(end.outcome) + ")";
    const bool previewed = end.outcome == OUTCOME_PREVIEW_SUCCEEDED;
    const bool good = downloadedBoards.contains(end.board) && downloadedBoards[end.board];
    if (successes.contains(end.outcome)) {
        judgeTruth("a success is reported only after a download with a good reply" + outcome, good && end.attempted);
    } else if (!end.download.empty()) {
        const bool replyLost = machine.failedPaths.contains(machine.tempFile);
        judgeTruth("a download with a good reply is reported as a success" + outcome, !good || replyLost);
        judgeTruth("a download without a good reply is a failure" + outcome,
                   !notDue.contains(end.outcome) && !previewed);
    }
    judgeTruth("only a preview ends as previewed" + outcome, !previewed || (runOptions.preview && end.attempted));
    judgeTruth("a port that is not due has no download" + outcome, !notDue.contains(end.outcome) || !end.attempted);
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
        return isQueryOnly() ? RETURN_SUCCEEDED : RETURN_NO_COMPATIBLE_FIRMWARE;
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
    const std::string name = " (code " + std::to_string(code) + ")";
    if (!portEnds.empty()) {
        judge("the return code follows from how the ports ended", code, expectedCode());
    } else {
        judgeTruth("a run that works on no port ends with the code of such a run" + name,
                   endsWithoutPorts.contains(code));
        judgeTruth("a run that works on no port succeeds only by showing something",
                   code != RETURN_SUCCEEDED || runOptions.help || runOptions.imageVersion || listed > 0);
    }
}

static void judgeText(const std::string& file, const std::string& text, int code) {
    static const std::string told = " Return Code=";
    const size_t position = text.rfind(told);
    if (position != std::string::npos) {
        judge("the code in " + file + " is the return code", code, atoi(&text[position + told.size()]));
    }
    judgeTruth("the XML document is in " + file, text.empty() || portEnds.empty() || !runOptions.xml);
}

static void judgeDocument(const std::string& file, const std::string& document, int code) {
    judgeTruth("the XML document in " + file + " has the return code " + std::to_string(code),
               document.find("<Message id=\"" + std::to_string(code) + "\">") != std::string::npos);
    XML_Parser parser = XML_ParserCreate(nullptr);
    const bool parsed = XML_Parse(parser, document.data(), static_cast<int>(document.size()), 1) == XML_STATUS_OK;
    const char* error = parsed ? "no error" : XML_ErrorString(XML_GetErrorCode(parser));
    judge("the XML document in " + file + " is well formed", error, "no error");
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
    downloadedBoards.clear();
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
    judge("all that was printed is on the console when the utility is started", static_cast<long>(machine.hiddenBytes),
          0);
    judge("every file is closed", std::ssize(machine.openFiles), 0);
    judgeTruth("the port list is freed", gHbaList == nullptr);
    judge("the ports are listed once", machine.listings, portEnds.empty() ? machine.listings : 1);
    judgeTruth("the temp file is removed",
               machine.failedPaths.contains(machine.tempFile) || !machine.files.contains(machine.tempFile));
    return code;
}
