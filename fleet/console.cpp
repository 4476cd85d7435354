#include "console.h"

#include <cstdio>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

#include "text.h"

using namespace fleet;

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

bool fleet::printBytes(std::string_view content) {
#ifdef _WIN32
    _setmode(_fileno(stdout), _O_BINARY);
#endif
    return print(content);
}
