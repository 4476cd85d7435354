// Registry keys are directories below the host directory, values are files.
#include <cstdlib>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/text.h"
#include "platform/linux/native_path.h"
#include "platform/platform.h"

struct RegistryKey {
    char directory[NATIVE_PATH_SIZE];
};

static bool keyDirectory(const char* name, char* out) {
    char entry[NATIVE_PATH_SIZE];
    return formatText(entry, sizeof entry, "registry/HKEY_LOCAL_MACHINE/%s", name) && hostPath(entry, out);
}

RegistryKey* createRegistryKey(const char* name, RegistryAccess /*access*/) {
    RegistryKey* key = static_cast<RegistryKey*>(malloc(sizeof(RegistryKey)));
    if (key == nullptr || !keyDirectory(name, key->directory) || !makeDirectories(key->directory)) {
        free(key);
        return nullptr;
    }
    return key;
}

// Writes the two lines of a value: its type and its data.
static int writeValue(const RegistryKey* key, const char* valueName, const char* type, const char* data) {
    char path[NATIVE_PATH_SIZE];
    if (key == nullptr || !formatText(path, sizeof path, "%s/%s", key->directory, valueName)) {
        return 1;
    }
    FILE* file = fopen(path, "we");
    if (file == nullptr) {
        return 1;
    }
    bool written = fprintf(file, "%s\n%s\n", type, data) > 0;
    return fclose(file) == 0 && written ? 0 : 1;
}

int setRegistryText(RegistryKey* key, const char* valueName, const char* text) {
    return writeValue(key, valueName, "REG_SZ", text);
}

int setRegistryNumber(RegistryKey* key, const char* valueName, uint32_t number) {
    char data[16];
    formatText(data, sizeof data, "%u", number);
    return writeValue(key, valueName, "REG_DWORD", data);
}

int closeRegistryKey(RegistryKey* key) {
    int result = key == nullptr ? 1 : 0;
    free(key);
    return result;
}

static bool isDirectory(int parent, const char* name) {
    struct stat status;
    return fstatat(parent, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

// A key's subkeys are directories, its values the other entries.
static bool hasSubkeys(DIR* key) {
    while (const dirent* entry = readdir(key)) {
        bool isSelfOrParent = strcmp(entry->d_name, ".") == 0 || strcmp(entry->d_name, "..") == 0;
        if (!isSelfOrParent && isDirectory(dirfd(key), entry->d_name)) {
            return true;
        }
    }
    return false;
}

static void deleteValues(const char* directory) {
    DIR* key = opendir(directory);
    if (key == nullptr) {
        return;
    }
    if (!hasSubkeys(key)) {
        rewinddir(key);
        while (const dirent* value = readdir(key)) {
            unlinkat(dirfd(key), value->d_name, 0);
        }
    }
    closedir(key);
}

// A key with subkeys cannot be deleted, and keeps its values.
int deleteRegistryKey(const char* name) {
    char directory[NATIVE_PATH_SIZE];
    if (!keyDirectory(name, directory)) {
        return 1;
    }
    if (rmdir(directory) == 0) {
        return 0;
    }
    deleteValues(directory);
    return rmdir(directory);
}
