#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <dirent.h>
#include <sys/stat.h>

#include "base/text.h"
#include "platform/linux/native_path.h"
#include "platform/platform.h"

// The found entries in their order, and the next one to return. A search owns the names of its entries; each is stored at
// its own length, since a directory may hold many.
struct FoundEntry {
    char* name;
    bool isDirectory;
};

struct DirectorySearch {
    FoundEntry* entries;
    size_t count;
    size_t next;
};

// Wildcards as Windows matches them, with the three codes of its own pattern translation (DOS_STAR, DOS_QM, DOS_DOT): `*`
// before a dot stops at the last dot of the name; `?` also matches nothing at a dot or at the end; a dot before a wildcard
// also matches the end of the name.
enum PatternPart : char { ANY_TO_LAST_DOT = '<', ONE_OR_END = '>', DOT_OR_END = '"' };

static void translatePattern(char* pattern) {
    for (char* p = pattern; *p != '\0'; p++) {
        if (*p == '*' && p[1] == '.') {
            *p = ANY_TO_LAST_DOT;
        } else if (*p == '.' && (p[1] == '*' || p[1] == '?')) {
            *p = DOT_OR_END;
        } else if (*p == '?') {
            *p = ONE_OR_END;
        }
    }
}

static constexpr size_t LONGEST_NAME = 255;

// Works from the pattern's end to its start. rest[i] tells whether the part of the pattern that was handled so far matches
// the name from character i on, so no pattern needs more than length times length steps.
static bool matchesPattern(const char* name, const char* pattern) {
    bool rest[LONGEST_NAME + 2] = {};
    size_t length = strlen(name);
    if (length > LONGEST_NAME) {  // some file systems do not count in bytes
        return false;
    }
    const char* lastDot = strrchr(name, '.');
    rest[length] = true;
    for (size_t p = strlen(pattern); p-- > 0;) {
        bool afterNext = false;  // rest[i + 1] for the pattern after this part
        for (size_t i = length + 1; i-- > 0;) {
            bool atEnd = i == length;
            bool here = rest[i];  // rest[i] for the pattern after this part
            switch (pattern[p]) {
            case '*':
                rest[i] = here || (!atEnd && rest[i + 1]);
                break;
            case ANY_TO_LAST_DOT:
                rest[i] = here || (!atEnd && name + i != lastDot && rest[i + 1]);
                break;
            case ONE_OR_END:
                rest[i] = atEnd || name[i] == '.' ? here : afterNext;
                break;
            case DOT_OR_END:
                rest[i] = atEnd ? here : name[i] == '.' && afterNext;
                break;
            default:
                rest[i] = !atEnd && upperCase(name[i]) == upperCase(pattern[p]) && afterNext;
            }
            afterNext = here;
        }
    }
    return rest[0];
}

static int compareEntries(const void* left, const void* right) {
    const char* a = static_cast<const FoundEntry*>(left)->name;
    const char* b = static_cast<const FoundEntry*>(right)->name;
    size_t i = 0;
    while (a[i] != '\0' && upperCase(a[i]) == upperCase(b[i])) {
        i++;
    }
    int folded = static_cast<unsigned char>(upperCase(a[i])) - static_cast<unsigned char>(upperCase(b[i]));
    return folded != 0 ? folded : strcmp(a, b);
}

static bool addEntry(DirectorySearch* search, size_t* room, const char* name, bool isDirectory) {
    if (search->count == *room) {
        size_t more = *room == 0 ? 64 : 2 * *room;
        void* grown = realloc(search->entries, more * sizeof(FoundEntry));
        if (grown == nullptr) {
            return false;
        }
        search->entries = static_cast<FoundEntry*>(grown);
        *room = more;
    }
    char* kept = strdup(name);
    if (kept == nullptr) {
        return false;
    }
    search->entries[search->count++] = {.name = kept, .isDirectory = isDirectory};
    return true;
}

static bool isDirectoryEntry(int directory, const dirent* found) {
    if (found->d_type != DT_LNK && found->d_type != DT_UNKNOWN) {
        return found->d_type == DT_DIR;
    }
    struct stat status;
    return fstatat(directory, found->d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

static void searchDirectory(DirectorySearch* search, const char* directory, char* pattern) {
    DIR* stream = opendir(directory);
    if (stream == nullptr) {
        return;
    }
    translatePattern(pattern);
    size_t room = 0;
    bool goesOn = true;
    errno = 0;
    for (const dirent* found; goesOn && (found = readdir(stream)) != nullptr; errno = 0) {
        if (matchesPattern(found->d_name, pattern) && !holdsForbidden(found->d_name, NOT_IN_NAMES)) {
            goesOn = addEntry(search, &room, found->d_name, isDirectoryEntry(dirfd(stream), found));
        }
    }
    bool complete = goesOn && errno == 0;
    closedir(stream);
    while (!complete && search->count > 0) {  // half a directory is worse than none
        free(search->entries[--search->count].name);
    }
    if (search->count > 1) {
        qsort(search->entries, search->count, sizeof(FoundEntry), compareEntries);
    }
}

static void lookUpName(DirectorySearch* search, const char* path, const char* name) {
    struct stat status;
    size_t room = 0;
    if (name[0] != '\0' && !holdsForbidden(name, NOT_IN_NAMES) && lstat(path, &status) == 0) {
        bool isDirectory = stat(path, &status) == 0 && S_ISDIR(status.st_mode);
        addEntry(search, &room, name, isDirectory);
    }
}

DirectorySearch* openDirectorySearch(const char* path, DirectoryEntry* first) {
    char native[NATIVE_PATH_SIZE];
    DirectorySearch* search = static_cast<DirectorySearch*>(calloc(1, sizeof(DirectorySearch)));
    if (search == nullptr || !nativePath(path, native)) {
        free(search);
        return nullptr;
    }
    char* slash = strrchr(native, '/');
    char* name = slash == nullptr ? native : slash + 1;
    if (strpbrk(name, "*?") == nullptr) {
        lookUpName(search, native, name);
    } else {
        char pattern[NATIVE_PATH_SIZE];
        copyText(pattern, sizeof pattern, name);
        *name = '\0';
        searchDirectory(search, slash == nullptr ? "." : native, pattern);
    }
    if (!nextDirectoryEntry(search, first)) {
        closeDirectorySearch(search);
        return nullptr;
    }
    return search;
}

bool nextDirectoryEntry(DirectorySearch* search, DirectoryEntry* entry) {
    if (search->next == search->count) {
        return false;
    }
    const FoundEntry* found = &search->entries[search->next++];
    copyText(entry->name, sizeof entry->name, found->name);
    entry->isDirectory = found->isDirectory;
    return true;
}

void closeDirectorySearch(DirectorySearch* search) {
    for (size_t i = 0; i < search->count; i++) {
        free(search->entries[i].name);
    }
    free(search->entries);
    free(search);
}
