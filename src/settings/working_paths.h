// The paths that a run works with. run/paths sets them once near the start.
#pragma once

inline constexpr int VERSION_STRING_SIZE = 32;
inline constexpr int BIN_PATH_SIZE = 218;
inline constexpr int WORKING_PATH_SIZE = 254;

extern char versionString[VERSION_STRING_SIZE];
extern char binPath[BIN_PATH_SIZE];           // the program's directory, with a trailing backslash
extern char firmwarePath[WORKING_PATH_SIZE];  // the firmware files' directory, with a trailing backslash
extern char fwMatrixPath[WORKING_PATH_SIZE];  // fwmatrix.txt
extern char tempFilePath[WORKING_PATH_SIZE];  // receives the adapter utility's output
