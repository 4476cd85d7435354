#include "run/paths.h"

#include <cstring>

#include "base/text.h"
#include "output/output.h"
#include "output/trace_fields.h"
#include "platform/platform.h"
#include "settings/program_names.h"
#include "settings/program_version.h"
#include "settings/run_options.h"
#include "settings/working_paths.h"

static constexpr int LONGEST_PROGRAM_ARGUMENT = 218;
static constexpr char PRIVILEGE_KEY[] = "SOFTWARE\\VelmarFwupdate";
static constexpr char FIRMWARE_DIRECTORY[] = "firmware\\";
static constexpr char MATRIX_NAME[] = "fwmatrix.txt";

void printVersion() {
    formatText(versionString, sizeof versionString, "%d.%d.%d.%d", TARNLIFT_VERSION_MAJOR, TARNLIFT_VERSION_MINOR,
               TARNLIFT_VERSION_RELEASE, TARNLIFT_VERSION_BUILD);
}

int setupApplicationPaths(char** argv) {
    if (argv[0] == nullptr || strlen(argv[0]) > LONGEST_PROGRAM_ARGUMENT) {
        return 1;
    }
    if (programPath(binPath, sizeof binPath) < 1) {
        return 1;
    }
    stripChar(binPath, '"');
    cutAfterLastBackslash(binPath);
    return 0;
}

// Joins `name` to the directory of a switch, or to the program's directory, which ends in a backslash, without one.
static void composePath(char path[WORKING_PATH_SIZE], const char* switchDirectory, const char* name) {
    if (switchDirectory[0] != '\0') {
        formatText(path, WORKING_PATH_SIZE, "%s\\%s", switchDirectory, name);
    } else {
        formatText(path, WORKING_PATH_SIZE, "%s%s", binPath, name);
    }
}

void setDirectoryPaths() {
    composePath(firmwarePath, runOptions.imageDir, FIRMWARE_DIRECTORY);
    composePath(fwMatrixPath, runOptions.fwMatrixDir, MATRIX_NAME);

    printDbg("[Directory Paths]\n");
    traceText("Firmware path", firmwarePath);
    traceText("Bin path", binPath);
    traceText("Fwmatrix.txt", fwMatrixPath);
    traceText("CLI util", cliUtilName);
    printDbg("\n");
}

void setTempFile() {
    if (runOptions.ramDrive) {
        formatText(tempFilePath, sizeof tempFilePath, "%c:\\temp.txt", runOptions.ramDriveLetter);
    } else {
        formatText(tempFilePath, sizeof tempFilePath, "%s\\temp.txt", tempDirectory());
    }
    printDbg("[Temp file]\n");
    printDbg("%s\n", tempFilePath);
}

int checkPrivileges() {
    RegistryKey* key = createRegistryKey(PRIVILEGE_KEY, REGISTRY_WRITE);
    if (key == nullptr) {
        return 0;
    }
    closeRegistryKey(key);
    deleteRegistryKey(PRIVILEGE_KEY);
    return 1;
}
