// The readers of the Linux layer. The first line of the input is a command line and a path, the rest is a text file.
// No program is started and no file is touched: the calls that would do so are wrapped.
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include <spawn.h>
#include <sys/mman.h>
#include <unistd.h>

#include "platform/platform.h"

static std::string namesInUse;   // what may be opened is part of this text, but for the directory
static std::string fileContent;  // of every file

static void must(bool holds, const char* rule, const std::string& got) {
    if (!holds) {
        dprintf(STDERR_FILENO, "\nBroken rule: %s\n  got: %s\n", rule, got.c_str());
        abort();
    }
}

extern "C" int __wrap_open(const char* path, int, ...) {
    must(strpbrk(path, "\"*<>?|\r\n\t") == nullptr, "only names that Windows allows are opened", path);
    const char* slash = strrchr(path, '/');
    must(namesInUse.find(slash == nullptr ? path : slash + 1) != std::string::npos, "the input names the file", path);
    const int file = memfd_create("file", MFD_CLOEXEC);
    const ssize_t written = pwrite(file, fileContent.data(), fileContent.size(), 0);
    must(written == static_cast<ssize_t>(fileContent.size()), "the file can be made", path);
    return file;
}

extern "C" int __wrap_mkdir(const char*, mode_t) {
    errno = EACCES;
    return -1;
}

extern "C" int __wrap_posix_spawn(pid_t*, const char* path, const posix_spawn_file_actions_t*, const posix_spawnattr_t*,
                                  char* const argv[], char* const[]) {
    must(strcmp(path, argv[0]) == 0, "the first argument is the program", argv[0]);
    for (char* const* argument = argv + 1; *argument != nullptr; argument++) {
        must(strchr(*argument, '"') == nullptr, "an argument has no quotation marks", *argument);
    }
    return ENOENT;
}

static void readPath(const char* path) {
    char out[1024];
    char again[sizeof out];
    const size_t length = fullPath(path, out, sizeof out);
    if (length == 0 || length == sizeof out - 1) {
        return;  // refused, or cut
    }
    must(strlen(out) == length, "the length of a full path is returned", out);
    fullPath(out, again, sizeof again);
    must(strcmp(out, again) == 0, "the full path of a full path is the same", std::string(out) + " then " + again);
    const bool hasDrive = out[1] == ':';
    must(hasDrive || (std::string(out) + "\\").find("\\..\\") == std::string::npos, "a full path has no ..", out);
}

static std::string withoutCarriageReturns(const std::string& bytes) {
    std::string text;
    for (size_t i = 0; i < bytes.size(); i++) {
        if (bytes[i] != '\r' || bytes[i + 1] != '\n') {
            text += bytes[i];
        }
    }
    return text;
}

static void readTextFile(size_t blockSize) {
    const std::string wanted = withoutCarriageReturns(fileContent);
    char block[64];
    std::string text;
    FILE* file = openFile("text", OPEN_READ_TEXT);
    for (size_t length = 1; length > 0;) {
        length = readText(file, block, blockSize);
        text.append(block, length);
    }
    must(text == wanted, "blocks of a text file have no carriage return before a line feed", text);
    rewind(file);
    text.clear();
    while (readTextLine(file, block, blockSize + 1)) {
        text += block;
    }
    must(text == wanted || wanted.find('\0') != std::string::npos, "the lines of a text file are its text", text);
    fclose(file);
}

extern "C" int LLVMFuzzerTestOneInput(const char* data, size_t size) {
    static const bool prepared = setenv("TARNLIFT_HOST", "/no such host", 1) == 0 && (stderr = fopen("/dev/null", "w"));
    const std::string input(data, size);
    const size_t end = input.find('\n');
    const std::string line = input.substr(0, end);
    fileContent = prepared && end < size ? input.substr(end + 1) : "";
    namesInUse = line + "text";
    std::erase(namesInUse, '"');
    runCommand(line.c_str());
    readPath(line.c_str());
    readTextFile(1 + size % 63);
    return 0;
}
