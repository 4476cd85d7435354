#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "console.h"

using namespace fleet;

static std::string_view environmentValue(const char* name) {
    const char* value = getenv(name);  // NOLINT(concurrency-mt-unsafe): nothing changes the environment
    return value == nullptr ? "" : value;
}

Terminal fleet::openTerminal() {
    constexpr size_t usualColumns = 80;
    if (isatty(STDOUT_FILENO) == 0) {
        return {false, false, 0};
    }
    winsize size = {};
    const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    const std::string_view kind = environmentValue("TERM");
    const bool hasColours = environmentValue("NO_COLOR").empty() && !kind.empty() && kind != "dumb";
    return {true, hasColours, isKnown ? size.ws_col : usualColumns};
}
