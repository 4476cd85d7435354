#include "plan/system.h"

#include <cstdio>
#include <system_error>

#include <io.h>
#include <windows.h>

#include <sddl.h>  // needs windows.h before it

namespace fs = std::filesystem;

static constexpr DWORD LONG_PATH_SIZE = 32768;

fs::path fleet::programDirectory() {
    std::wstring path(LONG_PATH_SIZE, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), LONG_PATH_SIZE));
    return fs::path(path).parent_path();
}

// The user's own directory may have a name that the updater cannot use, but then it has a short one, mostly.
std::vector<fs::path> fleet::temporaryDirectories() {
    std::wstring own(LONG_PATH_SIZE, L'\0');
    std::wstring shortOwn(LONG_PATH_SIZE, L'\0');
    std::wstring system(LONG_PATH_SIZE, L'\0');
    own.resize(GetTempPathW(LONG_PATH_SIZE, own.data()));
    shortOwn.resize(GetShortPathNameW(own.c_str(), shortOwn.data(), LONG_PATH_SIZE));
    system.resize(GetSystemWindowsDirectoryW(system.data(), LONG_PATH_SIZE));
    return {own, shortOwn, fs::path(system) / "Temp"};
}

static std::string messageOf(DWORD error) {
    return std::system_category().message(static_cast<int>(error));
}

// Full access for the system, administrators and the owner, whatever the parent hands down: programs are run from it
// with an administrator's rights.
static constexpr wchar_t PRIVATE_ACCESS[] = L"D:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;FA;;;OW)";

fs::path fleet::makePrivateDirectory(const fs::path& parent, std::string& problem) {
    SECURITY_ATTRIBUTES access = {.nLength = sizeof access, .lpSecurityDescriptor = nullptr, .bInheritHandle = FALSE};
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(PRIVATE_ACCESS, SDDL_REVISION_1,
                                                              &access.lpSecurityDescriptor, nullptr)) {
        problem = messageOf(GetLastError());
        return {};
    }
    fs::path made;
    DWORD error = ERROR_ALREADY_EXISTS;
    for (DWORD attempt = 0; attempt < 100 && error == ERROR_ALREADY_EXISTS; attempt++) {
        const std::string number =
            std::to_string(GetCurrentProcessId()) + "-" + std::to_string(GetTickCount() + attempt);
        made = parent / ("tarnfleet-" + number);
        error = CreateDirectoryW(made.c_str(), &access) ? ERROR_SUCCESS : GetLastError();
    }
    LocalFree(access.lpSecurityDescriptor);
    if (error != ERROR_SUCCESS) {
        problem = messageOf(error);
        return {};
    }
    return made;
}

bool fleet::standardErrorIsTerminal() {
    return _isatty(_fileno(stderr)) != 0;
}
