#include "console.h"

#include <cstdio>

#include "text.h"

void fleet::complain(std::string_view message) {
    const std::string line = "tarnfleet: " + shownText(message) + "\n";
    fwrite(line.data(), 1, line.size(), stderr);
}

bool fleet::print(std::string_view text) {
    const bool whole = fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (fflush(stdout) != 0 || !whole) {
        complain("standard output cannot be written");
        return false;
    }
    return true;
}
