#include "platform/file_exists.h"

#include "base/text.h"
#include "platform/platform.h"

static constexpr int SEARCH_PATH_SIZE = 255;

int fileExists(const char* name, const char* directory) {
    char path[SEARCH_PATH_SIZE];
    if (!formatText(path, sizeof path, "%s%s", directory, name)) {
        return 1;
    }
    DirectoryEntry entry;
    DirectorySearch* search = openDirectorySearch(path, &entry);
    if (search == nullptr) {
        return 1;
    }
    closeDirectorySearch(search);
    return 0;
}
