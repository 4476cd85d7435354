// Fails each operation of each run once, and once together with all operations after it.
#include "fuzz/judge.h"
#include "fuzz/memory_platform.h"
#include "fuzz/standard_machine.h"

enum Effect {
    ENDS_THE_RUN,       // with the message
    CHANGES_THE_LIST,   // before the first port it may take ports or images away; from then on one board at most
    CHANGES_ONE_BOARD,  // at most
};

// The message must be in the output or, for a run that goes on, in dbg.log, which only /xv writes.
struct Consequence {
    const char* operation;  // how the failed operation starts; the first row that fits counts
    Effect effect;
    const char* message;
};

static const Consequence consequences[] = {
    {"systemMajorVersion", ENDS_THE_RUN, "Unsupported OS detected - Return Code=9"},
    {"programPath", ENDS_THE_RUN, "Unable to setup application paths - Return Code=4"},
    {"createRegistryKey SOFTWARE", ENDS_THE_RUN, "insufficient privileges - Return Code=8"},
    {"openFile run.log", ENDS_THE_RUN, "unable to open logfile run.log - Return Code=4"},
    {"openFile C:\\t\\fwmatrix.txt", ENDS_THE_RUN, "fwmatrix update table not found - Return Code=2"},
    {"openDirectorySearch C:\\t\\firmware\\*", ENDS_THE_RUN, "the firmware subdirectory was not found - Return Code=6"},
    {"openFile dbg.log", CHANGES_ONE_BOARD, "unable to open dbg.log!"},
    {"createRegistryKey SYSTEM", CHANGES_ONE_BOARD, "Error creating \"Velmar Tarnlift\" key"},
    {"setRegistryText", CHANGES_ONE_BOARD, "Error creating \"EventMessageFile\" key"},
    {"setRegistryNumber", CHANGES_ONE_BOARD, "Error creating \"Types Supported\" key"},
    {"closeRegistryKey SYSTEM", CHANGES_ONE_BOARD, "Error closing key."},
    {"fseek C:\\t\\fwmatrix.txt", CHANGES_ONE_BOARD, "fseek failed. Unable to open fwmatrix"},
    {"fseek C:\\t\\firmware", CHANGES_THE_LIST, ""},
    {"openFile C:\\t\\firmware", CHANGES_THE_LIST, ""},
    {"openFile C:\\tmp", CHANGES_THE_LIST, ""},
    {"removeFile C:\\tmp", CHANGES_THE_LIST, ""},
    {"nextDirectoryEntry", CHANGES_THE_LIST, ""},
    {"half", CHANGES_THE_LIST, ""},
    {"read C:\\tmp", CHANGES_THE_LIST, ""},
    {"read C:\\t\\firmware", CHANGES_THE_LIST, ""},
    {"runCommand", CHANGES_THE_LIST, ""},
    {"malloc", CHANGES_THE_LIST, ""},
    {"calloc", CHANGES_THE_LIST, ""},
    {"", CHANGES_ONE_BOARD, ""},
};

static const char* const runs[] = {
    "/h",
    "/q",
    "/q /xml /vpd",
    "/iv=C:\\t\\firmware\\0.grp",
    "/update",
    "/update /xml",
    "/ff /q /v",
    "/auto /rewrite /p",
    "/update /v /xv /log=run.log",
    "/p /rewrite /xml",
    "/downgrade /xv",
    "/auto /update /xml",
    "/auto /q",
    "/auto /downgrade /v /xv",
    "/auto /ff /l=run.log /xml /s",
    "/q /xv",
    "/auto /ff /xv",
    "/ff /xv /xml",
};

static const Consequence& consequenceOf(const std::string& operation) {
    const Consequence* row = consequences;
    while (!operation.starts_with(row->operation)) {
        row++;
    }
    return *row;
}

static std::string describe(const PortEnd& end, size_t index) {
    return "port " + std::to_string(index + 1) + " ends with outcome " + std::to_string(end.outcome) +
           (end.download.empty() ? " without a download" : " after " + end.download);
}

// Every port ends as in the untouched run, but for those that share a board with the port at work.
static void judgeOtherBoards(const std::vector<PortEnd>& untouched) {
    std::string boardAtWork;
    if (machine.portAtFirstFailure != 0) {
        boardAtWork = untouched[machine.portAtFirstFailure - 1].board;
    }
    judge(portEnds.size() == untouched.size(), "no port is lost", std::to_string(portEnds.size()) + " ports",
          std::to_string(untouched.size()));
    for (size_t i = 0; i < untouched.size(); i++) {
        judge(untouched[i].board == boardAtWork || portEnds[i] == untouched[i],
              "a failure changes nothing for the ports of other boards", describe(portEnds[i], i),
              describe(untouched[i], i));
    }
}

static void judgeOneFailure(const std::string& switches, const std::vector<PortEnd>& untouched) {
    const Consequence& consequence = consequenceOf(machine.firstFailure);
    const bool goesOn = consequence.effect == CHANGES_ONE_BOARD ||
                        (consequence.effect == CHANGES_THE_LIST && machine.portAtFirstFailure != 0);
    const std::string said = machine.files[CONSOLE] + machine.files["run.log"] + machine.files["dbg.log"];
    const bool reported = consequence.effect == ENDS_THE_RUN || switches.find("/xv") != std::string::npos;
    judge(!reported || said.find(consequence.message) != std::string::npos, "a failed operation has its message",
          "no such text in console, log and trace", consequence.message);
    if (goesOn) {
        judgeOtherBoards(untouched);
    }
}

static void failEachOperation(const std::string& switches) {
    MemoryMachine fresh = standardMachine();
    if (switches.ends_with("/xv")) {
        fresh.files[DIAGNOSTIC_LOG_PATH] = "";
    }
    machine = fresh;
    judgedRun(switches);
    const std::vector<PortEnd> untouched = portEnds;
    const size_t operations = machine.operations;
    for (size_t failAt = 1; failAt <= operations; failAt++) {
        for (const bool failOnwards : {false, true}) {
            machine = fresh;
            machine.failAt = failAt;
            machine.failOnwards = failOnwards;
            judgedRun(switches);
            if (!failOnwards) {
                judgeOneFailure(switches, untouched);
            }
        }
    }
}

int main() {
    for (const char* switches : runs) {
        failEachOperation(switches);
    }
}
