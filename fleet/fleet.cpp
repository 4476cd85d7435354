#include "fleet.h"

#include <algorithm>

#include "command_line.h"
#include "console.h"
#include "server_files.h"
#include "text.h"

using namespace fleet;

static ExitCode refuse(std::string_view message) {
    complain(message);
    return EXIT_WRONG_ARGUMENTS;
}

ExitCode fleet::readRequest(std::span<const std::string> arguments, OutputOption outputOption, FleetRequest& request) {
    std::vector<std::string> operands;
    const Option options[] = {{"--servers", &request.serverList, nullptr}, {"-o", &request.output, nullptr}};
    const std::span<const Option> allowed(options, outputOption == OutputOption::REFUSED ? 1 : 2);
    if (!readArguments(arguments, allowed, operands)) {
        return EXIT_WRONG_ARGUMENTS;
    }
    if (operands.size() != 1) {
        return refuse("one directory has to be named");
    }
    if (outputOption == OutputOption::REQUIRED && !request.output) {
        return refuse("the file to write has to be named: -o FILE");
    }
    request.directory = operands.front();
    return EXIT_ALL_WELL;
}

static bool isBefore(const ServerResult& left, const ServerResult& right) {
    if (left.state != right.state) {
        return left.state < right.state;
    }
    const std::string leftName = lowerCase(left.name);
    const std::string rightName = lowerCase(right.name);
    return leftName != rightName ? leftName < rightName : left.name < right.name;
}

std::optional<std::vector<ServerResult>> fleet::readFleet(const FleetRequest& request) {
    std::optional<std::vector<ServerFiles>> files = findServers(pathOf(request.directory));
    if (!files) {
        return std::nullopt;
    }
    if (files->empty()) {
        complain(request.directory + " holds no report: a report's name ends in .xml");
        return std::nullopt;
    }
    if (request.serverList && !addMissingServers(pathOf(*request.serverList), *files)) {
        return std::nullopt;
    }
    std::vector<ServerResult> servers;
    servers.reserve(files->size());
    for (const ServerFiles& server : *files) {
        servers.push_back(judge(readEvidence(server)));
    }
    std::stable_sort(servers.begin(), servers.end(), isBefore);
    return servers;
}

bool fleet::writeOutput(const FleetRequest& request, const std::string& content) {
    if (!request.output) {
        return printBytes(content);
    }
    const std::string problem = writeFile(pathOf(*request.output), content);
    if (!problem.empty()) {
        complain(*request.output + " was not written: " + problem);
    }
    return problem.empty();
}

std::string fleet::reasonText(const ServerResult& server) {
    std::string text;
    for (const std::string& reason : server.reasons) {
        text += (text.empty() ? "" : "; ") + reason;
    }
    return text;
}
