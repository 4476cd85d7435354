// Sets the paths that the run works with (settings/working_paths.h), and tests the user's rights.
#pragma once

// Composes versionString.
void printVersion();

// Sets binPath. Returns 0, or 1 when the program's directory cannot be found or argv[0] is too long.
int setupApplicationPaths(char** argv);

// Set firmwarePath, fwMatrixPath and tempFilePath from the switches, and trace them. They cannot fail: a path that was
// cut shows up later as a file that is not found.
void setDirectoryPaths();
void setTempFile();

// Returns 1 when the user may write to the machine's part of the registry, else 0.
int checkPrivileges();
