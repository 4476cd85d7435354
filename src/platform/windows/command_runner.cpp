// Runs the adapter utility through cmd.exe.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/platform.h"
#include "settings/program_names.h"

static constexpr int COMMAND_NOT_RUN = 1;

static size_t countOf(const char* text, char c) {
    size_t count = 0;
    for (; *text != '\0'; text++) {
        count += *text == c ? 1 : 0;
    }
    return count;
}

// Returns whether cmd.exe could see more than one program with its output in one file. The path of the output file is not
// quoted, so a temp directory may hold any of its special characters. After '^' it would not see the next quotation mark.
static bool isMoreThanOneCommand(const char* commandLine) {
    bool quoted = false;
    size_t redirections = 0;
    for (const char* p = commandLine + 1; *p != '\0'; p++) {
        if (*p == '"') {
            quoted = !quoted;
        } else if (!quoted && (strchr("&|<^", *p) != nullptr || (*p == '>' && ++redirections > 1))) {
            return true;
        }
    }
    return false;
}

// Returns why cmd.exe must not get the command line, null when it may.
static const char* findDanger(const char* commandLine) {
    if (strpbrk(commandLine, "\r\n") != nullptr) {
        return "a path in its command line holds a line end";
    }
    // %NAME% is replaced before quotation marks are looked at, and its value may hold one. A single % stays as it is.
    if (countOf(commandLine, '%') > 1) {
        return "cmd.exe would replace the text between two % in its command line";
    }
    if (isMoreThanOneCommand(commandLine)) {
        return "the path of the temp file holds one of & | < > ^";
    }
    return nullptr;
}

int runCommand(const char* commandLine) {
    const char* danger = findDanger(commandLine);
    if (danger != nullptr) {
        fprintf(stderr, NOT_RUN_MESSAGE, appName, danger);
        return COMMAND_NOT_RUN;
    }
    return system(commandLine);
}
