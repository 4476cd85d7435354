// Reads the text of adapters.txt into a machine. The text may hold anything at all.
#pragma once

#include <cstddef>
#include <string>

#include "machine.h"

namespace simulator {

struct ParseError {
    size_t line = 0;  // counts from 1
    std::string message;
};

// Reads the whole text, which is not UTF-16. The machine is cleared first; it points into the text, which must outlive
// it. On false the error names the line that cannot be read, and the machine is not usable.
bool parseAdapters(const char* text, size_t length, Machine& machine, ParseError& error);

}  // namespace simulator
