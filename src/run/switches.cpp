#include "run/switches.h"

#include <cstring>

#include "output/output.h"
#include "platform/platform.h"
#include "settings/program_names.h"
#include "settings/return_codes.h"

static constexpr char DEBUG_FILE_NAME[] = "dbg.log";

enum SwitchResult { SWITCH_ACCEPTED, SWITCH_UNKNOWN, SWITCH_REFUSED, SWITCH_LOG_NOT_OPEN };

// Handlers get the whole argument, "/" included, and may cut it.
using SwitchHandler = SwitchResult (*)(char* argument);

enum SwitchMatch {
    WHOLE_WORD,     // the whole text after "/"
    BEGINNING,      // the text after "/" starts with the word
    WORD_OR_VALUE,  // the word, alone or followed by "="
};

struct SwitchRow {
    SwitchMatch match;
    const char* spellings[4];
    int RunOptions::*flag;  // set to 1 on a match
    SwitchHandler handler;  // reads the value; null for a switch without one
};

static SwitchResult parseImageVersion(char* argument);
static SwitchResult parseRamDrive(char* argument);
static SwitchResult parseLogFile(char* argument);
static SwitchResult parseDebugFile(char* argument);
static SwitchResult parseImageDir(char* argument);
static SwitchResult parseMatrixDir(char* argument);

// Tried from top to bottom: the short prefixes at the end match what no full word above matched, so keep them last.
static const SwitchRow switchTable[] = {
    {WHOLE_WORD, {"auto", "a"}, &RunOptions::autoSelect, nullptr},
    {WHOLE_WORD, {"downgrade", "down", "d", "g"}, &RunOptions::downgrade, nullptr},
    {WHOLE_WORD, {"rewrite", "e"}, &RunOptions::rewrite, nullptr},
    {WHOLE_WORD, {"ff", "f"}, &RunOptions::forceFw, nullptr},
    {BEGINNING, {"iv"}, nullptr, parseImageVersion},
    {WORD_OR_VALUE, {"ramdrive"}, &RunOptions::ramDrive, parseRamDrive},
    {WHOLE_WORD, {"vpd"}, &RunOptions::vpd, nullptr},
    {WHOLE_WORD, {"preview", "p"}, &RunOptions::preview, nullptr},
    {WHOLE_WORD, {"update", "up", "u"}, &RunOptions::update, nullptr},
    {WHOLE_WORD, {"query", "q"}, &RunOptions::query, nullptr},
    {WHOLE_WORD, {"verbose", "v"}, &RunOptions::verbose, nullptr},
    {WHOLE_WORD, {"s"}, &RunOptions::silent, nullptr},
    {WHOLE_WORD, {"xml"}, &RunOptions::xml, nullptr},
    {WHOLE_WORD, {"?", "help", "h"}, &RunOptions::help, nullptr},
    {BEGINNING, {"l"}, nullptr, parseLogFile},
    {WHOLE_WORD, {"xv"}, nullptr, parseDebugFile},
    {BEGINNING, {"id"}, nullptr, parseImageDir},
    {BEGINNING, {"f"}, nullptr, parseMatrixDir},
};

static SwitchResult refuseMissingValue(const char* switchName) {
    printOut("\n%s: Error - Invalid use of the %s switch. This switch requires an argument - Return Code=%d\n\n",
             appName, switchName, RETURN_COMMAND_LINE);
    return SWITCH_REFUSED;
}

// Parses /word=value: ends the argument after the word and copies the value up to the next "=" into `field`.
static SwitchResult parseValue(char* argument, size_t wordLength, const char* switchName, char* field, size_t size) {
    size_t length = strcspn(argument, "=");
    const char* value = argument + length + strspn(argument + length, "=");
    argument[length] = '\0';
    if (length != strlen("/") + wordLength) {
        return SWITCH_UNKNOWN;
    }
    if (*value == '\0') {
        return refuseMissingValue(switchName);
    }
    copyPrefix(field, size, value, strcspn(value, "="));
    return SWITCH_ACCEPTED;
}

static SwitchResult parseImageVersion(char* argument) {
    SwitchResult result = parseValue(argument, strlen("iv"), "image version", runOptions.imageVersionFile,
                                     sizeof runOptions.imageVersionFile);
    if (result == SWITCH_ACCEPTED) {
        runOptions.imageVersion = 1;
    }
    return result;
}

static SwitchResult parseImageDir(char* argument) {
    runOptions.imageDir[0] = '\0';
    return parseValue(argument, strlen("id"), "image directory", runOptions.imageDir, sizeof runOptions.imageDir);
}

static SwitchResult parseMatrixDir(char* argument) {
    runOptions.fwMatrixDir[0] = '\0';
    return parseValue(argument, strlen("fmd"), "fwmatrix.txt directory", runOptions.fwMatrixDir,
                      sizeof runOptions.fwMatrixDir);
}

static SwitchResult parseRamDrive(char* argument) {
    const char* equals = strchr(argument, '=');
    if (equals != nullptr) {
        runOptions.ramDriveLetter = equals[1];
    }
    return SWITCH_ACCEPTED;
}

