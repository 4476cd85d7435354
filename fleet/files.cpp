#include "files.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <system_error>

#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

#include "text.h"

namespace fs = std::filesystem;
using namespace fleet;

static int64_t secondsOf(fs::file_time_type time) {
    const auto systemTime = std::chrono::file_clock::to_sys(time);
    return std::chrono::floor<std::chrono::seconds>(systemTime).time_since_epoch().count();
}

static std::string tooLarge(size_t limit) {
    return "is too large: more than " + std::to_string(limit / 1024) + " KiB";
}

FileContent fleet::readFile(const fs::path& path, size_t limit) {
    FileContent content;
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    content.exists = status.type() != fs::file_type::not_found;
    if (status.type() != fs::file_type::regular) {
        content.fault = error ? "cannot be read: " + error.message() : "is not a regular file";
        return content;
    }
    const fs::file_time_type changed = fs::last_write_time(path, error);
    content.changed = error ? 0 : secondsOf(changed);
    const uintmax_t size = fs::file_size(path, error);
    if (error || size > limit) {
        content.fault = error ? "cannot be read: " + error.message() : tooLarge(limit);
        return content;
    }
    std::ifstream file(path, std::ios::binary);
    // Room for one byte more, which tells a file that grows meanwhile.
    content.bytes.resize(static_cast<size_t>(size) + 1);
    file.read(content.bytes.data(), static_cast<std::streamsize>(content.bytes.size()));
    const auto count = static_cast<size_t>(file.gcount());
    if (!file.eof() || file.bad() || count > size) {
        content.fault = "cannot be read";
    }
    content.bytes.resize(content.fault.empty() ? count : 0);
    return content;
}

FileContent fleet::readTextFile(const fs::path& path) {
    FileContent content = readFile(path, TEXT_FILE_LIMIT);
    content.bytes = decodedText(content.bytes);
    return content;
}

static fs::path temporaryPath(const fs::path& path) {
#ifdef _WIN32
    const int process = _getpid();
#else
    const int process = getpid();
#endif
    fs::path temporary = path;
    temporary += ".tarnfleet-" + std::to_string(process);
    return temporary;
}

std::string fleet::writeFile(const fs::path& path, std::string_view content) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        return "it is not a regular file";
    }
    const fs::path target = fs::exists(status) ? fs::canonical(path, error) : path;
    const fs::path temporary = temporaryPath(target);
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    if (!file) {
        return "the directory does not take a new file";
    }
#ifndef _WIN32  // there a new file has the rights of its directory
    if (fs::exists(status)) {
        fs::permissions(temporary, status.permissions(), error);
    }
#endif
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    error.clear();
    if (file) {
        fs::rename(temporary, target, error);
    }
    if (!file || error) {
        std::error_code ignored;
        fs::remove(temporary, ignored);
        return file ? error.message() : "the content could not be written";
    }
    return "";
}
