// Runs the adapter utility without a shell: the command line is split here the way cmd.exe would split it.
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

// A command line split into its parts. The texts are in `storage`.
struct Command {
    char* program;
    char programFile[NATIVE_PATH_SIZE];  // the native path of the program
    char* arguments[COMMAND_SIZE / 2];   // ended by a null; the first is programFile
    char* outputFile;                    // null when the line names none
    char storage[COMMAND_SIZE];
};

// Copies the line without its first and its last quotation mark.
static void copyWithoutOuterQuotes(char* out, const char* commandLine) {
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

// Reads the name of the output file, which follows the first '>' and ends at the next blank. Returns its end in `text`.
static const char* readOutputFile(Command* command, const char* text, char** store) {
    text += strspn(text, " ");
    size_t length = strcspn(text, " ");
    command->outputFile = *store;
    copyPrefix(*store, length + 1, text, length);
    *store += length + 1;
    return text + length;
}

// Reads the arguments and the output file among them. `store` points to the free part of the command's storage.
static void readArguments(Command* command, const char* text, char* store) {
    size_t count = 1;
    bool inQuotes = false;
    bool inArgument = false;
    while (true) {
        bool redirects = *text == '>' && !inQuotes && command->outputFile == nullptr;
        bool separates = *text == '\0' || redirects || (*text == ' ' && !inQuotes);
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
            inQuotes = !inQuotes;
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
    copyWithoutOuterQuotes(line, commandLine);
    if (line[0] != '"') {
        return false;
    }
    size_t length = strcspn(line + 1, "\"");
    const char* rest = line + 1 + length;
    command->program = command->storage;
    copyPrefix(command->storage, COMMAND_SIZE, line + 1, length);
    command->outputFile = nullptr;
    readArguments(command, *rest == '"' ? rest + 1 : rest, command->storage + length + 1);
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

// How the child starts. Each step of setting it up can fail.
struct SpawnSettings {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
};

// Redirects the child's standard output, unless `output` is -1, and restores the signals that startPlatform ignores for
// us only. Returns 0 or the system's error number.
static int fillSettings(SpawnSettings* settings, int output) {
    sigset_t restored;
    sigemptyset(&restored);
    sigaddset(&restored, SIGPIPE);
    sigaddset(&restored, SIGXFSZ);
    int failure = output < 0 ? 0 : posix_spawn_file_actions_adddup2(&settings->actions, output, STDOUT_FILENO);
    if (failure == 0) {
        failure = posix_spawnattr_setsigdefault(&settings->attributes, &restored);
    }
    if (failure == 0) {
        failure = posix_spawnattr_setflags(&settings->attributes, POSIX_SPAWN_SETSIGDEF);
    }
    return failure;
}

// Starts the program. Returns 0 or the system's error number; nothing runs when a step before the start failed.
static int spawn(Command* command, int output, pid_t* child) {
    SpawnSettings settings;
    int failure = posix_spawn_file_actions_init(&settings.actions);
    if (failure != 0) {
        return failure;
    }
    failure = posix_spawnattr_init(&settings.attributes);
    if (failure == 0) {
        failure = fillSettings(&settings, output);
        if (failure == 0) {
            failure = posix_spawn(child, command->programFile, &settings.actions, &settings.attributes,
                                  command->arguments, environ);
        }
        posix_spawnattr_destroy(&settings.attributes);
    }
    posix_spawn_file_actions_destroy(&settings.actions);
    return failure;
}

// Runs the program with its standard output redirected to `output`, or not redirected if that is -1.
static int startAndWait(Command* command, int output) {
    if (!nativePath(command->program, command->programFile)) {
        return CANNOT_RUN;
    }
    command->arguments[0] = command->programFile;
    pid_t child = 0;
    int failure = spawn(command, output, &child);
    if (failure != 0) {
        fprintf(stderr, "cannot run %s: %s\n", command->programFile, strerror(failure));
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
    if (holdsForbidden(command.outputFile, NOT_IN_PATHS) || !nativePathForWriting(command.outputFile, path)) {
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
