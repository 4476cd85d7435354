#include "fuzz/memory_platform.h"

#include "base/text.h"
#include "platform/platform.h"

MemoryMachine machine;

struct DirectorySearch : std::vector<std::string> {};
struct RegistryKey {};
struct EventSource {};

bool MemoryMachine::fails(const std::string& path) {
    bool failing = running && failAt != 0 && (++operations == failAt || (failOnwards && operations > failAt));
    redirectTouched = redirectTouched || (failing && !path.empty() && path == redirect);
    return failing;
}

static ssize_t writeBytes(void* path, const char* bytes, size_t size) {
    machine.files[*static_cast<std::string*>(path)].append(bytes, size);
    return *static_cast<std::string*>(path) != "stdout" && machine.fails() ? 0 : static_cast<ssize_t>(size);
}

// A reader gets a copy, which is empty when the medium fails.
FILE* openFile(const char* path, OpenMode mode) {
    static std::map<std::string, int> paths;
    bool reads = mode == OPEN_READ_TEXT || mode == OPEN_READ_BINARY;
    if (machine.fails(path) || *path == '\0' || (reads && !machine.files.contains(path))) {
        return nullptr;
    }
    machine.openFiles++;
    std::string& bytes = machine.files[path];
    bytes.resize(mode == OPEN_WRITE ? 0 : bytes.size());
    if (!reads) {
        return fopencookie(const_cast<std::string*>(&paths.insert({path, 0}).first->first), "w",
                           {nullptr, writeBytes, nullptr, nullptr});
    }
    FILE* file = fmemopen(nullptr, bytes.size() + 1, "w+");
    fwrite(bytes.data(), 1, machine.fails(path) ? 0 : bytes.size(), file);
    rewind(file);
    return file;
}

DirectorySearch* openDirectorySearch(const char* path, DirectoryEntry* first) {
    std::string pattern = path;
    std::string directory = pattern.substr(0, pattern.rfind('\\') + 1);
    DirectorySearch* search = new DirectorySearch{{""}};
    for (const auto& [file, bytes] : machine.files) {
        if (file == pattern || (pattern == directory + "*" && file.starts_with(directory))) {
            search->push_back(file.substr(directory.size()));
        }
    }
    *first = {};
    return nextDirectoryEntry(search, first) ? search : (delete search, nullptr);
}

bool nextDirectoryEntry(DirectorySearch* search, DirectoryEntry* entry) {
    copyText(entry->name, sizeof entry->name, search->back().c_str());
    search->pop_back();
    return !machine.fails() && entry->name[0] != '\0';
}

int runCommand(const char* commandLine) {
    std::string command = commandLine;
    size_t path = command.rfind("> ") + 2;
    machine.redirect = command.substr(path, command.size() - path - 1);
    bool isDownload = command.find(".exe\" download ") != std::string::npos;
    const auto& reply = machine.replies[machine.downloads % machine.replies.size()];
    machine.downloads += isDownload ? 1 : 0;
    if (machine.fails()) {
        return 1;
    }
    machine.listings += isDownload ? 0 : 1;
    machine.lastReply = isDownload ? reply.second : "";
    machine.files[machine.redirect] = isDownload ? reply.second : machine.files["listing"];
    return isDownload ? reply.first : 0;
}

#define OPERATION(declaration, result, failure)                                                                        \
    declaration {                                                                                                      \
        return machine.fails() ? (failure) : (result);                                                                 \
    }

extern "C" void* __real_malloc(size_t size);
extern "C" void* __real_calloc(size_t count, size_t size);
extern "C" int __real_fclose(FILE* file);
OPERATION(extern "C" void* __wrap_malloc(size_t size), __real_malloc(size), nullptr)
OPERATION(extern "C" void* __wrap_calloc(size_t count, size_t size), __real_calloc(count, size), nullptr)
OPERATION(extern "C" int __wrap_fclose(FILE* file), (machine.openFiles--, __real_fclose(file)),
          (machine.openFiles--, __real_fclose(file), EOF))
