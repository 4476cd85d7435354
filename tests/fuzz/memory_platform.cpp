#include "fuzz/memory_platform.h"

#include "base/text.h"
#include "platform/platform.h"
#include "selection/fw_matrix.h"

MemoryMachine machine;

struct DirectorySearch : std::vector<std::string> {};
struct RegistryKey : std::string {};
struct EventSource {};

bool MemoryMachine::fails(const char* operation, const char* path) {
    bool failing = running && ++operations >= failAt && failAt != 0 && (failOnwards || operations == failAt);
    if (failing) {
        failedPort = failed.empty() ? port : failedPort;
        failed = failed.empty() ? std::string(operation) + " " + path : failed;
        touched.insert(path);
    }
    return failing;
}

// What is written to a file that was removed is lost. A disk that is full takes the half.
static ssize_t writeBytes(void* cookie, const char* bytes, size_t size) {
    const std::string& path = *static_cast<std::string*>(cookie);
    size_t written = machine.fails("write", path.c_str()) ? size / 2 : size;
    if (machine.files.contains(path)) {
        machine.files[path].append(bytes, written);
    }
    return static_cast<ssize_t>(written);
}

// A reader gets a copy, the first half when the medium fails.
FILE* openFile(const char* path, OpenMode mode) {
    static std::set<std::string> paths;
    bool reads = mode == OPEN_READ_TEXT || mode == OPEN_READ_BINARY;
    if (machine.fails(__func__, path) || *path == '\0' || (reads && !machine.files.contains(path))) {
        return nullptr;
    }
    machine.openFiles++;
    std::string& bytes = machine.files[path];
    bytes.resize(mode == OPEN_WRITE ? 0 : bytes.size());
    if (!reads) {
        void* cookie = const_cast<std::string*>(&*paths.insert(path).first);
        return fopencookie(cookie, "w", {nullptr, writeBytes, nullptr, nullptr});
    }
    FILE* file = fmemopen(nullptr, bytes.size() + 1, "w+");
    fwrite(bytes.data(), 1, machine.fails("halfFile", path) ? bytes.size() / 2 : bytes.size(), file);
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
    bool found = !machine.fails(__func__, path) && nextDirectoryEntry(search, first);
    return found ? search : (delete search, nullptr);
}

// A utility that cannot run leaves the file as it is.
int runCommand(const char* commandLine) {
    std::string command = commandLine;
    size_t path = command.rfind("> ") + 2;
    machine.redirect = command.substr(path, command.size() - path - 1);
    bool isDownload = command.find(".exe\" download ") != std::string::npos, runs = !machine.fails(__func__);
    std::string reply = machine.replies[(machine.port - 1) % machine.replies.size()];
    machine.downloads += isDownload ? 1 : 0;
    machine.listings += isDownload || !runs ? 0 : 1;
    machine.download = isDownload ? command : "";
    machine.reply = isDownload && runs ? reply : "";
    machine.files.insert_or_assign(runs ? machine.redirect : "unused",
                                   isDownload ? reply : machine.files["the listing"]);
    return !runs ? 1 : isDownload ? atoi(reply.c_str()) : 0;
}

#define OPERATION(declaration, path, result, failure)                                                                  \
    declaration {                                                                                                      \
        return machine.fails(__func__, path) ? (failure) : (result);                                                   \
    }
#define WRAPPED(result, name, parameters)                                                                              \
    extern "C" result __real_##name parameters;                                                                        \
    extern "C" result __wrap_##name parameters

OPERATION(WRAPPED(void*, malloc, (size_t size)), "", __real_malloc(size), nullptr)
OPERATION(WRAPPED(void*, calloc, (size_t count, size_t size)), "", __real_calloc(count, size), nullptr)
OPERATION(WRAPPED(int, fclose, (FILE * file)), (machine.openFiles--, ""), __real_fclose(file),
          (__real_fclose(file), EOF))
OPERATION(WRAPPED(int, fseek, (FILE * file, long offset, int from)), file == gFwMatrixFile ? "fwmatrix" : "image",
          __real_fseek(file, offset, from), -1)
OPERATION(void startPlatform(), "", void(), void())
OPERATION(size_t readText(FILE* file, char* out, size_t size), "", fread(out, 1, size, file), 0)
OPERATION(bool readTextLine(FILE* file, char* out, size_t size), "", fgets(out, int(size), file) != nullptr, false)
OPERATION(int removeFile(const char* path), path, machine.files.erase(path) == 1 ? 0 : -1, -1)
OPERATION(bool nextDirectoryEntry(DirectorySearch* search, DirectoryEntry* entry), "",
          (copyText(entry->name, sizeof entry->name, search->back().c_str()), search->pop_back(), *entry->name), false)
