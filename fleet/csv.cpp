#include "csv.h"

#include <initializer_list>

#include "console.h"
#include "fleet.h"

using namespace fleet;

static constexpr std::string_view HEADER = "server,server_state,return_code,wwn,model,pci,state,status,version_before,"
                                           "version_image,image_file,version_now,message\r\n";

static std::string numberText(const std::optional<int>& number) {
    return number ? std::to_string(*number) : "";
}

// A value from outside. Spreadsheets run what begins like a formula, in quotation marks or not; an apostrophe keeps it a
// text. Where a comma is the decimal sign, they split rows at semicolons, so a formula can begin there, too.
static std::string field(std::string_view value) {
    std::string text;
    char last = ';';
    for (const char c : value) {
        const bool beginsFormula = last == ';' && std::string_view("=+-@").find(c) != std::string_view::npos;
        text.append(beginsFormula ? "'" : "").append(1, c);
        last = c == '"' ? last : c;
    }
    if (text.find_first_of(",\"") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (const char c : text) {
        quoted.append(c == '"' ? 2 : 1, c);
    }
    return quoted + '"';
}

static void appendRow(std::string& csv, std::initializer_list<std::string> fields) {
    const char* separator = "";
    for (const std::string& text : fields) {
        csv.append(separator).append(text);
        separator = ",";
    }
    csv += "\r\n";
}

static void appendServer(std::string& csv, const ServerResult& server) {
    const std::string name = field(server.name);
    const std::string state(rowOf(server.state).name);
    const std::string code = numberText(server.code);  // a minus sign is that of a number
    for (const PortResult& port : server.ports) {
        const std::string& message = port.reason.empty() ? port.message : port.reason;
        appendRow(csv, {name, state, code, field(port.wwn), field(port.model), field(port.pci),
                        std::string(rowOf(port.state).name), numberText(port.status), field(port.before),
                        field(port.image), field(port.file), field(port.now), field(message)});
    }
    if (server.ports.empty()) {
        appendRow(csv, {name, state, code, "", "", "", "", "", "", "", "", "", field(reasonText(server))});
    }
}

int fleet::runCsv(std::span<const std::string> arguments) {
    FleetRequest request;
    if (const ExitCode code = readRequest(arguments, OutputOption::ALLOWED, request); code != EXIT_ALL_WELL) {
        return code;
    }
    const auto servers = readFleet(request);
    if (!servers) {
        return EXIT_NOT_DONE;
    }
    std::string csv(HEADER);
    for (const ServerResult& server : *servers) {
        appendServer(csv, server);
    }
    return writeOutput(request, csv) ? EXIT_ALL_WELL : EXIT_NOT_DONE;
}