OPERATION(void startPlatform(), static_cast<void>(0), static_cast<void>(0))
OPERATION(size_t readText(FILE* file, char* out, size_t size), fread(out, 1, size, file), 0)
OPERATION(bool readTextLine(FILE* file, char* out, size_t size), fgets(out, static_cast<int>(size), file) != nullptr, 0)
OPERATION(int removeFile(const char* path), machine.files.erase(path) == 1 ? 0 : -1,
          (machine.redirectTouched = machine.redirectTouched || path == machine.redirect, -1))
OPERATION(void closeDirectorySearch(DirectorySearch* search), delete search, delete search)
OPERATION(RegistryKey* createRegistryKey(const char*, RegistryAccess), new RegistryKey(), nullptr)
OPERATION(int setRegistryText(RegistryKey* key, const char*, const char*), key == nullptr ? 1 : 0, 1)
OPERATION(int setRegistryNumber(RegistryKey* key, const char*, uint32_t), key == nullptr ? 1 : 0, 1)
OPERATION(int closeRegistryKey(RegistryKey* key), key == nullptr ? 1 : (delete key, 0), (delete key, 1))
OPERATION(int deleteRegistryKey(const char*), 0, 1)
OPERATION(EventSource* registerEventSource(const char*), new EventSource(), nullptr)
OPERATION(int reportEvent(EventSource*, EventType, uint32_t, const char* const*, size_t), 0, 1)
OPERATION(void deregisterEventSource(EventSource* source), delete source, delete source)
OPERATION(uint32_t systemMajorVersion(), 10, 0)
OPERATION(uint32_t processNumber(), 1, 1)
OPERATION(int localTime(LocalTime* now), (*now = {2024, 2, 29, 4, 23, 59, 59, 999}, 0), 1)
OPERATION(size_t programPath(char* out, size_t size), (copyText(out, size, "C:\\t\\tarnlift.exe"), 16), 0)
OPERATION(size_t fullPath(const char* name, char* out, size_t size), (copyText(out, size, name), 1), 0)
OPERATION(const char* tempDirectory(), "C:\\tmp", "C:\\tmp")
OPERATION(const char* systemDrive(), "C:", "C:")

std::string imageFile(bool isB1Family, const std::string& version) {
    const std::string magic(isB1Family ? "....\xFE\xAA\0\x20\xF7\xA5\0" : "....\xFE\xAA\0\x40\xF7\xA6\0", 12);
    return (magic + version).append(140, '\0');
}

MemoryMachine standardMachine() {
    MemoryMachine made;
    made.files["listing"] =
        "HBA:1,Model:A-x,Port WWN:1<&\",Device ID:F600,Serial Number:s,FW Version:14.2.1.5,SFJ:0\n\n"
        "HBA:2,Model:A,Device ID:F600,Serial Number:S,FW Version:1.2,Boot Version:1.2\n\n"
        "HBA:3,Model:B,Device ID:F500,FW Version:14.3.1.1,RevID:11\n\nHBA:4,Model:D,Device ID:1234"
        ",Serial Number:d,FW Version:1.2.3.4,CSF:0\n\nHBA:5,Model:D,FW Version:NONE\n\n"
        "HBA:6,Model:E<\",Device ID:F400,FW Version:14.1\n\nHBA:7,Model:B,Device ID:F500\n";
    made.files["C:\\tmp\\temp.txt"] = "HBA: 99\nModel: A\nDevice ID: E300\nNO Error\n";
    made.files["C:\\t\\fwmatrix.txt"] = "//\nA 0.grp\nB 1.grp\nD 0.grp x\nQVa6200\nE<\" 8.grp\n";
    made.files["C:\\t\\firmware\\0.grp"] = imageFile(false, "14.4.200.1");
    made.files["C:\\t\\firmware\\1.grp"] = imageFile(true, "14.2.0.1");
    made.replies = {{80, "Start\nNO Error\n"}, {92, "Error: not on this board\n"}, {87, "NO Error\n"}, {0, ""}};
    return made;
}
