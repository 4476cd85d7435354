// The machine that adapters.txt describes: its ports as the lines of the file, so that lines of
// unknown meaning are kept, listed and written back unchanged.
#pragma once

#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "script.h"

namespace simulator {

enum class LineKind { EMPTY, COMMENT, ATTRIBUTE, PRINT, MODEL, DOWNLOAD, LISTATTR, CALLS };

// A line without its line end. The text belongs to the file's text or to the machine's ownTexts.
struct Line {
    LineKind kind;
    std::string_view text;
};

// One port: all lines from its "HBA" line up to the next port's.
struct Port {
    uint32_t number;
    std::vector<Line> lines;
};

struct Machine {
    std::vector<Line> head;  // the lines before the first port
    std::vector<Port> ports;
    std::string_view lineEnd = "\n";
    Script listing;                   // how the listing behaves
    std::string_view callsFile;       // plain name of the file that records the calls; empty for none
    std::list<std::string> ownTexts;  // lines that were changed; a list, since lines point into it
};

// The first port with this number, null if there is none.
Port* findPort(Machine& machine, uint32_t number);

// The value of the port's first line with exactly this key: the first word, as readers of the listing read
// it (up to a blank, comma or semicolon). Empty when the line or the value is missing.
std::string_view attributeValue(const Port& port, std::string_view key);

// Gives the port's first line with this key the value, or adds such a line after the port's last attribute.
void setAttribute(Machine& machine, Port& port, std::string_view key, std::string_view value);

// Whether both ports are on one board: the same serial number without regard to case, on the same bus. A port
// without a serial number is a board of its own.
bool onSameBoard(const Port& left, const Port& right);

// The options of the port's next scripted download. The line becomes a comment, so the next call gets the
// next line. False when no line is left; the script is untouched then.
bool useDownloadScript(Machine& machine, Port& port, Script& script);

// The listing. With displayNames a port's Model line shows the name of its @model line, if it has one.
std::string composeListing(const Machine& machine, bool displayNames);

// The whole file's text, to be written back.
std::string composeFile(const Machine& machine);

// The text after the first word of a script line and one blank.
std::string_view scriptArgument(std::string_view line);

}  // namespace simulator
