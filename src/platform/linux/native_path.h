// Where the program's paths and the machine's parts lie on this system.
#pragma once

#include <cstddef>
#include <cstdio>

inline constexpr size_t NATIVE_PATH_SIZE = 4096;

// Turns a path of the program into a native one in `out`, which has NATIVE_PATH_SIZE bytes: a drive letter becomes
// that drive's directory below the host directory, a backslash a slash. Returns false when it does not fit.
bool nativePath(const char* path, char* out);

// The same for a file that is going to be written: the root of its drive is made where it is missing.
bool nativePathForWriting(const char* path, char* out);

// Puts the path of `entry` of the host directory, in which a backslash counts as a slash, into `out`, which has
// NATIVE_PATH_SIZE bytes. Returns false when it does not fit.
bool hostPath(const char* entry, char* out);

// Opens a file for reading by its native path. Returns null for a directory, too, and for a pipe, which would wait for
// a writer.
FILE* openNativeFile(const char* path);

// Makes the directory `path` with all that is missing above it. Returns true when it is there afterwards.
bool makeDirectories(const char* path);
