#include "output/output.h"

#include <cstdarg>

#include "settings/program_names.h"
#include "settings/run_options.h"

FILE* logFile = nullptr;
FILE* dbgFile = nullptr;

void printOut(const char* format, ...) {
    va_list arguments;
    if (!runOptions.silent) {
        va_start(arguments, format);
        vprintf(format, arguments);
        va_end(arguments);
    }
    if (logFile != nullptr) {
        va_start(arguments, format);
        vfprintf(logFile, format, arguments);
        va_end(arguments);
    }
    fflush(stdout);
}

void printDbg(const char* format, ...) {
    if (dbgFile == nullptr) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    vfprintf(dbgFile, format, arguments);
    va_end(arguments);
    fflush(stdout);  // flushes the user's output, not the trace: it must be visible before a step that may hang
}

void printRaw(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vprintf(format, arguments);
    va_end(arguments);
}

ReturnCode printEndingError(ReturnCode code, const char* what) {
    printOut("\n%s: Error - %s - Return Code=%d\n\n", appName, what, code);
    return code;
}
