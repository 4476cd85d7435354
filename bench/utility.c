// An adapter utility that costs next to nothing: a listing is the file listing.txt beside it as it stands, and every
// download succeeds and asks for a reboot.
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

static const char goodReply[] = "NO Error\n";
enum { REBOOT_REQUIRED = 80 };

static int printFile(const char* path) {
    static char chunk[1 << 16];
    int file = open(path, O_RDONLY);
    if (file < 0) {
        return 1;
    }
    ssize_t length;
    while ((length = read(file, chunk, sizeof chunk)) > 0) {
        if (write(STDOUT_FILENO, chunk, (size_t)length) != length) {
            return 1;
        }
    }
    return length == 0 ? 0 : 1;
}

int main(int argc, char** argv) {
    if (argc > 1 && strcmp(argv[1], "download") == 0) {
        ssize_t length = sizeof goodReply - 1;
        return write(STDOUT_FILENO, goodReply, (size_t)length) == length ? REBOOT_REQUIRED : 1;
    }
    char path[4096];
    const char* slash = strrchr(argv[0], '/');
    int directoryLength = slash == NULL ? 0 : (int)(slash - argv[0] + 1);
    snprintf(path, sizeof path, "%.*slisting.txt", directoryLength, argv[0]);
    return printFile(path);
}
