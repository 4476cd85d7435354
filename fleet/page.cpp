#include "page.h"

#include <ctime>

#include "console.h"
#include "files.h"
#include "fleet.h"
#include "json.h"
#include "page_template.h"
#include "text.h"
#include "version.h"

using namespace fleet;

static void writeStates(JsonWriter& json) {
    json.name("states").open('[');
    for (const StateRow& row : stateRows()) {
        json.open('{').name("name").text(row.name).name("word").text(row.word);
        json.name("meaning").text(row.meaning).close('}');
    }
    json.close(']');
}

static void writePort(JsonWriter& json, const PortResult& port) {
    json.open('{').name("wwn").text(port.wwn).name("model").text(port.model).name("pci").text(port.pci);
    json.name("state").text(rowOf(port.state).name).name("status").number(port.status);
    json.name("before").text(port.before).name("image").text(port.image).name("file").text(port.file);
    json.name("now").text(port.now).name("reason").text(port.reason).name("message").text(port.message).close('}');
}

static void writeServer(JsonWriter& json, const ServerResult& server) {
    json.open('{').name("name").text(server.name).name("state").text(rowOf(server.state).name);
    json.name("code").number(server.code).name("reasons").open('[');
    for (const std::string& reason : server.reasons) {
        json.text(reason);
    }
    json.close(']').name("time").number(server.time).name("reboot").boolean(server.reboot);
    json.name("preview").boolean(server.preview).name("ports").open('[');
    for (const PortResult& port : server.ports) {
        writePort(json, port);
    }
    json.close(']').close('}');
}

// What the page's script reads. Servers come the worst first, then by name; texts can be empty:
//     {"program": "tarnfleet 14.4.473.14", "created": SECONDS SINCE 1970, "preview": whether any report is a preview,
//      "states": [{"name", "word", "meaning"}, ... in order of badness],
//      "servers": [{"name", "state", "code": number or null, "reasons": [TEXT, ...],
//                   "time": of the report's file in seconds since 1970, or null, "reboot", "preview",
//                   "ports": [{"wwn", "model", "pci", "state", "status": number or null, "before", "image", "file",
//                              "now", "reason", "message"}, ...]}, ...]}
static std::string composeData(const std::vector<ServerResult>& servers) {
    bool preview = false;
    for (const ServerResult& server : servers) {
        preview = preview || server.preview;
    }
    JsonWriter json;
    json.open('{').name("program").text(NAME_AND_VERSION).name("created").number(int64_t{time(nullptr)});
    json.name("preview").boolean(preview);
    writeStates(json);
    json.name("servers").open('[');
    for (const ServerResult& server : servers) {
        writeServer(json, server);
    }
    return json.close(']').close('}').result();
}

int fleet::runPage(std::span<const std::string> arguments) {
    FleetRequest request;
    if (const ExitCode code = readRequest(arguments, OutputOption::REQUIRED, request); code != EXIT_ALL_WELL) {
        return code;
    }
    const auto servers = readFleet(request);
    if (!servers) {
        return EXIT_NOT_DONE;
    }
    std::string page(pageBeforeData());
    page.append(composeData(*servers)).append(pageAfterData());
    return writeOutput(request, page) ? EXIT_ALL_WELL : EXIT_NOT_DONE;
}
