#include <cstdlib>
#include <cstring>

#include <windows.h>

#include "base/text.h"
#include "platform/platform.h"

struct DirectorySearch {
    HANDLE handle;
};

// Returns whether the name holds a character that no file name has. The system makes such names when it translates
// characters that its code page does not have, such as full-width ones; they name another file or a command.
static bool isMistranslated(const char* name) {
    for (; *name != '\0'; name++) {
        if (IsDBCSLeadByte(static_cast<BYTE>(*name)) && name[1] != '\0') {
            name++;  // the second byte of a character may look like a backslash
        } else if (strchr("\\/:*?\"<>|", *name) != nullptr) {
            return true;
        }
    }
    return false;
}

static bool copyEntry(const WIN32_FIND_DATAA* found, DirectoryEntry* entry) {
    if (isMistranslated(found->cFileName)) {
        return false;
    }
    copyText(entry->name, sizeof entry->name, found->cFileName);
    entry->isDirectory = (found->dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return true;
}

DirectorySearch* openDirectorySearch(const char* path, DirectoryEntry* first) {
    DirectorySearch* search = static_cast<DirectorySearch*>(malloc(sizeof(DirectorySearch)));
    if (search == nullptr) {
        return nullptr;
    }
    WIN32_FIND_DATAA found;
    search->handle = FindFirstFileA(path, &found);
    if (search->handle == INVALID_HANDLE_VALUE) {
        free(search);
        return nullptr;
    }
    if (!copyEntry(&found, first) && !nextDirectoryEntry(search, first)) {
        closeDirectorySearch(search);
        return nullptr;
    }
    return search;
}

bool nextDirectoryEntry(DirectorySearch* search, DirectoryEntry* entry) {
    WIN32_FIND_DATAA found;
    while (FindNextFileA(search->handle, &found)) {
        if (copyEntry(&found, entry)) {
            return true;
        }
    }
    return false;
}

void closeDirectorySearch(DirectorySearch* search) {
    FindClose(search->handle);
    free(search);
}
