#include "plan/progress_line.h"

#include <cstdio>
#include <string>

#include "plan/system.h"

using namespace fleet;

static constexpr auto SHORTEST_PAUSE = std::chrono::milliseconds(100);

ProgressLine::ProgressLine(size_t servers) : total(servers), terminal(standardErrorIsTerminal()) {
}

ProgressLine::~ProgressLine() {
    if (length > 0) {
        fprintf(stderr, "\r%*s\r", static_cast<int>(length), "");
    }
}

void ProgressLine::show(size_t planned, size_t refused) {
    const auto now = std::chrono::steady_clock::now();
    if (!terminal || now - lastShown < SHORTEST_PAUSE) {
        return;
    }
    lastShown = now;
    std::string line = std::to_string(planned + refused) + " of " + std::to_string(total) + " servers";
    if (refused > 0) {
        line += ", " + std::to_string(refused) + " refused";
    }
    length = line.size();
    fprintf(stderr, "\r%s", line.c_str());
    fflush(stderr);
}
