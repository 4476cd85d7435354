// The system, the environment, the clock.
#include <cstdlib>

#include <windows.h>

#include "base/text.h"
#include "platform/platform.h"

static constexpr size_t LONG_PATH_SIZE = 4096;

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
