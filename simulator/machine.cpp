#include "machine.h"

#include "text.h"

namespace simulator {

static std::string_view keyOf(const Line& line) {
    return trim(line.text.substr(0, line.text.find(':')));
}

static std::string_view firstWord(std::string_view text) {
    std::string_view trimmed = trim(text);
    return trimmed.substr(0, trimmed.find_first_of(" ,;"));
}

Port* findPort(Machine& machine, uint32_t number) {
    for (Port& port : machine.ports) {
        if (port.number == number) {
            return &port;
        }
    }
    return nullptr;
}

static const Line* findLine(const Port& port, LineKind kind) {
    for (const Line& line : port.lines) {
        if (line.kind == kind) {
            return &line;
        }
    }
    return nullptr;
}

// The place of the port's first attribute with the key, or the number of its lines.
static size_t placeOfAttribute(const Port& port, std::string_view key) {
    size_t place = 0;
    while (place < port.lines.size() &&
           (port.lines[place].kind != LineKind::ATTRIBUTE || keyOf(port.lines[place]) != key)) {
        place++;
    }
    return place;
}

std::string_view attributeValue(const Port& port, std::string_view key) {
    size_t place = placeOfAttribute(port, key);
    if (place == port.lines.size()) {
        return {};
    }
    std::string_view text = port.lines[place].text;
    return firstWord(text.substr(text.find(':') + 1));
}

static std::string_view keepText(Machine& machine, std::string text) {
    return machine.ownTexts.emplace_back(std::move(text));
}

static std::string composeAttribute(std::string_view key, std::string_view value) {
    return std::string(key).append(": ").append(value);
}

void setAttribute(Machine& machine, Port& port, std::string_view key, std::string_view value) {
    std::string_view text = keepText(machine, composeAttribute(key, value));
    size_t place = placeOfAttribute(port, key);
    if (place < port.lines.size()) {
        port.lines[place].text = text;
        return;
    }
    while (place > 0 && port.lines[place - 1].kind != LineKind::ATTRIBUTE) {
        place--;
    }
    port.lines.insert(port.lines.begin() + static_cast<ptrdiff_t>(place), {LineKind::ATTRIBUTE, text});
}

static std::optional<uint32_t> busNumber(const Port& port) {
    return readNumber(attributeValue(port, "PCI Bus Number"), 16, UINT32_MAX);
}

bool onSameBoard(const Port& left, const Port& right) {
    if (&left == &right) {
        return true;
    }
    std::string_view serial = attributeValue(left, "Serial Number");
    if (serial.empty() || !equalsIgnoringCase(serial, attributeValue(right, "Serial Number"))) {
        return false;
    }
    return busNumber(left) == busNumber(right);
}

bool useDownloadScript(Machine& machine, Port& port, Script& script) {
    for (Line& line : port.lines) {
        if (line.kind != LineKind::DOWNLOAD) {
            continue;
        }
        std::string message;
        readScript(scriptArgument(line.text), FOR_DOWNLOAD, script, message);
        line = {LineKind::COMMENT, keepText(machine, std::string("# used: ").append(trim(line.text)))};
        return true;
    }
    return false;
}

static void appendPort(const Port& port, bool displayNames, std::string_view lineEnd, std::string& listing) {
    const Line* model = displayNames ? findLine(port, LineKind::MODEL) : nullptr;
    for (const Line& line : port.lines) {
        if (line.kind == LineKind::PRINT) {
            listing.append(scriptArgument(line.text)).append(lineEnd);
        }
        if (line.kind != LineKind::ATTRIBUTE) {
            continue;
        }
        if (model != nullptr && keyOf(line) == "Model") {
            listing.append(composeAttribute("Model", trim(scriptArgument(model->text))));
        } else {
            listing.append(line.text);
        }
        listing.append(lineEnd);
    }
}

std::string composeListing(const Machine& machine, bool displayNames) {
    std::string listing;
    for (const Line& line : machine.head) {
        if (line.kind == LineKind::PRINT) {
            listing.append(scriptArgument(line.text)).append(machine.lineEnd);
        }
    }
    for (const Port& port : machine.ports) {
        if (&port != &machine.ports.front()) {
            listing.append(machine.lineEnd);
        }
        appendPort(port, displayNames, machine.lineEnd, listing);
    }
    return listing;
}

static void appendLines(const std::vector<Line>& lines, std::string_view lineEnd, std::string& text) {
    for (const Line& line : lines) {
        text.append(line.text).append(lineEnd);
    }
}

std::string composeFile(const Machine& machine) {
    std::string text;
    appendLines(machine.head, machine.lineEnd, text);
    for (const Port& port : machine.ports) {
        appendLines(port.lines, machine.lineEnd, text);
    }
    return text;
}

std::string_view scriptArgument(std::string_view line) {
    size_t blank = line.find_first_of(" \t");
    return blank == std::string_view::npos ? std::string_view() : line.substr(blank + 1);
}

}  // namespace simulator
