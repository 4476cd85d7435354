#include "run/paths.h"

#include <cstring>

#include "base/text.h"
#include "output/output.h"
#include "platform/platform.h"
#include "settings/program_names.h"
#include "settings/program_version.h"
#include "settings/run_options.h"
#include "settings/working_paths.h"

static constexpr int LONGEST_PROGRAM_ARGUMENT = 218;
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
