// The diagnostic log vlmdbg.log, on while a file of that name is beside the program, and its settings file RM.INI.
#pragma once

#include <cstdint>

#include "base/text.h"

// The numbers of RM.INI. parseRmIni sets them, initGlobals clears them; nothing depends on them.
struct RmIniSettings {
    uint32_t dbgMode;
    uint32_t logMode;
    uint32_t param01;
    uint32_t param02;
    uint32_t param03;
    uint32_t param04;
    uint32_t inSizeR;
    uint32_t outSizeR;
    uint32_t inSizeW;
    uint32_t outSizeW;
    uint8_t fillByte;
};

extern RmIniSettings rmIniSettings;

// True while a file vlmdbg.log is beside the program.
bool isDiagnosticLogOn();

// Opens RM.INI for parseRmIni. Returns 1 when it could be opened, else 0.
int openRmIni();

// Reads the open RM.INI to its end and closes it. An unknown token gets a warning on standard output.
void parseRmIni();

// Reads a world wide port name of eight pairs of hexadecimal digits, with one character of any kind between two pairs.
// Returns true, or false for a text of another length, which leaves `wwpn` as it was.
bool readWwpn(const char* text, uint8_t wwpn[8]);

// One write to the log, which is opened for it and closed again: nothing written is lost by a crash, and a log that
// disappears during the run ends the logging.
void logPrintf(const char* format, ...) PRINTF_LIKE(1, 2);

// One line, preceded by the time and the process number. `text` is printed as it is.
void logLine(const char* text);
