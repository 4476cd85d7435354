// Starts a Windows program as no shell can: with any command line and environment, without the right to create a registry
// key, or to be killed in the middle.
//
// Usage: launch.exe [OPTION ...] -- COMMAND LINE
//   --program PATH            the program's file; without it the first word of the command line is looked for
//   --set NAME VALUE          a variable of its environment
//   --unset NAME              the same, but the variable is absent
//   --deny-key KEY            nobody may open KEY (below HKEY_LOCAL_MACHINE) until the program has ended
//   --kill-after-lines N FILE ends the program by force when FILE has N lines
// The command line is handed on as it is. The result is the program's exit code, or 250 when something cannot be done.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

#include <windows.h>

static constexpr UINT KILLED = 249;
static constexpr int CANNOT_LAUNCH = 250;
static constexpr DWORD POLL_MILLISECONDS = 5;
static constexpr char COMMAND_LINE_MARK[] = " -- ";

struct Settings {
    const char* program = nullptr;
    const char* deniedKey = nullptr;
    const char* watchedFile = nullptr;
    int lines = 0;
};

// Reads the options up to "--" and carries out those for the environment, which the program inherits.
static bool readOptions(char** options, Settings* settings) {
    for (; *options != nullptr && strcmp(*options, "--") != 0; options++) {
        std::string name = *options;
        const char* value = *++options;
        if (value == nullptr) {
            return false;
        }
        if (name == "--program") {
            settings->program = value;
        } else if (name == "--unset") {
            SetEnvironmentVariableA(value, nullptr);
        } else if (name == "--deny-key") {
            settings->deniedKey = value;
        } else if (name == "--set" && options[1] != nullptr) {
            SetEnvironmentVariableA(value, *++options);
        } else if (name == "--kill-after-lines" && options[1] != nullptr) {
            settings->lines = atoi(value);
            settings->watchedFile = *++options;
        } else {
            return false;
        }
    }
    return *options != nullptr;
}

// Creates a key that nobody may open. Its owner may still change that.
static HKEY denyKey(const char* name) {
    HKEY key = nullptr;
    ACL nobody;
    SECURITY_DESCRIPTOR descriptor;
    bool denied = InitializeAcl(&nobody, sizeof nobody, ACL_REVISION) &&
                  InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION) &&
                  SetSecurityDescriptorDacl(&descriptor, TRUE, &nobody, FALSE) &&
                  RegCreateKeyExA(HKEY_LOCAL_MACHINE, name, 0, nullptr, 0, KEY_ALL_ACCESS | WRITE_DAC, nullptr, &key,
                                  nullptr) == ERROR_SUCCESS &&
                  RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, &descriptor) == ERROR_SUCCESS;
    return denied ? key : nullptr;
}

static void removeDeniedKey(HKEY key, const char* name) {
    SECURITY_DESCRIPTOR everybody;
    InitializeSecurityDescriptor(&everybody, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&everybody, TRUE, nullptr, FALSE);
    RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, &everybody);
    RegCloseKey(key);
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, name);
}

static auto countLines(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return std::count(std::istreambuf_iterator<char>(file), {}, '\n');
}

// Waits for the program's end, or brings it about. Returns the exit code.
static DWORD waitFor(HANDLE process, const Settings& settings) {
    while (settings.watchedFile != nullptr && WaitForSingleObject(process, POLL_MILLISECONDS) == WAIT_TIMEOUT) {
        if (countLines(settings.watchedFile) >= settings.lines) {
            TerminateProcess(process, KILLED);
            break;
        }
    }
    DWORD exitCode = CANNOT_LAUNCH;
    WaitForSingleObject(process, INFINITE);
    GetExitCodeProcess(process, &exitCode);
    return exitCode;
}

static int launch(const Settings& settings, char* commandLine) {
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION started = {};
    if (!CreateProcessA(settings.program, commandLine, nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &started)) {
        fprintf(stderr, "launch: cannot start '%s', error %lu\n", commandLine, GetLastError());
        return CANNOT_LAUNCH;
    }
    DWORD exitCode = waitFor(started.hProcess, settings);
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    return static_cast<int>(exitCode);
}

int main(int, char** argv) {
    Settings settings;
    char* commandLine = strstr(GetCommandLineA(), COMMAND_LINE_MARK);
    if (commandLine == nullptr || !readOptions(argv + 1, &settings)) {
        fputs("launch: the options are not understood\n", stderr);
        return CANNOT_LAUNCH;
    }
    HKEY denied = settings.deniedKey == nullptr ? nullptr : denyKey(settings.deniedKey);
    if (settings.deniedKey != nullptr && denied == nullptr) {
        fputs("launch: the key cannot be denied\n", stderr);
        return CANNOT_LAUNCH;
    }
    int result = launch(settings, commandLine + strlen(COMMAND_LINE_MARK));
    if (denied != nullptr) {
        removeDeniedKey(denied, settings.deniedKey);
    }
    return result;
}
