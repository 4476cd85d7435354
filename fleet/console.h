// Standard output and standard error.
#pragma once

#include <cstddef>
#include <string_view>

namespace fleet {

// Prints "tarnfleet: MESSAGE" and a line end on standard error. The message may hold any text from outside.
void complain(std::string_view message);

// Writes a text to standard output, with the line ends of the system. Returns false, after a message, when not all of it
// could be written. The text must be fit to be shown.
bool print(std::string_view text);

// The same for content in which line ends stay as they are.
bool printBytes(std::string_view content);

// Whether standard output is a terminal, and one that shows colours that the user wants.
struct Terminal {
    bool isTerminal;
    bool hasColours;
    size_t columns;  // 0 when it is none
};

// What standard output is. On Windows it is set to understand the sequences for colours. NO_COLOR in the environment
// turns them off.
Terminal openTerminal();

}  // namespace fleet
