// The output routes. They decide where a text goes and add nothing to it.
#pragma once

#include <cstdio>

#include "base/text.h"
#include "settings/return_codes.h"

// The /log= file and dbg.log, null while not open. Opened by the switches, closed by cleanup.
extern FILE* logFile;
extern FILE* dbgFile;

// The user's output: to standard output unless runOptions.silent, and to logFile if open.
void printOut(const char* format, ...) PRINTF_LIKE(1, 2);

// Traces: to dbgFile if open, else nowhere.
void printDbg(const char* format, ...) PRINTF_LIKE(1, 2);

// To standard output and nowhere else, silent or not.
void printRaw(const char* format, ...) PRINTF_LIKE(1, 2);

// The message of a failure that ends the run: program name, "Error - ", `what`, the code. Returns the code.
ReturnCode printEndingError(ReturnCode code, const char* what);
