// Fails each operation of each run once, and once with all behind it.
#include "fuzz/memory_platform.h"

// What is to be read when an operation fails only this time, without a return code only in the trace. An operation with
// no text may take from the ports what they are worked on by. The run goes on after every other one.
static const char consequences[] =
    "systemMajorVersion>Unsupported OS detected - Return Code=9,programPath>Unable to setup application paths - Return "
    "Code=4,createRegistryKey SOFTWARE>insufficient privileges - Return Code=8,openFile run.log>unable to open logfile "
    "run.log - Return Code=4,openFile C:\\t\\fwmatrix.txt>fwmatrix update table not found - Return Code=2,"
    "openDirectorySearch C:\\t\\firmware\\*>the firmware subdirectory was not found - Return Code=6,"
    "openFile dbg.log>unable to open dbg.log!,createRegistryKey SYSTEM>Error creating \"Velmar Tarnlift\" key,"
    "setRegistryText>Error creating \"EventMessageFile\" key,setRegistryNumber>Error creating \"Types Supported\" key,"
    "closeRegistryKey SYSTEM>Error closing key.,__wrap_fseek fwmatrix>fseek failed. Unable to open fwmatrix,"
    "halfFile,openFile C:\\t\\firmware,openFile C:\\tmp,nextDirectoryEntry,runCommand,__wrap_fseek image,"
    "__wrap_malloc,__wrap_calloc,readText ";

static void judgeFailure(const std::string& run, const MemoryMachine& untouched) {
    const std::string said = machine.files["the console"] + machine.files["run.log"] + machine.files["dbg.log"];
    bool goesOn = true, traced = run.find("/xv") < run.size();
    for (const std::string& row : split(consequences, ',')) {
        const std::vector<std::string> sides = split(row + ">", '>');
        const bool ends = sides[1].empty() ? machine.failedPort == 0 : sides[1].find("Return Code") < row.size();
        const bool holds = machine.failed.starts_with(sides[0]);
        MUST(!holds || !(ends || traced) || said.find(sides[1]) < said.size());
        goesOn = goesOn && !(holds && ends);
    }
    // Every port ends as in the untouched run, but for those that share a board with the one at work.
    for (size_t i = 0; goesOn && i < untouched.portEnds.size(); i++) {
        const auto& [board, end] = untouched.portEnds[i];
        const bool shares = machine.failedPort != 0 && untouched.portEnds[machine.failedPort - 1].first == board;
        MUST(machine.portEnds.size() > i && (shares || machine.portEnds[i].second == end));
    }
}

int main() {
    const char* runs = "/h,/q,/q /xml /vpd,/iv=C:\\t\\firmware\\0.grp,/update,/update /xml,/ff /q /v,/auto /rewrite /p,"
                       "/update /v /xv /log=run.log,/p /rewrite /xml,/downgrade /xv,/auto /update /xml,/auto /q,"
                       "/auto /downgrade /v /xv,/auto /ff /l=run.log /xml /s,/q /xv,/auto /ff /xv,/ff /xv /xml";
    for (const std::string& run : split(runs, ',')) {
        MemoryMachine untouched;
        for (size_t i = 0; i < 4 || machine.operations >= i / 2 - 1; i++) {
            machine = machineOf(std::string(i % 2, '-') + std::to_string(i / 2) + "|" + run + STANDARD);
            machine.files[run.ends_with("/xv") ? "C:\\t\\vlmdbg.log" : "unused"] = "";
            judgedRun();
            if (machine.failAt == 0) {
                untouched = machine;
            } else if (!machine.failOnwards) {
                judgeFailure(run, untouched);
            }
        }
    }
}
