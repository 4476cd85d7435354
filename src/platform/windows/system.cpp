// The system, the environment, the clock.
#include <cstdlib>

#include <windows.h>

#include "base/text.h"
#include "platform/platform.h"

static constexpr size_t LONG_PATH_SIZE = 4096;
static constexpr size_t CONSOLE_BUFFER_SIZE = 4096;

// Read by the start-up code of the C runtime: arguments with wildcards are not replaced by the names of files.
extern "C" int _dowildcard;
int _dowildcard = 0;

// Without COMSPEC the C runtime would look for cmd.exe in the current directory first.
static void setCommandInterpreter() {
    const char* value = getenv("COMSPEC");
    char directory[MAX_PATH + 1];
    if ((value != nullptr && value[0] != '\0') || GetSystemDirectoryA(directory, sizeof directory) == 0) {
        return;
    }
    char setting[sizeof directory + 32];
    formatText(setting, sizeof setting, "COMSPEC=%s\\cmd.exe", directory);
    _putenv(setting);
}

void startPlatform() {
    setCommandInterpreter();
    // An empty drive fails its file at once, instead of opening a window that waits for an answer.
    SetErrorMode(GetErrorMode() | SEM_FAILCRITICALERRORS);
    // A console would get each character by a call of its own. Each message is flushed.
    setvbuf(stdout, nullptr, _IOFBF, CONSOLE_BUFFER_SIZE);
}

uint32_t systemMajorVersion() {
    // The newest version that the program's manifest names, at most. Without the manifest this is 6 on every newer system.
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
