#include <sys/stat.h>
#include <unistd.h>

#include "platform/platform.h"
#include "platform/posix/native_path.h"

FILE* openFile(const char* path, OpenMode mode) {
    // By OpenMode. The e keeps the handle from the child.
    static const char* const modes[] = {"re", "re", "ae", "we"};
    bool reads = mode == OPEN_READ_TEXT || mode == OPEN_READ_BINARY;
    char native[NATIVE_PATH_SIZE];
    if (!(reads ? nativePath(path, native) : nativePathForWriting(path, native))) {
        return nullptr;
    }
    FILE* file = fopen(native, modes[mode]);
    struct stat status;
    // This system opens a directory for reading.
    if (file != nullptr && reads && (fstat(fileno(file), &status) != 0 || S_ISDIR(status.st_mode))) {
        fclose(file);
        return nullptr;
    }
    return file;
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
