#include "settings/working_paths.h"

char versionString[VERSION_STRING_SIZE];
char binPath[BIN_PATH_SIZE];
char firmwarePath[WORKING_PATH_SIZE];
char fwMatrixPath[WORKING_PATH_SIZE];
char tempFilePath[WORKING_PATH_SIZE];
