#include <cstring>

#include "platform/platform.h"

FILE* openFile(const char* path, OpenMode mode) {
    static const char* const modes[] = {"r", "rb", "a", "w"};  // by OpenMode
    // No file has a quotation mark in its name, but this system takes `x"&command&"\..` out of a path without a look at
    // it. In the command line for the utility such a path would end the marks around it, and run the command.
    return strchr(path, '"') == nullptr ? fopen(path, modes[mode]) : nullptr;
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
