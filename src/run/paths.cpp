#include "run/paths.h"

#include <cstring>

#include "base/text.h"
#include "include/program_names.h"
#include "include/run_options.h"
#include "include/version_numbers.h"
#include "include/working_paths.h"
#include "platform/platform.h"
#include "report/output.h"

char versionString[VERSION_STRING_SIZE];
char binPath[BIN_PATH_SIZE];
char firmwarePath[WORKING_PATH_SIZE];
char fwMatrixPath[WORKING_PATH_SIZE];
char tempFilePath[WORKING_PATH_SIZE];

static constexpr int LONGEST_PROGRAM_ARGUMENT = 218;
static constexpr int SEARCH_PATH_SIZE = 255;
static constexpr char PRIVILEGE_KEY[] = "SOFTWARE\\VelmarFwupdate";
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
    cutBehindLastBackslash(binPath);
    return 0;
}

int fileExists(const char* name, const char* directory) {
    char path[SEARCH_PATH_SIZE];
    if (!formatText(path, sizeof path, "%s%s", directory, name)) {
        return 1;
    }
    DirectoryEntry entry;
    DirectorySearch* search = openDirectorySearch(path, &entry);
    if (search == nullptr) {
        return 1;
    }
    closeDirectorySearch(search);
    return 0;
}

void setDirectoryPaths() {
    const char* imageBase = runOptions.imageDir[0] != '\0' ? runOptions.imageDir : binPath;
    const char* imageJoint = runOptions.imageDir[0] != '\0' ? "\\" : "";
    formatText(firmwarePath, sizeof firmwarePath, "%s%sfirmware\\", imageBase, imageJoint);

    const char* matrixBase = runOptions.fwMatrixDir[0] != '\0' ? runOptions.fwMatrixDir : binPath;
    const char* matrixJoint = runOptions.fwMatrixDir[0] != '\0' ? "\\" : "";
    formatText(fwMatrixPath, sizeof fwMatrixPath, "%s%s%s", matrixBase, matrixJoint, MATRIX_NAME);

    printDbg("[Directory Paths]\n");
    printDbg("%-20s : %s\n", "Firmware path", firmwarePath);
    printDbg("%-20s : %s\n", "Bin path", binPath);
    printDbg("%-20s : %s\n", "Fwmatrix.txt", fwMatrixPath);
    printDbg("%-20s : %s\n\n", "CLI util", cliUtilName);
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
