#include "fuzz/memory_platform.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>

#include <stdio_ext.h>

#include "base/text.h"
#include "platform/platform.h"

MemoryMachine machine;

bool MemoryMachine::fails(const std::string& operation, const std::string& path) {
    if (!running) {
        return false;
    }
    operations++;
    const bool failing = failAt != 0 && (operations == failAt || (failOnwards && operations > failAt));
    if (failing) {
        if (firstFailure.empty()) {
            firstFailure = path.empty() ? operation : operation + " " + path;
            portAtFirstFailure = portAtWork;
        }
        failedPaths.insert(path);
    }
    return failing;
}

// Allocations and the calls of the C library that can fail, wrapped by the linker.

extern "C" void* __real_malloc(size_t size);
extern "C" void* __wrap_malloc(size_t size) {
    return machine.fails("malloc") ? nullptr : __real_malloc(size);
}

extern "C" void* __real_calloc(size_t count, size_t size);
extern "C" void* __wrap_calloc(size_t count, size_t size) {
    return machine.fails("calloc") ? nullptr : __real_calloc(count, size);
}

extern "C" int __real_fseek(FILE* file, long offset, int origin);
extern "C" int __wrap_fseek(FILE* file, long offset, int origin) {
    return machine.fails("fseek", machine.openFiles[file]) ? -1 : __real_fseek(file, offset, origin);
}

// A close that fails closes the file nevertheless.
extern "C" int __real_fclose(FILE* file);
extern "C" int __wrap_fclose(FILE* file) {
    const bool failing = machine.fails("fclose", machine.openFiles[file]);
    machine.openFiles.erase(file);
    const int result = __real_fclose(file);
    return failing ? EOF : result;
}

// Files. A reader works on a copy.

struct OpenFile {
    std::string path;
    std::string bytes;
    size_t position;
};

static constexpr size_t READ_SIZE = 512;

static ssize_t readBytes(void* cookie, char* out, size_t size) {
    OpenFile* file = static_cast<OpenFile*>(cookie);
    if (machine.fails("read", file->path)) {
        errno = EIO;
        return -1;
    }
    const size_t length = std::min({size, READ_SIZE, file->bytes.size() - file->position});
    memcpy(out, file->bytes.data() + file->position, length);
    file->position += length;
    return static_cast<ssize_t>(length);
}

static int seekBytes(void* cookie, off64_t* offset, int origin) {
    OpenFile* file = static_cast<OpenFile*>(cookie);
    const size_t from = origin == SEEK_SET ? 0 : origin == SEEK_CUR ? file->position : file->bytes.size();
    file->position = std::min(from + static_cast<size_t>(*offset), file->bytes.size());
    *offset = static_cast<off64_t>(file->position);
    return 0;
}

// A full disk takes half of the bytes. What is written to a removed file is lost.
static ssize_t writeBytes(void* cookie, const char* bytes, size_t size) {
    const OpenFile* file = static_cast<OpenFile*>(cookie);
    const size_t written = machine.fails("write", file->path) ? size / 2 : size;
    if (machine.files.contains(file->path)) {
        machine.files[file->path].append(bytes, written);
    }
    return static_cast<ssize_t>(written);
}

static int closeBytes(void* cookie) {
    delete static_cast<OpenFile*>(cookie);
    return 0;
}

FILE* openFile(const char* path, OpenMode mode) {
    const bool reads = mode == OPEN_READ_TEXT || mode == OPEN_READ_BINARY;
    if (machine.fails("openFile", path) || *path == '\0' || (reads && !machine.files.contains(path))) {
        return nullptr;
    }
    std::string& bytes = machine.files[path];
    if (mode == OPEN_WRITE) {
        bytes.clear();
    }
    OpenFile* opened = new OpenFile{.path = path, .bytes = reads ? bytes : "", .position = 0};
    if (reads && machine.fails("half", path)) {  // the file is cut
        opened->bytes.resize(bytes.size() / 2);
    }
    const cookie_io_functions_t reader = {readBytes, nullptr, seekBytes, closeBytes};
    const cookie_io_functions_t writer = {nullptr, writeBytes, nullptr, closeBytes};
    FILE* file = fopencookie(opened, reads ? "r" : "w", reads ? reader : writer);
    machine.openFiles[file] = path;
    return file;
}

int removeFile(const char* path) {
    if (machine.fails("removeFile", path)) {
        errno = EACCES;
        return -1;
    }
    if (machine.files.erase(path) == 0) {
        errno = ENOENT;
        return -1;
    }
    return 0;
}

