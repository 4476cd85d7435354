#include "host_system.h"

#include <cstdio>
#include <cstdlib>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#else
#include <ctime>
#include <unistd.h>
#endif

namespace simulator {

static std::string directoryOf(const char* path, size_t length) {
    std::string name(path, length);
    size_t separator = name.find_last_of("/\\");
    return separator == std::string::npos ? std::string() : name.substr(0, separator + 1);
}

#ifdef _WIN32

std::string programDirectory() {
    char path[32768];
    DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
    return directoryOf(path, length < sizeof path ? length : 0);
}

std::string nativePath(const std::string& path) {
    return path;
}

bool replaceFile(const std::string& from, const std::string& to) {
    return MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
}

void keepOutputBinary() {
    _setmode(_fileno(stdout), _O_BINARY);
}

void sleepMilliseconds(uint32_t milliseconds) {
    Sleep(milliseconds);
}

// abort() may open a dialog on this system, and an unattended run would wait for it.
void crashProgram() {
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(EXCEPTION_ACCESS_VIOLATION));
    abort();
}

#else

std::string programDirectory() {
    char path[4096];
    ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    bool whole = length > 0 && static_cast<size_t>(length) < sizeof path;
    return directoryOf(path, whole ? static_cast<size_t>(length) : 0);
}

static std::string hostDirectory() {
    const char* named = getenv("TARNLIFT_HOST");
    return named != nullptr && *named != 0 ? std::string(named) : programDirectory() + "host";
}

static bool startsWithDrive(const std::string& path) {
    char lower = static_cast<char>(path.empty() ? 0 : path[0] | 0x20);
    return path.size() >= 2 && path[1] == ':' && lower >= 'a' && lower <= 'z';
}

std::string nativePath(const std::string& path) {
    std::string native = path;
    if (startsWithDrive(path)) {
        native = hostDirectory() + "/drives/" + static_cast<char>(path[0] | 0x20) + "/" + path.substr(2);
    }
    for (char& letter : native) {
        if (letter == '\\') {
            letter = '/';
        }
    }
    return native;
}

bool replaceFile(const std::string& from, const std::string& to) {
    return rename(from.c_str(), to.c_str()) == 0;
}

void keepOutputBinary() {
}

void sleepMilliseconds(uint32_t milliseconds) {
    timespec left = {static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1000000};
    while (nanosleep(&left, &left) != 0) {
    }
}

void crashProgram() {
    abort();
}

#endif

}  // namespace simulator
