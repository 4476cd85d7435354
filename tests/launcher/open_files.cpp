// In the place of the adapter utility: lists the files that it inherited, a line each, in open_files.txt beside it.
#include <cstdio>
#include <string>

#include <windows.h>

static constexpr ULONG_PTR HANDLE_STEP = 4;
static constexpr ULONG_PTR HIGHEST_HANDLE = 4096;

static std::string besideProgram(const char* name) {
    char path[MAX_PATH + 1];
    std::string program(path, GetModuleFileNameA(nullptr, path, sizeof path));
    return program.substr(0, program.rfind('\\') + 1) + name;
}

int main() {
    std::string names;
    for (ULONG_PTR number = HANDLE_STEP; number <= HIGHEST_HANDLE; number += HANDLE_STEP) {
        HANDLE handle = reinterpret_cast<HANDLE>(number);
        char path[MAX_PATH + 1];
        DWORD flags = 0;
        if (GetHandleInformation(handle, &flags) && GetFileType(handle) == FILE_TYPE_DISK &&
            GetFinalPathNameByHandleA(handle, path, sizeof path, 0) != 0) {
            names += std::string(path) + "\n";
        }
    }
    FILE* list = fopen(besideProgram("open_files.txt").c_str(), "a");
    if (list == nullptr) {
        return 1;
    }
    fputs(names.c_str(), list);
    return fclose(list);
}
