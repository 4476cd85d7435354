#include "output/diagnostic_log.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "output/output.h"
#include "platform/file_exists.h"
#include "platform/platform.h"
#include "settings/working_paths.h"

RmIniSettings rmIniSettings;

static constexpr char LOG_NAME[] = "vlmdbg.log";
static constexpr char SETTINGS_NAME[] = "RM.INI";
static constexpr int SETTINGS_LINE_SIZE = 132;
static constexpr size_t WWPN_TEXT_LENGTH = 23;

static FILE* rmIniFile = nullptr;

struct RmIniToken {
    const char* name;
    uint32_t RmIniSettings::*field;
};

static const RmIniToken rmIniTokens[] = {
    {"DBG_MODE", &RmIniSettings::dbgMode}, {"LOG_MODE", &RmIniSettings::logMode},
    {"PARAM01", &RmIniSettings::param01},  {"PARAM02", &RmIniSettings::param02},
    {"PARAM03", &RmIniSettings::param03},  {"PARAM04", &RmIniSettings::param04},
    {"INSIZER", &RmIniSettings::inSizeR},  {"OUTSIZER", &RmIniSettings::outSizeR},
    {"INSIZEW", &RmIniSettings::inSizeW},  {"OUTSIZEW", &RmIniSettings::outSizeW},
};
static constexpr char FILL_BYTE_TOKEN[] = "FILLBYTE";
static constexpr char WWPN_TOKEN[] = "REMOTE_HBA_WWPN";

bool isDiagnosticLogOn() {
    return fileExists(LOG_NAME, binPath) == 0;
}

static FILE* openBesideProgram(const char* name, OpenMode mode) {
    char path[256];
    formatText(path, sizeof path, "%s%s", binPath, name);
    return openFile(path, mode);
}

int openRmIni() {
    rmIniFile = openBesideProgram(SETTINGS_NAME, OPEN_READ_TEXT);
    return rmIniFile != nullptr ? 1 : 0;
}

bool readWwpn(const char* text, uint8_t wwpn[8]) {
    if (strlen(text) != WWPN_TEXT_LENGTH) {
        return false;
    }
    for (size_t i = 0; i < 8; i++) {
        char pair[3];
        copyPrefix(pair, sizeof pair, text + 3 * i, 2);
        wwpn[i] = static_cast<uint8_t>(parseUnsigned(pair, 16));
    }
    return true;
}

// Sets what `token` names. `number` is the value on this line, or the last value read if it has none.
static void storeSetting(const char* token, const char* value, uint32_t number) {
    for (const RmIniToken& known : rmIniTokens) {
        if (strcmp(token, known.name) == 0) {
            rmIniSettings.*known.field = number;
            return;
        }
    }
    if (strcmp(token, FILL_BYTE_TOKEN) == 0) {
        rmIniSettings.fillByte = static_cast<uint8_t>(number & 0xFF);
    } else if (strcmp(token, WWPN_TOKEN) == 0) {
        uint8_t remoteHbaWwpn[8] = {};  // a known setting that nothing uses
        readWwpn(value, remoteHbaWwpn);
    } else {
        printRaw("Unkonw Token Found");
    }
}

static void readSettingNumber(const char* value, uint32_t* number) {
    bool hexadecimal = value[0] == '0' && (value[1] == 'x' || value[1] == 'X');
    readUnsigned(hexadecimal ? value + 2 : value, hexadecimal ? 16 : 10, number);
}

static void parseSettingLine(const char* line, uint32_t* number) {
    char token[SETTINGS_LINE_SIZE];
    char value[SETTINGS_LINE_SIZE];
    line += strspn(line, " \t");
    size_t length = strcspn(line, "= \t\n");
    if (line[0] == '/' || length == 0) {
        return;
    }
    copyPrefix(token, sizeof token, line, length);
    upperCaseInPlace(token);
    line += length;
    line += strspn(line, "= \t");
    copyPrefix(value, sizeof value, line, strcspn(line, " \t\n"));
    readSettingNumber(value, number);
    storeSetting(token, value, *number);
}

void parseRmIni() {
    char line[SETTINGS_LINE_SIZE];
    uint32_t number = 0;
    while (readTextLine(rmIniFile, line, sizeof line)) {
        parseSettingLine(line, &number);
    }
    fclose(rmIniFile);
    rmIniFile = nullptr;
}

static FILE* openDiagnosticLog() {
    return isDiagnosticLogOn() ? openBesideProgram(LOG_NAME, OPEN_APPEND) : nullptr;
}

void logPrintf(const char* format, ...) {
    FILE* log = openDiagnosticLog();
    if (log == nullptr) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    vfprintf(log, format, arguments);
    va_end(arguments);
    fflush(stdout);
    fclose(log);
}

void logLine(const char* text) {
    LocalTime now = {};
    if (!isDiagnosticLogOn()) {  // do not read the clock when the log is off
        return;
    }
    localTime(&now);
    logPrintf("(%02d:%02d:%02d.%03d) ", now.hour, now.minute, now.second, now.millisecond);
    logPrintf("(%d) ", processNumber());
    logPrintf("%s", text);
    logPrintf("\n");
}
