#include <windows.h>

#include "console.h"

using namespace fleet;

Terminal fleet::openTerminal() {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(output, &mode) == 0) {
        return {false, false, 0};
    }
    CONSOLE_SCREEN_BUFFER_INFO screen = {};
    GetConsoleScreenBufferInfo(output, &screen);
    const int columns = screen.srWindow.Right - screen.srWindow.Left + 1;
    const bool isWanted = GetEnvironmentVariableW(L"NO_COLOR", nullptr, 0) <= 1;  // the size with the final zero
    const bool hasColours = isWanted && SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
    return {true, hasColours, static_cast<size_t>(columns)};
}