static SwitchResult parseLogFile(char* argument) {
    if (logFile != nullptr) {
        printEndingError(RETURN_COMMAND_LINE, "cannot open multiple log files");
        return SWITCH_REFUSED;
    }
    size_t length = strcspn(argument, "=");
    if (length != strlen("/log") && length != strlen("/l")) {
        return SWITCH_UNKNOWN;
    }
    const char* path = argument[length] == '=' ? argument + length + 1 : "";
    logFile = openFile(path, OPEN_APPEND);
    if (logFile == nullptr) {
        printOut("\n%s: Error - unable to open logfile %s - Return Code=%d\n\n", appName, path, RETURN_COMMAND_LINE);
        return SWITCH_LOG_NOT_OPEN;
    }
    return SWITCH_ACCEPTED;
}

static SwitchResult parseDebugFile(char* /*argument*/) {
    if (!runOptions.dbgLog) {
        runOptions.dbgLog = 1;
        dbgFile = openFile(DEBUG_FILE_NAME, OPEN_WRITE);
    }
    return SWITCH_ACCEPTED;
}

static bool matches(const SwitchRow& row, const char* word) {
    for (const char* spelling : row.spellings) {
        if (spelling == nullptr || !beginsIgnoringCase(word, spelling)) {
            continue;
        }
        char next = word[strlen(spelling)];
        if (row.match == BEGINNING || next == '\0' || (row.match == WORD_OR_VALUE && next == '=')) {
            return true;
        }
    }
    return false;
}

static SwitchResult parseSwitch(char* argument) {
    if (argument[0] != '/') {
        return SWITCH_UNKNOWN;
    }
    for (const SwitchRow& row : switchTable) {
        if (!matches(row, argument + 1)) {
            continue;
        }
        if (row.flag != nullptr) {
            runOptions.*row.flag = 1;
        }
        return row.handler == nullptr ? SWITCH_ACCEPTED : row.handler(argument);
    }
    return SWITCH_UNKNOWN;
}

// Derives the settings that follow from all switches together. Returns the parse result.
static int finishParsing(int argc, int result) {
    if (runOptions.ramDriveLetter == '\0') {
        setDefaultRamDrive();
    }
    if (runOptions.dbgLog && dbgFile == nullptr) {
        printOut("\n%s: Error - unable to open %s!\n", appName, DEBUG_FILE_NAME);
    }
    if (dbgFile != nullptr) {
        printSwitches();
    }
    bool hasOperation = isDownloadRun() || runOptions.imageVersion || runOptions.query;
    if (argc <= 1 || !hasOperation) {
        runOptions.help = 1;
    }
    if (!runOptions.preview && isDownloadRun()) {
        runOptions.downloadRequested = 1;
    }
    return result;
}

int parseCommandLine(int argc, char** argv) {
    int result = 0;
    for (int i = 1; i < argc; i++) {
        switch (parseSwitch(argv[i])) {
        case SWITCH_ACCEPTED:
            break;
        case SWITCH_LOG_NOT_OPEN:
            result = RETURN_COMMAND_LINE;  // the result of the parse, but the other switches still count
            break;
        case SWITCH_UNKNOWN:
            printOut("\n%s: Error - Unknown switch = %s - Return Code=%d\n\n", appName, argv[i], RETURN_COMMAND_LINE);
            return RETURN_COMMAND_LINE;
        case SWITCH_REFUSED:
            return RETURN_COMMAND_LINE;
        }
    }
    return finishParsing(argc, result);
}

static int refuseCombination(const char* why) {
    printOut("\nInvalid options: %s", why);
    return 0;
}

int validateSwitches() {
    if (runOptions.forceFw) {
        runOptions.update = 0;
        runOptions.rewrite = 0;
        runOptions.downgrade = 0;
    }
    if (runOptions.rewrite && (runOptions.downgrade || runOptions.update)) {
        return refuseCombination("/rewrite cannot be used with /update or /downgrade");
    }
    if (runOptions.downgrade && runOptions.update) {
        return refuseCombination("/downgrade cannot be used with /update or /rewrite");
    }
    if (runOptions.autoSelect && !isDownloadRun()) {
        return refuseCombination("/auto requires an additional operational switch");
    }
    if (runOptions.vpd && !isDownloadRun() && !runOptions.xml && !runOptions.query) {
        return refuseCombination("/vpd requires an additioanl operational switch");
    }
    return 1;
}

void printSwitches() {
    printDbg("[Command line switches]\n");
    printDbg("auto      : %d\n", runOptions.autoSelect);
    printDbg("downgrade : %d\n", runOptions.downgrade);
    printDbg("forceFw   : %d\n", runOptions.forceFw);
    printDbg("preview   : %d\n", runOptions.preview);
    printDbg("query     : %d\n", runOptions.query);
    printDbg("ramDrive  : %d\n", runOptions.ramDrive);
    printDbg("rewrite   : %d\n", runOptions.rewrite);
    printDbg("update    : %d\n", runOptions.update);
    printDbg("verbose   : %d\n", runOptions.verbose);
    printDbg("\n");
}

void setDefaultRamDrive() {
    runOptions.ramDriveLetter = systemDrive()[0];
}
