// tarnfleet: what a roll-out over many servers would do, what it has done, and whether it is true.

#include <algorithm>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#endif

#include "check.h"
#include "console.h"
#include "csv.h"
#include "exit_codes.h"
#include "page.h"
#include "plan/plan.h"
#include "status.h"
#include "text.h"
#include "version.h"

using namespace fleet;

namespace {

struct Command {
    std::string_view name;
    std::string_view purpose;  // its line in the program's help
    std::string_view help;     // one screen: at most 24 lines of 80 columns
    int (*run)(std::span<const std::string> arguments);
};

// In the order in which people need them.
constexpr Command commands[] = {
    {"plan", "what a roll-out would do, by saved listings of the adapters", PLAN_HELP, runPlan},
    {"status", "all servers, the worst first, with reasons and totals", STATUS_HELP, runStatus},
    {"page", "the same as a page for a browser", PAGE_HELP, runPage},
    {"csv", "one row for each port, for spreadsheets and scripts", CSV_HELP, runCsv},
    {"check", "the state of one server, as JSON for a script", CHECK_HELP, runCheck},
};

}  // namespace

static std::string programHelp() {
    std::string help = "tarnfleet - sees, plans and proves a firmware roll-out over many servers\n\n"
                       "Usage: tarnfleet COMMAND ...\n\n";
    for (const Command& command : commands) {
        help.append("    ").append(command.name).append(10 - command.name.size(), ' ');
        help.append(command.purpose).append("\n");
    }
    return help + "\n    tarnfleet COMMAND --help explains a command.\n"
                  "    tarnfleet --version tells the version.\n";
}

static int explainWrongUse(std::string_view help) {
    fprintf(stderr, "\n%.*s", static_cast<int>(help.size()), help.data());
    return EXIT_NOT_DONE;
}

// Whether an argument asks for the help. After "--" arguments belong to another program.
static bool asksForHelp(std::span<const std::string> arguments) {
    for (const std::string& argument : arguments) {
        if (argument == "--") {
            return false;
        }
        if (argument == "--help" || argument == "-h") {
            return true;
        }
    }
    return false;
}

static int printText(std::string_view text) {
    return print(text) ? EXIT_ALL_WELL : EXIT_NOT_DONE;
}

static int runProgram(std::span<const std::string> arguments) {
    if (arguments.empty()) {
        return explainWrongUse(programHelp());
    }
    const std::string& word = arguments.front();
    if (word == "--version") {
        return printText(std::string(NAME_AND_VERSION) + "\n");
    }
    const auto* command =
        std::find_if(std::begin(commands), std::end(commands), [&](const Command& row) { return row.name == word; });
    if (command == std::end(commands)) {
        if (asksForHelp(arguments) || word == "help") {
            return printText(programHelp());
        }
        complain("unknown command '" + word + "'");
        return explainWrongUse(programHelp());
    }
    if (asksForHelp(arguments.subspan(1))) {
        return printText(command->help);
    }
    const int exitCode = command->run(arguments.subspan(1));
    return exitCode == EXIT_WRONG_ARGUMENTS ? explainWrongUse(command->help) : exitCode;
}

#ifdef _WIN32
int wmain(int count, wchar_t** texts) {
    std::vector<std::string> arguments;
    for (int i = 1; i < count; i++) {
        arguments.push_back(textOf(texts[i]));
    }
    // The console keeps what is set here after the end.
    const UINT codePage = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    const int exitCode = runProgram(arguments);
    SetConsoleOutputCP(codePage);
    return exitCode;
}
#else
int main(int count, char** texts) {
    return runProgram(std::vector<std::string>(texts + 1, texts + count));
}
#endif
