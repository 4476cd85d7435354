// The system, the environment, the clock, the child process.
#include <cstdlib>
#include <cstring>

#include <windows.h>

#include "base/text.h"
#include "platform/platform.h"

static constexpr size_t LONG_PATH_SIZE = 4096;
static constexpr int COMMAND_NOT_RUN = 1;

void startPlatform() {
    // Nothing of what it guards against reaches a program here.
}

uint32_t systemMajorVersion() {
    // What the program's manifest names counts: without the manifest this is 6 on every newer system.
    return GetVersion() & 0xFF;
}

uint32_t processNumber() {
    return GetCurrentProcessId();
}

int localTime(LocalTime* now) {
    SYSTEMTIME time;
    GetLocalTime(&time);
    *now = {.year = time.wYear,
            .month = time.wMonth,
            .day = time.wDay,
            .dayOfWeek = time.wDayOfWeek,
            .hour = time.wHour,
            .minute = time.wMinute,
            .second = time.wSecond,
            .millisecond = time.wMilliseconds};
    return 0;
}

size_t programPath(char* out, size_t size) {
    return GetModuleFileNameA(nullptr, out, static_cast<DWORD>(size));
}

size_t fullPath(const char* name, char* out, size_t size) {
    char path[LONG_PATH_SIZE];
    DWORD length = GetFullPathNameA(name, sizeof path, path, nullptr);
    if (length == 0 || length >= sizeof path) {
        return 0;
    }
    copyText(out, size, path);
    return strlen(out);
}

const char* tempDirectory() {
    static char path[MAX_PATH + 1];
    const char* value = getenv("TEMP");
    if (value != nullptr) {
        return value;
    }
    DWORD length = GetTempPathA(sizeof path, path);
    if (length > 0 && path[length - 1] == '\\') {
        path[length - 1] = '\0';
    }
    return path;
}

const char* systemDrive() {
    const char* value = getenv("SYSTEMDRIVE");
    return value != nullptr ? value : "C:";
}

// Tells whether the interpreter could see more in the command line than one program with its output on one file. The
// file's path stands without marks, and a temp directory may have any name: with a "^" the interpreter would not count
// the mark behind it, and "%NAME%" may become anything.
static bool isMoreThanOneCommand(const char* commandLine) {
    bool marked = false;
    size_t redirections = 0;
    for (const char* p = commandLine + 1; *p != '\0'; p++) {
        if (*p == '"') {
            marked = !marked;
        } else if (!marked && (strchr("&|<^%\r\n", *p) != nullptr || (*p == '>' && ++redirections > 1))) {
            return true;
        }
    }
    return false;
}

int runCommand(const char* commandLine) {
    return isMoreThanOneCommand(commandLine) ? COMMAND_NOT_RUN : system(commandLine);
}
