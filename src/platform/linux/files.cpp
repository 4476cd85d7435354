#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/native_path.h"
#include "platform/platform.h"

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
    if (holdsForbidden(path, NOT_IN_PATHS)) {
        return nullptr;
    }
    if (mode == OPEN_READ_TEXT || mode == OPEN_READ_BINARY) {
        return nativePath(path, native) ? openNativeFile(native) : nullptr;
    }
    // "e" keeps the child from inheriting the file.
    return nativePathForWriting(path, native) ? fopen(native, mode == OPEN_APPEND ? "ae" : "we") : nullptr;
}

int removeFile(const char* path) {
    char native[NATIVE_PATH_SIZE];
    errno = ENAMETOOLONG;
    int result = nativePath(path, native) ? unlink(native) : -1;
    if (result != 0 && errno == ENOTDIR) {  // a part of the directory's path is a file, so there is no such file
        errno = ENOENT;
    }
    return result;
}

static int peekCharacter(FILE* file) {
    int c = getc_unlocked(file);
    ungetc(c, file);
    return c;
}

static int readCharacter(FILE* file) {
    int c = getc_unlocked(file);
    return c == '\r' && peekCharacter(file) == '\n' ? getc_unlocked(file) : c;
}

// Drops each carriage return that is followed by a line feed, which may be the next character of the file. Returns the
// length that is left.
static size_t joinLineEnds(FILE* file, char* text, size_t length) {
    const char* end = text + length;
    const char* from = static_cast<const char*>(memchr(text, '\r', length));
    if (from == nullptr) {
        return length;
    }
    char* to = text + (from - text);
    for (; from < end; from++) {
        if (*from != '\r' || (from + 1 < end ? from[1] : peekCharacter(file)) != '\n') {
            *to++ = *from;
        }
    }
    return static_cast<size_t>(to - text);
}

size_t readText(FILE* file, char* out, size_t size) {
    size_t length = 0;
    while (length < size) {
        size_t got = fread(out + length, 1, size - length, file);
        if (got == 0) {
            break;
        }
        length += joinLineEnds(file, out + length, got);
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
