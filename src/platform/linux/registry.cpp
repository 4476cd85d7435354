// Registry keys as directories, values as files, below the host directory.
#include <cstdlib>

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

int deleteRegistryKey(const char* name) {
    char directory[NATIVE_PATH_SIZE];
    return keyDirectory(name, directory) ? rmdir(directory) : 1;
}
