#include <cstring>

#include "platform/platform.h"

FILE* openFile(const char* path, OpenMode mode) {
    static const char* const modes[] = {"r", "rb", "a", "w"};  // by OpenMode
    return fopen(path, modes[mode]);
}

int removeFile(const char* path) {
    return remove(path);
}

size_t readText(FILE* file, char* out, size_t size) {
    return fread(out, 1, size, file);
}

bool readTextLine(FILE* file, char* out, size_t size) {
    return fgets(out, static_cast<int>(size), file) != nullptr;
}
