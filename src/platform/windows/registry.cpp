// A RegistryKey is the system's own handle under the name of the seam.
#include <cstring>

#include <windows.h>

#include "platform/platform.h"

static HKEY handleOf(RegistryKey* key) {
    return reinterpret_cast<HKEY>(key);
}

static int setValue(RegistryKey* key, const char* valueName, DWORD type, const void* data, size_t size) {
    return RegSetValueExA(handleOf(key), valueName, 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(size));
}

RegistryKey* createRegistryKey(const char* name, RegistryAccess access) {
    REGSAM rights = access == REGISTRY_ALL ? KEY_ALL_ACCESS : KEY_WRITE;
    HKEY key = nullptr;
    if (RegCreateKeyExA(HKEY_LOCAL_MACHINE, name, 0, nullptr, 0, rights, nullptr, &key, nullptr) != ERROR_SUCCESS) {
        return nullptr;
    }
    return reinterpret_cast<RegistryKey*>(key);
}

int setRegistryText(RegistryKey* key, const char* valueName, const char* text) {
    return setValue(key, valueName, REG_SZ, text, strlen(text) + 1);
}

int setRegistryNumber(RegistryKey* key, const char* valueName, uint32_t number) {
    return setValue(key, valueName, REG_DWORD, &number, sizeof number);
}

int closeRegistryKey(RegistryKey* key) {
    return RegCloseKey(handleOf(key));
}

int deleteRegistryKey(const char* name) {
    return RegDeleteKeyA(HKEY_LOCAL_MACHINE, name);
}
