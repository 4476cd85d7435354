// Holds a file open as cmd.exe does while it redirects a program's output to it: others can read it, but not write.
// Usage: holder FILE MILLISECONDS
#include <windows.h>

#include <cstdlib>

int main(int argc, char** argv) {
    if (argc != 3) {
        return 2;
    }
    const HANDLE file = CreateFileA(argv[1], GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return 1;
    }
    Sleep(static_cast<DWORD>(atoi(argv[2])));
    return 0;
}
