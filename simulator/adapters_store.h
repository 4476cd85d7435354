// adapters.txt beside the program: reads it, and replaces it when the machine has changed.
#pragma once

#include <span>
#include <string>

#include "machine.h"

namespace simulator {

// A machine and the text that its lines point into. Must not be copied.
struct Store {
    std::string directory;  // with a separator at its end, or empty for the current one
    std::string path;
    std::string text;
    Machine machine;
};

// Reads adapters.txt from the directory. On false the problem says which file, which line, and what is wrong.
bool loadStore(const std::string& directory, Store& store, std::string& problem);

// Writes the machine back. The file is replaced in one step: a program that is killed here leaves the old
// file or the new one. On false the old file is as it was, and the problem says why.
bool saveStore(const Store& store, std::string& problem);

// Appends the arguments, joined by blanks, as one line to the file that @calls names, if it does.
bool recordCall(const Store& store, std::span<char*> arguments, std::string& problem);

}  // namespace simulator
