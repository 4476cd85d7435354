// One line on the terminal that counts up while a plan runs. Without a terminal nothing is printed.
#pragma once

#include <chrono>
#include <cstddef>

namespace fleet {

class ProgressLine {
public:
    explicit ProgressLine(size_t servers);
    ~ProgressLine();  // clears the line
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    // Shows the new numbers, unless the last ones were shown a moment ago.
    void show(size_t planned, size_t refused);

private:
    size_t total;
    bool terminal;
    size_t length = 0;
    std::chrono::steady_clock::time_point lastShown;
};

}  // namespace fleet
