// The output routes. They decide only where a text goes, and add nothing to it.
#pragma once

#include <cstdio>

#include "base/text.h"
#include "settings/return_codes.h"

// The /log= file and dbg.log, null while not open. Opened by run/switches, closed by run/cleanup.
extern FILE* logFile;
extern FILE* dbgFile;

// All that the user is to see: to standard output unless runOptions.silent, and to logFile when open.
void printOut(const char* format, ...) PRINTF_LIKE(1, 2);

// Traces: to dbgFile when open, else nowhere.
void printDbg(const char* format, ...) PRINTF_LIKE(1, 2);

// To standard output and nowhere else, silent or not.
void printRaw(const char* format, ...) PRINTF_LIKE(1, 2);

// The message of a failure that ends the run: program name, "Error - ", `what`, the code. Returns the code.
ReturnCode printEndingError(ReturnCode code, const char* what);
