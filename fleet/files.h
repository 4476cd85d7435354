// Reads and writes whole files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace fleet {

// What became of reading a file.
struct FileContent {
    bool exists = false;  // also true for a directory, a device or a pipe, and for a file that cannot be opened
    std::string fault;    // empty when the content is there, else a predicate such as "is not a regular file"
    std::string bytes;
    int64_t changed = 0;  // time of the last change, in seconds since 1970
};

// Reads a regular file of up to `limit` bytes, an empty one too. Does not open pipes and devices.
FileContent readFile(const std::filesystem::path& path, size_t limit);

// The longest text file that readTextFile accepts: room for a report of more than 10,000 ports.
inline constexpr size_t TEXT_FILE_LIMIT = size_t{8} * 1024 * 1024;

// The same for a text in UTF-8, UTF-16 or, if it is neither, Latin-1. `bytes` is well-formed UTF-8 without a byte order
// mark.
FileContent readTextFile(const std::filesystem::path& path);

// Replaces or makes a file, as a whole or not at all: the content is written under another name in the same directory
// first. Replaces regular files only; a symbolic link stays, and its target is replaced. On Linux the permissions stay.
// Returns an empty text, or what went wrong.
std::string writeFile(const std::filesystem::path& path, std::string_view content);

}  // namespace fleet
