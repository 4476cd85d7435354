#include "check.h"

#include <cstdint>

#include "command_line.h"
#include "console.h"
#include "json.h"
#include "judgement.h"
#include "text.h"

using namespace fleet;

static std::string composeObject(const ServerResult& server) {
    JsonWriter json;
    json.open('{').name("state").text(rowOf(server.state).name).name("reasons").open('[');
    for (const std::string& reason : server.reasons) {
        json.text(reason);
    }
    json.close(']').name("reboot").boolean(server.reboot).name("ports").open('[');
    for (const PortResult& port : server.ports) {
        json.open('{').name("wwn").text(port.wwn).name("model").text(port.model);
        json.name("state").text(rowOf(port.state).name).name("reason").text(port.reason).close('}');
    }
    return json.close(']').close('}').result();
}

// Reads a file that the command line names. Returns false, after a message, when there is none.
static bool readNamedReport(const std::string& name, Report& report) {
    const FileContent content = readTextFile(pathOf(name));
    if (!content.exists) {
        complain("no such file: " + name);
        return false;
    }
    report = readReport(content);
    return true;
}

int fleet::runCheck(std::span<const std::string> arguments) {
    std::vector<std::string> files;
    std::optional<std::string> code;
    Evidence evidence;
    const Option options[] = {{"--code", &code, nullptr}, {"--rebooted", nullptr, &evidence.rebooted}};
    if (!readArguments(arguments, options, files)) {
        return EXIT_WRONG_ARGUMENTS;
    }
    if (files.empty() || files.size() > 2) {
        complain("one or two files have to be named");
        return EXIT_WRONG_ARGUMENTS;
    }
    if (code && !(evidence.returnCode = readReturnCode(*code))) {
        complain("--code needs a number, not " + *code);
        return EXIT_WRONG_ARGUMENTS;
    }
    evidence.hasRun = true;
    const bool hasQuery = files.size() == 2;
    if (!readNamedReport(files[0], evidence.run) ||
        (hasQuery && !readNamedReport(files[1], evidence.query.emplace()))) {
        return EXIT_NOT_DONE;
    }
    const ServerResult server = judge(evidence);
    return print(composeObject(server) + "\n") ? rowOf(server.state).exitCode : EXIT_NOT_DONE;
}
