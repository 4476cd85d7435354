// Standard output and standard error.
#pragma once

#include <string_view>

namespace fleet {

// Prints "tarnfleet: MESSAGE" and a line end on standard error. The message may hold any text from outside.
void complain(std::string_view message);

// Writes to standard output. Returns false, after a message, when not all of it could be written.
bool print(std::string_view text);

}  // namespace fleet
