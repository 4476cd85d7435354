#include "inventory/utility_runner.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/text.h"
#include "output/diagnostic_log.h"
#include "output/output.h"
#include "platform/platform.h"
#include "settings/program_names.h"
#include "settings/run_options.h"
#include "settings/working_paths.h"

char utilityOutput[UTILITY_OUTPUT_SIZE];

static constexpr size_t COMMAND_LINE_SIZE = 762;
static constexpr size_t REPLY_LINE_SIZE = 256;

// Makes the command line. cmd.exe strips the outer quotation marks; the inner ones keep a path with blanks together.
// Returns false when it does not fit.
static bool makeCommandLine(char* command, const char* args) {
    return formatText(command, COMMAND_LINE_SIZE, "\"\"%s%s\" %s > %s\"", binPath, cliUtilName, args, tempFilePath);
}

// Makes sure that only this run's output is read afterwards: removes a file that an earlier run or another program left
// under the name, or at least empties it. Returns false when it can be neither removed nor emptied.
static bool discardOldOutput() {
    if (removeFile(tempFilePath) == 0 || errno == ENOENT) {
        return true;
    }
    FILE* file = openFile(tempFilePath, OPEN_WRITE);
    if (file == nullptr) {
        return false;
    }
    fclose(file);
    return true;
}

static void reportNotRun(const char* reason) {
    fprintf(stderr, NOT_RUN_MESSAGE, appName, reason);
}

// Makes everything ready for a run of the utility. Returns false, after a line for the operator, when it must not run.
static bool prepareRun(char* command, const char* args) {
    if (!makeCommandLine(command, args)) {
        reportNotRun("its command line is too long");
        return false;
    }
    if (!discardOldOutput()) {
        char reason[WORKING_PATH_SIZE + 64];
        formatText(reason, sizeof reason, "the old file %s can be neither removed nor emptied", tempFilePath);
        reportNotRun(reason);
        return false;
    }
    return true;
}

static void printExecuting(const char* command) {
    if (runOptions.verbose) {
        printOut("\n%s:  executing command : %s\n", appName, command);
    }
}

static void printComplete(uint16_t status, int tempFileStatus) {
    char line[128];
    formatText(line, sizeof line, "\n%s : Command complete - Command Return Code = %d - Temp File Status = %d\n\n",
               appName, status, tempFileStatus);
    if (runOptions.verbose) {
        printOut("%s", line);
    }
    logPrintf("%s", line);
}

// Collects whole lines in `outBuf` as long as they fit, and cuts the last character, which is a line end.
static void collectReply(FILE* file, char* outBuf) {
    char line[REPLY_LINE_SIZE];
    size_t used = 0;
    while (readTextLine(file, line, sizeof line)) {
        size_t length = strlen(line);
        size_t room = UTILITY_OUTPUT_SIZE - used - 1;
        if (length >= room) {
            break;
        }
        copyText(outBuf + used, room, line);
        used += length;
    }
    if (used > 0) {
        outBuf[used - 1] = '\0';
    }
}

static int executeSystemCommand(const char* command, char* outBuf, uint16_t* returnStatus) {
    printExecuting(command);
    logPrintf("%s:  executing command : %s\n", appName, command);
    *returnStatus = static_cast<uint16_t>(runCommand(command));
    printDbg("Raw     returnStatus = %d\n", *returnStatus);
    printDbg("Shifted returnStatus = %d\n", *returnStatus);

    int tempFileStatus = TEMP_FILE_NOT_OPENED;
    FILE* file = openFile(tempFilePath, OPEN_READ_TEXT);
    if (file != nullptr) {
        tempFileStatus = TEMP_FILE_READ;
        collectReply(file, outBuf);
        fclose(file);
    }
    if (runOptions.verbose) {
        printOut("\n");
        printOut("%s", outBuf);
    }
    printComplete(*returnStatus, tempFileStatus);
    int removal = removeFile(tempFilePath);
    if (removal != 0) {
        printDbg("executeSystemCommand: remove failed status %d\n", removal);
    }
    return tempFileStatus;
}

static int executeSystemCommandToFile(const char* command, uint16_t* returnStatus) {
    printExecuting(command);
    *returnStatus = static_cast<uint16_t>(runCommand(command));
    printDbg("Raw returnStatus = %d\n", *returnStatus);
    printDbg("returnStatus = %d\n", *returnStatus);

    int tempFileStatus = TEMP_FILE_NOT_OPENED;
    FILE* file = openFile(tempFilePath, OPEN_READ_TEXT);
    if (file != nullptr) {
        tempFileStatus = TEMP_FILE_READ;
        fclose(file);
    }
    printComplete(*returnStatus, tempFileStatus);
    return tempFileStatus;
}

int executeUtilityCommand(const char* args, char* outBuf, uint16_t* returnStatus) {
    char command[COMMAND_LINE_SIZE];
    outBuf[0] = '\0';
    *returnStatus = 1;
    if (!prepareRun(command, args)) {
        return TEMP_FILE_NOT_OPENED;
    }
    return executeSystemCommand(command, outBuf, returnStatus);
}

int executeUtilityCommandToFile(const char* args, uint16_t* returnStatus) {
    char command[COMMAND_LINE_SIZE];
    utilityOutput[0] = '\0';
    *returnStatus = 1;
    if (!prepareRun(command, args)) {
        return TEMP_FILE_NOT_OPENED;
    }
    return executeSystemCommandToFile(command, returnStatus);
}

static FILE* openTempFile() {
    FILE* file = openFile(tempFilePath, OPEN_READ_TEXT);
    if (file == nullptr) {
        printDbg("Could not open the temp file\n");
    }
    return file;
}

int getCharacterCountFromTempFile(uint32_t* count) {
    printDbg("\n[getCharacterCountFromTempFile]\nOpening the temp file\n");
    FILE* file = openTempFile();
    if (file == nullptr) {
        return TEMP_TEXT_FAILED;
    }
    printDbg("Calculating the temp file character count\n");
    char chunk[4096];
    *count = 0;
    for (size_t length; (length = readText(file, chunk, sizeof chunk)) > 0;) {
        *count += static_cast<uint32_t>(length);
    }
    bool broken = ferror(file) != 0;
    fclose(file);
    printDbg("Character count = %d\n", *count);
    return *count == 0 || broken ? TEMP_TEXT_FAILED : TEMP_TEXT_READ;
}

int getBufferDataFromTempFile(char* buffer, uint32_t count) {
    printDbg("\n[getBufferDataFromTempFile]\nOpening the temp file\n");
    FILE* file = openTempFile();
    if (file == nullptr) {
        return TEMP_TEXT_FAILED;
    }
    size_t length = readText(file, buffer, static_cast<size_t>(count) + 1);
    bool broken = ferror(file) != 0;
    fclose(file);
    if (broken) {  // the last port could be half a port
        return TEMP_TEXT_FAILED;
    }
    if (length > 0) {
        buffer[length - 1] = '\0';
    }
    if (runOptions.verbose) {
        printOut("%s\n", buffer);
    }
    printDbg("%s\n", buffer);
    printDbg("Output length = %d\n", static_cast<int>(strlen(buffer)));
    return TEMP_TEXT_READ;
}
