// What differs from system to system. Everything else in the simulator uses the standard library only.
#pragma once

#include <cstdint>
#include <string>

namespace simulator {

// The directory of the running program with a separator at its end; empty (the current directory) when the
// system does not report it.
std::string programDirectory();

// A path as the caller of the utility gave it, as this system opens it. Off Windows backslashes become
// slashes, and a drive letter becomes that drive's directory under the host directory (TARNLIFT_HOST, else
// "host" beside the program).
std::string nativePath(const std::string& path);

// Replaces the file "to" by "from" in one step: a reader of "to" sees the old file or the new one, never a part.
// Returns false when the system refuses; both files are unchanged then.
bool replaceFile(const std::string& from, const std::string& to);

// From now on standard output is written byte for byte, without translating line ends.
void keepOutputBinary();

void sleepMilliseconds(uint32_t milliseconds);

// Ends the program as a crash would. Buffered output is lost.
[[noreturn]] void crashProgram();

}  // namespace simulator
