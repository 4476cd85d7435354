#include "adapters_parser.h"

#include <algorithm>

#include "text.h"

namespace simulator {

namespace {

// Where a line is: before the first port, in a port's block, or after the empty line that ends the block.
enum class Place { HEAD, BLOCK, BETWEEN };

// One kind of script line: where it is allowed, and the function that reads the text after its word.
struct ScriptLine {
    std::string_view word;
    LineKind kind;
    bool inHead;
    bool inBlock;
    bool (*read)(std::string_view argument, Machine& machine, std::string& message);
};

// Lines with these keys before the first port show that the port's own first line is missing or mistyped.
constexpr std::string_view keysOfAPort[] = {"Port WWN", "Model", "Serial Number", "FW Version"};

}  // namespace

static bool readDownloadLine(std::string_view argument, Machine& /*machine*/, std::string& message) {
    Script script;
    return readScript(argument, FOR_DOWNLOAD, script, message);
}

static bool readListattrLine(std::string_view argument, Machine& machine, std::string& message) {
    return readScript(argument, FOR_LISTING, machine.listing, message);
}

static bool readModelLine(std::string_view argument, Machine& /*machine*/, std::string& message) {
    return !trim(argument).empty() || refuse(message, {"@model needs a name"});
}

// The file is beside the program, so that a copied machine never writes into the one that it was copied from.
static bool readCallsLine(std::string_view argument, Machine& machine, std::string& message) {
    machine.callsFile = trim(argument);
    bool bare = machine.callsFile.find_first_of(std::string_view("/\\:\0", 4)) == std::string_view::npos;
    return (bare && !machine.callsFile.empty()) || refuse(message, {"@calls needs a plain file name"});
}

static bool readPrintLine(std::string_view /*argument*/, Machine& /*machine*/, std::string& /*message*/) {
    return true;
}

static constexpr ScriptLine scriptLines[] = {
    {"@listattr", LineKind::LISTATTR, true, false, readListattrLine},
    {"@calls", LineKind::CALLS, true, false, readCallsLine},
    {"@download", LineKind::DOWNLOAD, false, true, readDownloadLine},
    {"@model", LineKind::MODEL, false, true, readModelLine},
    {"@print", LineKind::PRINT, true, true, readPrintLine},
};

static void keepLine(Machine& machine, LineKind kind, std::string_view text) {
    std::vector<Line>& lines = machine.ports.empty() ? machine.head : machine.ports.back().lines;
    lines.push_back({kind, text});
}

static const ScriptLine* findScriptLine(std::string_view word) {
    for (const ScriptLine& row : scriptLines) {
        if (row.word == word) {
            return &row;
        }
    }
    return nullptr;
}

static bool readScriptLine(std::string_view line, Place place, Machine& machine, std::string& message) {
    std::string_view word = line.substr(0, line.find_first_of(" \t"));
    const ScriptLine* row = findScriptLine(word);
    if (row == nullptr) {
        return refuse(message, {"'", word, "' is not a script line"});
    }
    if (!(place == Place::HEAD && row->inHead) && !(place == Place::BLOCK && row->inBlock)) {
        return refuse(message,
                      {word, row->inBlock ? " is only allowed in a port's block, before the empty line that ends it"
                                          : " is only allowed before the first port"});
    }
    keepLine(machine, row->kind, line);
    return row->read(scriptArgument(line), machine, message);
}

static bool startPort(std::string_view line, std::string_view value, Machine& machine, std::string& message) {
    std::optional<uint32_t> number = readPortNumber(value);
    if (!number) {
        return refuse(message, {"'HBA:' needs a port number"});
    }
    machine.ports.push_back({*number, {}});
    keepLine(machine, LineKind::ATTRIBUTE, line);
    return true;
}

static bool isKeyOfAPort(std::string_view key) {
    return std::find(std::begin(keysOfAPort), std::end(keysOfAPort), key) != std::end(keysOfAPort);
}

static bool readAttributeLine(std::string_view line, Place& place, Machine& machine, std::string& message) {
    size_t colon = line.find(':');
    std::string_view key = trim(line.substr(0, colon));
    // A saved listing may begin with lines of other programs, such as the prompt or a banner.
    if (place == Place::HEAD && !(colon != std::string_view::npos && (key == "HBA" || isKeyOfAPort(key)))) {
        keepLine(machine, LineKind::COMMENT, line);
        return true;
    }
    if (colon == std::string_view::npos || key.empty() || key.front() == '#' || key.front() == '@') {
        return refuse(message, {"a line is 'Key: value', or has '#' or '@' as its first character"});
    }
    if (key == "HBA") {
        place = Place::BLOCK;
        return startPort(line, trim(line.substr(colon + 1)), machine, message);
    }
    if (place != Place::BLOCK) {
        return refuse(message, {"this line is outside a port's block, which starts with 'HBA: <number>'"});
    }
    keepLine(machine, LineKind::ATTRIBUTE, line);
    return true;
}

static bool readLine(std::string_view line, Place& place, Machine& machine, std::string& message) {
    if (trim(line).empty()) {
        if (place == Place::BLOCK) {
            place = Place::BETWEEN;
        }
        keepLine(machine, LineKind::EMPTY, line);
        return true;
    }
    if (line.front() == '#') {
        keepLine(machine, LineKind::COMMENT, line);
        return true;
    }
    if (line.front() == '@') {
        return readScriptLine(line, place, machine, message);
    }
    return readAttributeLine(line, place, machine, message);
}

// Removes the next line from the rest and returns it without its line end.
static std::string_view cutLine(std::string_view& rest) {
    size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

bool parseAdapters(const char* text, size_t length, Machine& machine, ParseError& error) {
    static constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
    std::string_view rest(text, length);
    if (rest.starts_with(BYTE_ORDER_MARK)) {
        rest.remove_prefix(BYTE_ORDER_MARK.size());
    }
    machine = Machine();
    error = ParseError();
    size_t firstEnd = rest.find('\n');
    if (firstEnd != std::string_view::npos && firstEnd > 0 && rest[firstEnd - 1] == '\r') {
        machine.lineEnd = "\r\n";
    }
    Place place = Place::HEAD;
    while (!rest.empty()) {
        error.line++;
        if (!readLine(cutLine(rest), place, machine, error.message)) {
            return false;
        }
    }
    return true;
}

}  // namespace simulator
