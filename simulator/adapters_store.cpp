#include "adapters_store.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "adapters_parser.h"
#include "host_system.h"
#include "text.h"

namespace simulator {

static constexpr size_t LARGEST_FILE = size_t{64} * 1024 * 1024;

static bool failOn(const std::string& path, const char* what, std::string& problem) {
    problem = path + ": " + what;
    return false;
}

static bool readWholeFile(const std::string& path, std::string& text, std::string& problem) {
    FILE* file = fopen(path.c_str(), "rb");
    if (file == nullptr) {
        return failOn(path, strerror(errno), problem);
    }
    char chunk[16384];
    size_t got;
    while (text.size() <= LARGEST_FILE && (got = fread(chunk, 1, sizeof chunk, file)) > 0) {
        text.append(chunk, got);
    }
    bool broken = ferror(file) != 0;
    fclose(file);
    if (broken) {
        return failOn(path, "cannot be read", problem);
    }
    return text.size() <= LARGEST_FILE || failOn(path, "is larger than 64 MiB", problem);
}

// PowerShell's > writes UTF-16. Whatever is written back is UTF-8.
static void decodeUtf16(std::string& text) {
    bool littleEndian = text.starts_with("\xFF\xFE");
    if (!littleEndian && !text.starts_with("\xFE\xFF")) {
        return;
    }
    std::u16string units;
    for (size_t at = 2; at + 1 < text.size(); at += 2) {
        auto low = static_cast<unsigned char>(text[littleEndian ? at : at + 1]);
        auto high = static_cast<unsigned char>(text[littleEndian ? at + 1 : at]);
        units += static_cast<char16_t>(high << 8 | low);
    }
    text = utf8Of(units);
}

bool loadStore(const std::string& directory, Store& store, std::string& problem) {
    store.directory = directory;
    store.path = directory + "adapters.txt";
    store.text.clear();
    if (!readWholeFile(store.path, store.text, problem)) {
        return false;
    }
    decodeUtf16(store.text);
    ParseError error;
    if (parseAdapters(store.text.data(), store.text.size(), store.machine, error)) {
        return true;
    }
    problem = store.path + ":" + std::to_string(error.line) + ": " + error.message;
    return false;
}

static bool writeFile(const std::string& path, const char* mode, const std::string& text, std::string& problem) {
    FILE* file = fopen(path.c_str(), mode);
    if (file == nullptr) {
        return failOn(path, strerror(errno), problem);
    }
    bool whole = fwrite(text.data(), 1, text.size(), file) == text.size();
    bool closed = fclose(file) == 0;
    return (whole && closed) || failOn(path, "cannot be written", problem);
}

bool saveStore(const Store& store, std::string& problem) {
    std::string fresh = store.path + ".new";
    if (!writeFile(fresh, "wb", composeFile(store.machine), problem)) {
        return false;
    }
    if (replaceFile(fresh, store.path)) {
        return true;
    }
    remove(fresh.c_str());
    return failOn(store.path, "cannot be replaced", problem);
}

bool recordCall(const Store& store, std::span<char*> arguments, std::string& problem) {
    if (store.machine.callsFile.empty()) {
        return true;
    }
    std::string line;
    for (const char* argument : arguments) {
        line.append(line.empty() ? "" : " ").append(argument);
    }
    return writeFile(store.directory + std::string(store.machine.callsFile), "ab", line + "\n", problem);
}

}  // namespace simulator
