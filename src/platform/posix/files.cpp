#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/platform.h"
#include "platform/posix/native_path.h"

FILE* openNativeFile(const char* path) {
    int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        return nullptr;
    }
    struct stat status;
    bool readable = fstat(descriptor, &status) == 0 && !S_ISDIR(status.st_mode) && !S_ISFIFO(status.st_mode);
    FILE* file = readable ? fdopen(descriptor, "r") : nullptr;
    if (file == nullptr) {
        close(descriptor);
    }
    return file;
}

FILE* openFile(const char* path, OpenMode mode) {
    char native[NATIVE_PATH_SIZE];
    if (mode == OPEN_READ_TEXT || mode == OPEN_READ_BINARY) {
        return nativePath(path, native) ? openNativeFile(native) : nullptr;
    }
    // The e keeps the handle from the child.
    return nativePathForWriting(path, native) ? fopen(native, mode == OPEN_APPEND ? "ae" : "we") : nullptr;
}

int removeFile(const char* path) {
    char native[NATIVE_PATH_SIZE];
    return nativePath(path, native) ? unlink(native) : -1;
}

static int readCharacter(FILE* file) {
    int c = getc_unlocked(file);
    if (c != '\r') {
        return c;
    }
    int next = getc_unlocked(file);
    if (next == '\n') {
        return next;
    }
    ungetc(next, file);
    return c;
}

size_t readText(FILE* file, char* out, size_t size) {
    size_t length = 0;
    int c;
    while (length < size && (c = readCharacter(file)) != EOF) {
        out[length++] = static_cast<char>(c);
    }
    return length;
}

bool readTextLine(FILE* file, char* out, size_t size) {
    size_t length = 0;
    int c = 0;
    while (length < size - 1 && c != '\n' && (c = readCharacter(file)) != EOF) {
        out[length++] = static_cast<char>(c);
    }
    out[length] = '\0';
    return length > 0;
}
