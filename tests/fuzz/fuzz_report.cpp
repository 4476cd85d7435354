// The readers of tarnfleet: a run's report and the query after it.
#include <cstdlib>

#include "files.h"
#include "json.h"
#include "judgement.h"
#include "text.h"

using namespace fleet;

static constexpr std::string_view QUERY = "\n--query--\n";  // separates the two

static void require(bool holds) {
    if (!holds) {
        abort();
    }
}

static Report readBytes(std::string_view bytes) {
    FileContent content;
    content.exists = true;
    content.bytes = decodedText(bytes);
    const std::string wellFormed = "UTF-8: " + content.bytes;  // which is not decoded again
    require(decodedText(wellFormed) == wellFormed);
    return readReport(content);
}

// A text of a report can be shown as it is, and cannot end a script element.
static void requireShown(const std::string& text) {
    require(shownText(text) == text);
    JsonWriter json;
    require(json.text(text).result().find_first_of("<>&\n") == std::string::npos);
}

extern "C" int LLVMFuzzerTestOneInput(const char* data, size_t size) {
    const std::string_view bytes(data, size);
    const size_t end = std::min(bytes.find(QUERY), size);
    Evidence evidence;
    evidence.hasRun = true;
    evidence.run = readBytes(bytes.substr(0, end));
    evidence.rebooted = size % 2 != 0;
    evidence.returnCode = readReturnCode(bytes.substr(0, end));
    if (end < size) {
        evidence.query = readBytes(bytes.substr(end + QUERY.size()));
    }
    const ServerResult server = judge(evidence);
    require(!server.ports.empty() || server.state <= State::NO_REPORT || server.state == State::NO_ADAPTERS);
    require(!server.reasons.empty() || rowOf(server.state).exitCode == EXIT_ALL_WELL || !server.ports.empty());
    for (const std::string& reason : server.reasons) {
        requireShown(reason);
    }
    for (const PortResult& port : server.ports) {
        require(worse(server.state, port.state) == server.state);
        for (const std::string* text : {&port.wwn, &port.model, &port.pci, &port.before, &port.image, &port.file,
                                        &port.now, &port.reason, &port.message}) {
            requireShown(*text);
        }
    }
    return 0;
}
