// The adapter utility of a rehearsal: answers the calls of the real one from adapters.txt beside the program.

#include <cstdio>

#include "adapters_store.h"
#include "download.h"
#include "help_text.h"
#include "host_system.h"
#include "text.h"

using namespace simulator;

namespace {

constexpr int EXIT_TROUBLE = 2;

using Arguments = std::span<char*>;

// A command and its function, which gets the arguments after the command's word and returns the exit status.
struct Command {
    std::string_view word;
    int (*run)(Store& store, Arguments arguments);
};

}  // namespace

static int fail(const std::string& problem) {
    fprintf(stderr, "winhbcfg: %s\n", problem.c_str());
    return EXIT_TROUBLE;
}

static int failOnUsage() {
    return fail("unknown arguments; 'winhbcfg.exe /?' shows the usage");
}

// Prints the whole output and returns the exit status, or crashes if the script asks for it.
static int answer(const std::string& output, uint32_t exitStatus, bool crashAfter) {
    bool whole = fwrite(output.data(), 1, output.size(), stdout) == output.size();
    if (fflush(stdout) != 0 || !whole) {
        return fail("standard output cannot be written");
    }
    if (crashAfter) {
        crashProgram();
    }
    return static_cast<int>(exitStatus);
}

static int runListattr(Store& store, Arguments arguments) {
    bool stored = arguments.size() == 1 && std::string_view(arguments[0]) == "/c";
    if (!arguments.empty() && !stored) {
        return failOnUsage();
    }
    const Script& script = store.machine.listing;
    sleepMilliseconds(script.delay.value_or(0));
    if (script.crash) {
        crashProgram();
    }
    std::string listing = composeListing(store.machine, !stored);
    if (script.cut && *script.cut < listing.size()) {
        listing.resize(*script.cut);
    }
    std::string output = makeFiller(script.fill.value_or(0)) + listing + makeFiller(script.fillAfter.value_or(0));
    return answer(output, script.exitStatus.value_or(0), script.crashAfter);
}

static int runDownload(Store& store, Arguments arguments) {
    if (arguments.size() != 2) {
        return failOnUsage();
    }
    std::string_view number(arguments[0]);
    std::string_view image(arguments[1]);
    if (!number.starts_with("n=") || !image.starts_with("i=")) {
        return failOnUsage();
    }
    std::optional<uint32_t> port = readPortNumber(number.substr(2));
    if (!port) {
        return failOnUsage();
    }
    DownloadAnswer result;
    downloadImage(store.machine, *port, nativePath(std::string(image.substr(2))), result);
    std::string problem;
    if (result.changed && !saveStore(store, problem)) {
        return fail(problem);
    }
    if (result.script.crash) {
        crashProgram();
    }
    return answer(result.output, result.exitStatus, result.script.crashAfter);
}

static int runReboot(Store& store, Arguments arguments) {
    if (!arguments.empty()) {
        return failOnUsage();
    }
    size_t activated = rebootMachine(store.machine);
    std::string problem;
    if (activated > 0 && !saveStore(store, problem)) {
        return fail(problem);
    }
    return answer("Ports with newly activated firmware: " + std::to_string(activated) + "\n", 0, false);
}

static constexpr Command commands[] = {
    {"listattr", runListattr},
    {"download", runDownload},
    {"reboot", runReboot},
};

static constexpr std::string_view helpWords[] = {"/?", "-h", "--help", "help"};

static const Command* findCommand(std::string_view word) {
    for (const Command& command : commands) {
        if (command.word == word) {
            return &command;
        }
    }
    return nullptr;
}

static bool asksForHelp(Arguments arguments) {
    for (std::string_view word : helpWords) {
        if (arguments.size() == 1 && arguments[0] == word) {
            return true;
        }
    }
    return false;
}

int main(int argc, char** argv) {
    Arguments arguments(argv + (argc > 0 ? 1 : 0), argc > 0 ? static_cast<size_t>(argc) - 1 : 0);
    keepOutputBinary();
    if (asksForHelp(arguments)) {
        return answer(composeHelp(), 0, false);
    }
    const Command* command = arguments.empty() ? nullptr : findCommand(arguments[0]);
    Store store;
    std::string problem;
    // An unknown call is recorded, too: it shows a mistake of the caller.
    bool ready = loadStore(programDirectory(), store, problem) && recordCall(store, arguments, problem);
    if (command == nullptr) {
        return failOnUsage();
    }
    if (!ready) {
        return fail(problem);
    }
    return command->run(store, arguments.subspan(1));
}
