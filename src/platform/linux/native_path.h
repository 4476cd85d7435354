// Where the program's paths and the machine's parts are on this system, and which names the program's own system allows.
#pragma once

#include <cstddef>
#include <cstdio>

inline constexpr size_t NATIVE_PATH_SIZE = 4096;

// No name of a file or directory on Windows holds one of these or a character below 0x20. A path may hold the last two.
inline constexpr char NOT_IN_PATHS[] = "\"*<>?|";
inline constexpr char NOT_IN_NAMES[] = "\"*<>?|:\\";

// Returns whether `text` holds a character below 0x20 or one of `characters`.
bool holdsForbidden(const char* text, const char* characters);

// Turns a path of the program into a native one in `out`, which has NATIVE_PATH_SIZE bytes: a drive letter becomes
// that drive's directory below the host directory, a backslash a slash. Returns false when it does not fit.
bool nativePath(const char* path, char* out);

// The same for a file that will be written: also makes the root directory of its drive if it is missing.
bool nativePathForWriting(const char* path, char* out);

// Puts the path of `entry` of the host directory, in which a backslash counts as a slash, into `out`, which has
// NATIVE_PATH_SIZE bytes. Returns false when it does not fit.
bool hostPath(const char* entry, char* out);

// Opens a file for reading by its native path. Also returns null for a directory, and for a pipe, on which a reader would
// wait for a writer.
FILE* openNativeFile(const char* path);

// Makes the directory `path` and all missing directories above it. Returns true when it exists afterwards.
bool makeDirectories(const char* path);
