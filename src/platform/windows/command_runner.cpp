// Runs the adapter utility through cmd.exe.
#include <cstdlib>
#include <cstring>

#include "platform/platform.h"

static constexpr int COMMAND_NOT_RUN = 1;

// Tells whether the interpreter could see more in the command line than one program with its output on one file. The
// file's path stands without marks, and a temp directory may have any name: with a "^" the interpreter would not count
// the mark behind it, and "%NAME%" may become anything.
static bool isMoreThanOneCommand(const char* commandLine) {
    bool marked = false;
    size_t redirections = 0;
    for (const char* p = commandLine + 1; *p != '\0'; p++) {
        if (*p == '"') {
            marked = !marked;
        } else if (!marked && (strchr("&|<^%\r\n", *p) != nullptr || (*p == '>' && ++redirections > 1))) {
            return true;
        }
    }
    return false;
}

int runCommand(const char* commandLine) {
    return isMoreThanOneCommand(commandLine) ? COMMAND_NOT_RUN : system(commandLine);
}
