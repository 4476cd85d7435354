// Everything that a run asks of the system, and the only way to ask it. Two implementations, linux/ and windows/,
// chosen by the build. Paths have backslashes on both systems. Results are 0 for success unless said otherwise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

// The system and the program.

struct LocalTime {
    int year, month, day;  // month and day from 1
    int dayOfWeek;         // 0 is Sunday
    int hour, minute, second, millisecond;
};

// Call first, before anything is written. Protects the run from the way it was started (closed standard streams, a caller
// that ignores its children, no COMSPEC) and from what would stop it on the way (a reader of its output that ends, a file
// size limit, a window about an empty drive).
void startPlatform();

uint32_t systemMajorVersion();
uint32_t processNumber();
int localTime(LocalTime* now);

// The path of the running program, cut to `size`. Returns its length, 0 when the system does not tell it.
size_t programPath(char* out, size_t size);

// `name` made absolute, cut to `size`. Returns its length, 0 when there is none.
size_t fullPath(const char* name, char* out, size_t size);

// The environment variables TEMP and SYSTEMDRIVE, or a default when they are not set. Never null.
const char* tempDirectory();
const char* systemDrive();

// Files.

enum OpenMode { OPEN_READ_TEXT, OPEN_READ_BINARY, OPEN_APPEND, OPEN_WRITE };

// Returns null when the file cannot be opened; a directory cannot. Append and write create it, write empties it.
FILE* openFile(const char* path, OpenMode mode);

// Returns 0, or -1 with errno set: ENOENT only when there is no such file.
int removeFile(const char* path);

// Both read a file of OPEN_READ_TEXT, in which CR LF counts as one LF. readText reads up to `size` characters and
// returns how many it got. readTextLine reads up to the next line end, which it keeps, or `size` - 1 characters, and
// ends them with a NUL; it returns false at the end of the file.
size_t readText(FILE* file, char* out, size_t size);
bool readTextLine(FILE* file, char* out, size_t size);

// Search of one directory, in the order of the file system.

struct DirectorySearch;
struct DirectoryEntry {
    char name[260];
    bool isDirectory;
};

// Opens a search and sets its first entry. The last part of `path` may hold the wildcards * and ?. Leaves out entries whose
// name no file on Windows can have. Returns null when nothing is found. The caller closes the search.
DirectorySearch* openDirectorySearch(const char* path, DirectoryEntry* first);
bool nextDirectoryEntry(DirectorySearch* search, DirectoryEntry* entry);
void closeDirectorySearch(DirectorySearch* search);

// The child process.

// Runs a command line of the form ""program" arguments > file" and waits for its end, without a limit. Returns the
// program's exit code. When the program cannot be started, or the file cannot be opened, or Windows could read more than
// one command in the line, returns what the system's command interpreter returns; only the file tells success from
// failure.
int runCommand(const char* commandLine);

// The line on standard error for a run that was refused. Takes the program's name and the reason.
inline constexpr char NOT_RUN_MESSAGE[] = "%s: the adapter utility was not run: %s\n";

// Registry keys below HKEY_LOCAL_MACHINE.

struct RegistryKey;
enum RegistryAccess { REGISTRY_WRITE, REGISTRY_ALL };

// Creates or opens a key. Returns null when that fails; every operation on a null key fails.
RegistryKey* createRegistryKey(const char* name, RegistryAccess access);
int setRegistryText(RegistryKey* key, const char* valueName, const char* text);
int setRegistryNumber(RegistryKey* key, const char* valueName, uint32_t number);
int closeRegistryKey(RegistryKey* key);
int deleteRegistryKey(const char* name);

// The Application event log.

struct EventSource;
enum EventType { EVENT_TYPE_ERROR = 1, EVENT_TYPE_INFORMATION = 4 };

// Returns null when the source cannot be registered. The caller deregisters it. `strings` holds `count` texts.
EventSource* registerEventSource(const char* name);
int reportEvent(EventSource* source, EventType type, uint32_t event, const char* const* strings, size_t count);
void deregisterEventSource(EventSource* source);
