#include "platform/linux/native_path.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

#include "base/text.h"
#include "platform/platform.h"

static void replaceEach(char* text, char from, char to) {
    for (; *text != '\0'; text++) {
        if (*text == from) {
            *text = to;
        }
    }
}

static bool isLetter(char c) {
    return upperCase(c) >= 'A' && upperCase(c) <= 'Z';
}

static bool hasDrive(const char* path) {
    return isLetter(path[0]) && path[1] == ':';
}

// The program's path with slashes. Returns its length, 0 when the system does not tell it.
static size_t nativeProgramPath(char* out, size_t size) {
    ssize_t length = readlink("/proc/self/exe", out, size - 1);
    if (length < 1) {
        return 0;
    }
    out[length] = '\0';
    return static_cast<size_t>(length);
}

// The host directory: TARNLIFT_HOST, else `host` beside the program.
static bool hostDirectory(char* out) {
    const char* named = getenv("TARNLIFT_HOST");
    if (named != nullptr && named[0] != '\0') {
        return formatText(out, NATIVE_PATH_SIZE, "%s", named);
    }
    char program[NATIVE_PATH_SIZE];
    if (nativeProgramPath(program, sizeof program) == 0) {
        return false;
    }
    *(strrchr(program, '/') + 1) = '\0';
    return formatText(out, NATIVE_PATH_SIZE, "%shost", program);
}

bool hostPath(const char* entry, char* out) {
    char host[NATIVE_PATH_SIZE];
    if (!hostDirectory(host) || !formatText(out, NATIVE_PATH_SIZE, "%s/%s", host, entry)) {
        return false;
    }
    replaceEach(out + strlen(host), '\\', '/');
    return true;
}

static bool driveRoot(char letter, char* out) {
    char entry[] = "drives/x";
    entry[sizeof entry - 2] = static_cast<char>(upperCase(letter) - 'A' + 'a');
    return hostPath(entry, out);
}

bool holdsForbidden(const char* text, const char* characters) {
    for (; *text != '\0'; text++) {
        if (static_cast<unsigned char>(*text) < 0x20 || strchr(characters, *text) != nullptr) {
            return true;
        }
    }
    return false;
}

bool nativePath(const char* path, char* out) {
    if (!hasDrive(path)) {
        if (!formatText(out, NATIVE_PATH_SIZE, "%s", path)) {
            return false;
        }
        replaceEach(out, '\\', '/');
        return true;
    }
    char root[NATIVE_PATH_SIZE];
    if (!driveRoot(path[0], root)) {
        return false;
    }
    size_t rootLength = strlen(root);
    if (!formatText(out, NATIVE_PATH_SIZE, "%s/%s", root, path + 2)) {
        return false;
    }
    replaceEach(out + rootLength, '\\', '/');
    return true;
}

static bool isDirectory(const char* path) {
    struct stat status;
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

bool makeDirectories(const char* path) {
    // Usually only the last component is missing.
    if (mkdir(path, 0777) == 0) {
        return true;
    }
    if (errno == ENOENT) {
        char made[NATIVE_PATH_SIZE];
        copyText(made, sizeof made, path);
        for (char* slash = strchr(made + 1, '/'); slash != nullptr; slash = strchr(slash + 1, '/')) {
            *slash = '\0';
            mkdir(made, 0777);
            *slash = '/';
        }
        mkdir(path, 0777);
    }
    return isDirectory(path);
}

bool nativePathForWriting(const char* path, char* out) {
    char root[NATIVE_PATH_SIZE];
    if (hasDrive(path) && driveRoot(path[0], root)) {
        makeDirectories(root);
    }
    return nativePath(path, out);
}

size_t programPath(char* out, size_t size) {
    char native[NATIVE_PATH_SIZE];
    if (nativeProgramPath(native, sizeof native) == 0) {
        return 0;
    }
    copyText(out, size, native);
    replaceEach(out, '/', '\\');
    return strlen(out);
}

// Removes the empty parts, `.` and `..` from the absolute path `path`, in place, without looking at the disk.
static void normalize(char* path) {
    char* end = path;
    for (const char* part = path; *part != '\0';) {
        part += strspn(part, "/");
        size_t length = strcspn(part, "/");
        bool isParent = length == 2 && part[0] == '.' && part[1] == '.';
        bool isSelf = length == 1 && part[0] == '.';
        if (isParent) {
            while (end > path && *--end != '/') {
            }
        } else if (length > 0 && !isSelf) {
            *end++ = '/';
            memmove(end, part, length);
            end += length;
        }
        part += length;
    }
    if (end == path) {
        *end++ = '/';
    }
    *end = '\0';
}

size_t fullPath(const char* name, char* out, size_t size) {
    if (name[0] == '\0' || hasDrive(name)) {
        copyText(out, size, name);
        return strlen(out);
    }
    char native[NATIVE_PATH_SIZE];
    if (!nativePath(name, native)) {
        return 0;
    }
    char absolute[2 * NATIVE_PATH_SIZE];
    char current[PATH_MAX];
    if (native[0] == '/') {
        copyText(absolute, sizeof absolute, native);
    } else if (getcwd(current, sizeof current) != nullptr) {
        formatText(absolute, sizeof absolute, "%s/%s", current, native);
    } else {
        return 0;
    }
    normalize(absolute);
    replaceEach(absolute, '/', '\\');
    copyText(out, size, absolute);
    return strlen(out);
}
