// Runs the adapter utility. No shell is started: the command line is read here as the interpreter that it is made for
// would read it.
#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/text.h"
#include "platform/linux/native_path.h"
#include "platform/platform.h"

static constexpr size_t COMMAND_SIZE = 2048;
static constexpr int CANNOT_RUN = 1;
static constexpr int SIGNAL_STATUS_BASE = 128;

// A command line taken apart. The texts lie in `storage`.
struct Command {
    char* program;
    char* arguments[COMMAND_SIZE / 2];  // ended by a null; the first is the program
    char* outputFile;                   // null when the line names none
    char storage[COMMAND_SIZE];
};

// Takes the first and the last quotation mark off.
static void copyWithoutOuterMarks(char* out, const char* commandLine) {
    copyText(out, COMMAND_SIZE, commandLine);
    char* last = strrchr(out, '"');
    if (last != nullptr) {
        memmove(last, last + 1, strlen(last));
    }
    char* first = strchr(out, '"');
    if (first != nullptr) {
        memmove(first, first + 1, strlen(first));
    }
}

// Reads what stands behind the first > : blanks, the file's name, up to the next blank. Returns where it ends.
static const char* readOutputFile(Command* command, const char* text, char** store) {
    text += strspn(text, " ");
    size_t length = strcspn(text, " ");
    command->outputFile = *store;
    copyPiece(*store, length + 1, text, length);
    *store += length + 1;
    return text + length;
}

// Reads the arguments, and the output file among them. `store` is free room in the command's storage.
static void readArguments(Command* command, const char* text, char* store) {
    size_t count = 1;
    bool inMarks = false;
    bool inArgument = false;
    while (true) {
        bool redirects = *text == '>' && !inMarks && command->outputFile == nullptr;
        bool separates = *text == '\0' || redirects || (*text == ' ' && !inMarks);
        if (separates && inArgument) {
            *store++ = '\0';
            inArgument = false;
        }
        if (*text == '\0') {
            break;
        }
        if (redirects) {
            text = readOutputFile(command, text + 1, &store);
            continue;
        }
        if (!separates && !inArgument) {
            command->arguments[count++] = store;
            inArgument = true;
        }
        if (*text == '"') {
            inMarks = !inMarks;
        } else if (!separates) {
            *store++ = *text;
        }
        text++;
    }
    command->arguments[count] = nullptr;
}

static bool readCommandLine(Command* command, const char* commandLine) {
    if (strlen(commandLine) >= COMMAND_SIZE) {
        return false;
    }
    char line[COMMAND_SIZE];
    copyWithoutOuterMarks(line, commandLine);
    if (line[0] != '"') {
        return false;
    }
    size_t length = strcspn(line + 1, "\"");
    const char* behind = line + 1 + length;
    command->program = command->storage;
    copyPiece(command->storage, COMMAND_SIZE, line + 1, length);
    command->outputFile = nullptr;
    readArguments(command, *behind == '"' ? behind + 1 : behind, command->storage + length + 1);
    return true;
}

static int exitCodeOf(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            return CANNOT_RUN;
        }
    }
    return WIFSIGNALED(status) ? SIGNAL_STATUS_BASE + WTERMSIG(status) : WEXITSTATUS(status);
}

// Starts the program with its standard output on `output`, or on ours when that is -1, and waits for its end.
static int startAndWait(Command* command, int output) {
    char program[NATIVE_PATH_SIZE];
    if (!nativePath(command->program, program)) {
        return CANNOT_RUN;
    }
    command->arguments[0] = program;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (output >= 0) {
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    }
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t defaults;  // what startPlatform ignores for us, the child should not
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    pid_t child = 0;
    int failure = posix_spawn(&child, program, &actions, &attributes, command->arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (failure != 0) {
        fprintf(stderr, "cannot run %s: %s\n", program, strerror(failure));
        return CANNOT_RUN;
    }
    return exitCodeOf(child);
}

int runCommand(const char* commandLine) {
    Command command;
    if (!readCommandLine(&command, commandLine)) {
        return CANNOT_RUN;
    }
    if (command.outputFile == nullptr) {
        return startAndWait(&command, -1);
    }
    char path[NATIVE_PATH_SIZE];
    if (!nativePathForWriting(command.outputFile, path)) {
        return CANNOT_RUN;
    }
    int output = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (output < 0) {
        return CANNOT_RUN;
    }
    int exitCode = startAndWait(&command, output);
    close(output);
    return exitCode;
}
