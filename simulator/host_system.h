// The few things that differ from system to system. Everything else here is plain standard library.
#pragma once

#include <cstdint>
#include <string>

namespace simulator {

// The directory of the running program with a separator at its end; empty (the current directory) when the
// system does not tell.
std::string programDirectory();

// A path as the caller of the utility gave it, as this system opens it. Off Windows backslashes become
// slashes, and a drive letter becomes that drive's directory under the host directory (TARNLIFT_HOST, else
// "host" beside the program).
std::string nativePath(const std::string& path);

// Puts the file "from" in the place of "to" in one step: whoever opens "to" sees the old file or the new one,
// never a part. False when the system refuses; both files are then as they were.
bool replaceFile(const std::string& from, const std::string& to);

// Lets standard output through byte for byte, without line ends being translated.
void keepOutputBinary();

void sleepMilliseconds(uint32_t milliseconds);

// Ends the program as a fault would. Buffered output is lost.
[[noreturn]] void crashProgram();

}  // namespace simulator