size_t readText(FILE* file, char* out, size_t size) {
    return fread(out, 1, size, file);
}

bool readTextLine(FILE* file, char* out, size_t size) {
    return fgets(out, static_cast<int>(size), file) != nullptr;
}

struct DirectorySearch {
    std::vector<std::string> names;
    size_t next;
};

DirectorySearch* openDirectorySearch(const char* path, DirectoryEntry* first) {
    if (machine.fails("openDirectorySearch", path)) {
        return nullptr;
    }
    const std::string pattern = path;
    const std::string directory = pattern.substr(0, pattern.rfind('\\') + 1);
    DirectorySearch* search = new DirectorySearch{};
    for (const auto& [file, bytes] : machine.files) {
        if (file == pattern || (pattern == directory + "*" && file.starts_with(directory))) {
            search->names.push_back(file.substr(directory.size()));
        }
    }
    if (!nextDirectoryEntry(search, first)) {
        delete search;
        return nullptr;
    }
    return search;
}

bool nextDirectoryEntry(DirectorySearch* search, DirectoryEntry* entry) {
    *entry = {};
    if (machine.fails("nextDirectoryEntry") || search->next == search->names.size()) {
        return false;
    }
    copyText(entry->name, sizeof entry->name, search->names[search->next++].c_str());
    return true;
}

void closeDirectorySearch(DirectorySearch* search) {
    delete search;
}

// The adapter utility.

// A utility that cannot run leaves the file as it is.
int runCommand(const char* commandLine) {
    machine.hiddenBytes += __fpending(stdout);
    const std::string command = commandLine;
    const size_t path = command.rfind("> ") + 2;
    machine.tempFile = command.substr(path, command.size() - path - 1);
    const bool downloads = command.find(".exe\" download ") != std::string::npos;
    const bool runs = !machine.fails("runCommand");
    UtilityReply reply = {0, machine.listing};
    if (downloads) {
        reply = machine.replies[(machine.portAtWork - 1) % machine.replies.size()];
        machine.downloads.push_back({machine.portAtWork, command, runs ? reply.text : ""});
    } else if (runs) {
        machine.listings++;
    }
    if (!runs) {
        return 1;
    }
    machine.files[machine.tempFile] = reply.text;
    return reply.exitStatus;
}

// Registry and event log.

struct RegistryKey {
    std::string name;
};

RegistryKey* createRegistryKey(const char* name, RegistryAccess) {
    return machine.fails("createRegistryKey", name) ? nullptr : new RegistryKey{name};
}

int setRegistryText(RegistryKey* key, const char*, const char*) {
    return machine.fails("setRegistryText") || key == nullptr ? 1 : 0;
}

int setRegistryNumber(RegistryKey* key, const char*, uint32_t) {
    return machine.fails("setRegistryNumber") || key == nullptr ? 1 : 0;
}

int closeRegistryKey(RegistryKey* key) {
    const bool failing = machine.fails("closeRegistryKey", key == nullptr ? "" : key->name) || key == nullptr;
    delete key;
    return failing ? 1 : 0;
}

int deleteRegistryKey(const char*) {
    return machine.fails("deleteRegistryKey") ? 1 : 0;
}

struct EventSource {};

EventSource* registerEventSource(const char*) {
    return machine.fails("registerEventSource") ? nullptr : new EventSource{};
}

int reportEvent(EventSource*, EventType, uint32_t, const char* const*, size_t) {
    return machine.fails("reportEvent") ? 1 : 0;
}

void deregisterEventSource(EventSource* source) {
    delete source;
}

// The system and the program.

void startPlatform() {
}

uint32_t systemMajorVersion() {
    return machine.fails("systemMajorVersion") ? 0 : 10;
}

uint32_t processNumber() {
    return 1;
}

int localTime(LocalTime* now) {
    *now = {.year = 2024,
            .month = 2,
            .day = 29,
            .dayOfWeek = 4,
            .hour = 23,
            .minute = 59,
            .second = 59,
            .millisecond = 999};
    return machine.fails("localTime") ? 1 : 0;
}

size_t programPath(char* out, size_t size) {
    copyText(out, size, (PROGRAM_DIRECTORY + "tarnlift.exe").c_str());
    return machine.fails("programPath") ? 0 : strlen(out);
}

size_t fullPath(const char* name, char* out, size_t size) {
    copyText(out, size, name);
    return machine.fails("fullPath") ? 0 : strlen(out);
}

const char* tempDirectory() {
    return "C:\\tmp";
}

const char* systemDrive() {
    return "C:";
}
