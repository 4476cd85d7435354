#include <cstdlib>

#include <windows.h>

#include "base/text.h"
#include "platform/platform.h"

struct DirectorySearch {
    HANDLE handle;
};

static void takeEntry(const WIN32_FIND_DATAA* found, DirectoryEntry* entry) {
    copyText(entry->name, sizeof entry->name, found->cFileName);
    entry->isDirectory = (found->dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
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
    takeEntry(&found, first);
    return search;
}

bool nextDirectoryEntry(DirectorySearch* search, DirectoryEntry* entry) {
    WIN32_FIND_DATAA found;
    if (!FindNextFileA(search->handle, &found)) {
        return false;
    }
    takeEntry(&found, entry);
    return true;
}

void closeDirectorySearch(DirectorySearch* search) {
    FindClose(search->handle);
    free(search);
}
