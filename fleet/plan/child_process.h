// Child processes that run side by side, and the user's wish to stop. Two implementations: linux/ and windows/.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace fleet {

// What a child gets. Its standard input is empty.
struct ChildOrder {
    std::filesystem::path program;
    std::vector<std::string> arguments;                            // UTF-8, without the program's name
    std::filesystem::path directory;                               // its current directory
    std::vector<std::pair<std::string, std::string>> environment;  // these variables; the others are this process's
    std::filesystem::path output;  // standard output goes to this file, which is created or emptied
    std::filesystem::path errors;  // standard error likewise
};

// A child that was started: process number and 0, or the handles of process and job.
struct Child {
    intptr_t process = 0;
    intptr_t group = 0;
};

struct ChildEnd {
    int code = 0;         // return code when it ended by itself
    std::string violent;  // otherwise what ended it, such as "signal 11"
};

// While it exists, the end of a child and the user's interruption (Ctrl+C, a closed console, SIGTERM) wake
// waitForChildren, and the interruption does not end this process. At most one at a time.
class ProcessWatch {
public:
    ProcessWatch();
    ~ProcessWatch();
    ProcessWatch(const ProcessWatch&) = delete;
    ProcessWatch& operator=(const ProcessWatch&) = delete;
};

// Whether the user has interrupted since the ProcessWatch was made.
bool userInterrupted();

// Starts a child. On false the problem says why. A ProcessWatch must exist.
bool startChild(const ChildOrder& order, Child& child, std::string& problem);

// Returns when one of the children has ended, the user has interrupted, or the time has passed. It may return early.
void waitForChildren(std::span<const Child> children, int milliseconds);

// How the child ended; nothing while it runs. Once it has ended, it must not be asked about again.
std::optional<ChildEnd> endOfChild(const Child& child);

// Ends the child with everything that it started, and waits until it has ended.
void killChild(const Child& child);

}  // namespace fleet
