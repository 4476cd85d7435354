#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include "platform/platform.h"

// How the C runtime opens a file for each OpenMode.
static constexpr struct {
    int flags;
    const char* mode;
} OPEN_MODES[] = {
    {_O_RDONLY | _O_TEXT, "r"},
    {_O_RDONLY | _O_BINARY, "rb"},
    {_O_WRONLY | _O_CREAT | _O_APPEND | _O_TEXT, "a"},
    {_O_WRONLY | _O_CREAT | _O_TRUNC | _O_TEXT, "w"},
};

FILE* openFile(const char* path, OpenMode mode) {
    // No file has a quotation mark in its name, but Windows collapses `x"&command&"\..` in a path without checking that it
    // exists. In the command line for the utility such a path would end the quoted part, and run the command.
    if (strchr(path, '"') != nullptr) {
        return nullptr;
    }
    int descriptor = _open(path, OPEN_MODES[mode].flags | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
    FILE* file = descriptor < 0 ? nullptr : _fdopen(descriptor, OPEN_MODES[mode].mode);
    if (file == nullptr && descriptor >= 0) {
        _close(descriptor);
    }
    return file;
}

int removeFile(const char* path) {
    if (DeleteFileA(path)) {
        return 0;
    }
    DWORD failure = GetLastError();
    errno = failure == ERROR_FILE_NOT_FOUND || failure == ERROR_PATH_NOT_FOUND ? ENOENT : EACCES;
    return -1;
}

size_t readText(FILE* file, char* out, size_t size) {
    return fread(out, 1, size, file);
}

bool readTextLine(FILE* file, char* out, size_t size) {
    return fgets(out, static_cast<int>(size), file) != nullptr;
}