OPERATION(void closeDirectorySearch(DirectorySearch* search), "", delete search, delete search)
OPERATION(RegistryKey* createRegistryKey(const char* name, RegistryAccess), name, new RegistryKey{name}, nullptr)
OPERATION(int setRegistryText(RegistryKey* key, const char*, const char*), "", key == nullptr ? 1 : 0, 1)
OPERATION(int setRegistryNumber(RegistryKey* key, const char*, uint32_t), "", key == nullptr ? 1 : 0, 1)
OPERATION(int closeRegistryKey(RegistryKey* key), key == nullptr ? "" : key->c_str(),
          key == nullptr ? 1 : (delete key, 0), (delete key, 1))
OPERATION(int deleteRegistryKey(const char*), "", 0, 1)
OPERATION(EventSource* registerEventSource(const char*), "", new EventSource(), nullptr)
OPERATION(int reportEvent(EventSource*, EventType, uint32_t, const char* const*, size_t), "", 0, 1)
OPERATION(void deregisterEventSource(EventSource* source), "", delete source, delete source)
OPERATION(uint32_t systemMajorVersion(), "", 10, 0)
OPERATION(uint32_t processNumber(), "", 1, 1)
OPERATION(int localTime(LocalTime* now), "", (*now = {2024, 2, 29, 4, 23, 59, 59, 999}, 0), 1)
OPERATION(size_t programPath(char* out, size_t size), "", (copyText(out, size, "C:\\t\\tarnlift.exe"), 16), 0)
OPERATION(size_t fullPath(const char* name, char* out, size_t size), "", (copyText(out, size, name), 1), 0)
OPERATION(const char* tempDirectory(), "", "C:\\tmp", "C:\\tmp")
OPERATION(const char* systemDrive(), "", "C:", "C:")

MemoryMachine machineOf(const std::string& text) {
    static const std::string headers[] = {"\x40\xF7\xA6", "\x20\xF7\xA5", "\x05\xF7\xA4", "\x03\xF7\x0C"};
    const std::vector<std::string> parts = split(text + "||||||||||", '|');
    MemoryMachine made;
    made.failAt = static_cast<size_t>(labs(atol(parts[0].c_str())));
    made.failOnwards = parts[0].starts_with('-');
    made.switches = parts[1];
    made.files = {{"the listing", parts[2]}, {"C:\\t\\fwmatrix.txt", parts[3]}, {"C:\\t\\RM.INI", parts[4]}};
    made.files["C:\\tmp\\temp.txt"] = "HBA: 99\nModel: A\nDevice ID: E300\nNO Error\n";
    for (size_t i = 5; i < 10; i++) {
        const std::string head = std::string("....\xFE\xAA\0", 7) + headers[parts[i][0] & 3] + '\0' + '\0';
        made.files["C:\\t\\firmware\\" + std::to_string(i - 5) + ".grp"] =
            (head + parts[i]).erase(12, 1).append(140, 0);
    }
    made.replies.assign(parts.begin() + 10, parts.end());
    return made;
}

const char STANDARD[] =
    "|HBA:1,Model:A-x,Port WWN:1<&\",Device ID:F600,Serial Number:s,FW Version:14.2.1.5,SFJ:0\n\nHBA:2,Model:A,"
    "Device ID:F600,Serial Number:S,FW Version:1.2,Boot Version:1.2\n\nHBA:3,Model:B,Device ID:F500,RevID:11,"
    "Serial Number:b,FW Version:14.3.1.1\n\nHBA:4,Model:D,Device ID:1234,FW Version:1.2.3.4,CSF:0\n\nHBA:5,"
    "Model:D,FW Version:NONE\n\nHBA:6,Model:E<\",Device ID:F400,FW Version:14.1\n\nHBA:7,Model:B,Device ID:F500,"
    "Serial Number:c\n\nHBA:8,Model:F,Device ID:E300,FW Version:14.1,PCI Bus Number:1\n|//\nA 0.grp\nB 1.grp\nD 0.grp x"
    "\nQVa6200\nE<\" 8.grp\nF 3.grp\n|FILLBYTE=0x10\nREMOTE_HBA_WWPN "
    "20:00:00:11:22:33:44:55\nX\n|014.4.200.1|114.4.188.1|"
    "213.0.0.1|314.2.0.1|114.2.0.1|80 NO Error.|0 NO Error.|92 Error.|87 NO Error.|1 Error.|96 NO Error.|0";
