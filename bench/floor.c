// The least that a run can cost: starts the adapter utility as often as the run does, with its output on a file, waits
// for it, reads and removes the file, and at the end writes as many bytes as the run does. It looks at nothing that it
// reads. The file is removed, as in the run, because to empty a file costs more than to make one.
// Usage: floor UTILITY FILE DOWNLOADS BYTES
#include <fcntl.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

static char chunk[1 << 16];

static void startAndWait(char** arguments, const char* path) {
    int output = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    pid_t child;
    int status;
    if (output < 0 || posix_spawn(&child, arguments[0], &actions, NULL, arguments, environ) != 0 ||
        waitpid(child, &status, 0) < 0) {
        _exit(1);
    }
    posix_spawn_file_actions_destroy(&actions);
    close(output);
}

static void readAndRemove(const char* path) {
    int file = open(path, O_RDONLY);
    while (read(file, chunk, sizeof chunk) > 0) {
    }
    close(file);
    unlink(path);
}

int main(int argc, char** argv) {
    if (argc != 5) {
        return 1;
    }
    char* listing[] = {argv[1], "listattr", "/c", NULL};
    char* download[] = {argv[1], "download", "n=1", "i=image.grp", NULL};
    startAndWait(listing, argv[2]);
    readAndRemove(argv[2]);
    for (long left = atol(argv[3]); left > 0; left--) {
        startAndWait(download, argv[2]);
        readAndRemove(argv[2]);
    }
    for (long left = atol(argv[4]); left > 0;) {
        size_t length = left < (long)sizeof chunk ? (size_t)left : sizeof chunk;
        if (write(STDOUT_FILENO, chunk, length) != (ssize_t)length) {
            return 1;
        }
        left -= (long)length;
    }
    return 0;
}
