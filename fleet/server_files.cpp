#include "server_files.h"

#include <algorithm>
#include <map>
#include <set>
#include <system_error>

#include "console.h"
#include "text.h"

namespace fs = std::filesystem;
using namespace fleet;

namespace {

constexpr size_t LINE_FILE_LIMIT = 4096;  // of a file with one line

enum class FileKind { RUN, QUERY, CODE, REFUSED, REBOOTED };

struct KindRow {
    std::string_view end;  // of the file's name
    FileKind kind;
};

// Of two ends that fit, the longer one comes first.
constexpr KindRow kindRows[] = {
    {".query.xml", FileKind::QUERY}, {".xml", FileKind::RUN},           {".code", FileKind::CODE},
    {".refused", FileKind::REFUSED}, {".rebooted", FileKind::REBOOTED},
};

struct FoundFile {
    std::string server;
    FileKind kind;
    fs::path path;
};

// Servers by name, and the names of those with a report in small letters.
struct Servers {
    std::map<std::string, ServerFiles> byName;
    std::map<std::string, std::string> nameByLowerCase;
};

}  // namespace

static std::optional<FoundFile> recognise(const fs::path& path) {
    const std::string name = textOf(path.filename());
    const std::string lowerName = lowerCase(name);
    for (const KindRow& row : kindRows) {
        if (lowerName.ends_with(row.end)) {
            const std::string server = name.substr(0, name.size() - row.end.size());
            return server.empty() ? std::nullopt : std::optional(FoundFile{server, row.kind, path});
        }
    }
    return std::nullopt;
}

// The files of servers, those with reports first, in the order of their paths. Sets `error` when not all could be found.
static std::vector<FoundFile> listFiles(const fs::path& directory, std::error_code& error) {
    std::vector<FoundFile> files;
    fs::directory_iterator entry(directory, error);
    while (!error && entry != fs::directory_iterator()) {
        if (std::optional<FoundFile> file = recognise(entry->path())) {
            files.push_back(std::move(*file));
        }
        entry.increment(error);
    }
    std::sort(files.begin(), files.end(), [](const FoundFile& left, const FoundFile& right) {
        return left.kind != right.kind ? left.kind < right.kind : left.path < right.path;
    });
    return files;
}

// The server that a file belongs to. Windows does not tell SRV1.xml from srv1.xml, so srv1.code belongs to SRV1.xml.
static ServerFiles& serverOf(const FoundFile& file, Servers& servers) {
    std::string name = file.server;
    const std::string lowerName = lowerCase(name);
    if (file.kind == FileKind::RUN) {
        servers.nameByLowerCase.emplace(lowerName, name);
    } else if (const auto similar = servers.nameByLowerCase.find(lowerName);
               !servers.byName.contains(name) && similar != servers.nameByLowerCase.end()) {
        name = similar->second;
    }
    ServerFiles& server = servers.byName[name];
    server.name = name;
    return server;
}

// Where the server keeps the path of such a file; null for a kind whose path does not matter.
static fs::path* placeOf(FileKind kind, ServerFiles& server) {
    switch (kind) {
    case FileKind::RUN:
        return &server.run;
    case FileKind::QUERY:
        return &server.query;
    case FileKind::CODE:
        return &server.code;
    case FileKind::REFUSED:
        return &server.refusal;
    case FileKind::REBOOTED:
        break;
    }
    return nullptr;
}

static void note(const FoundFile& file, ServerFiles& server) {
    fs::path* place = placeOf(file.kind, server);
    if (place == nullptr) {
        server.rebooted = true;
    } else if (place->empty()) {
        *place = file.path;
    } else {
        complain(textOf(file.path) + " is skipped, since there is " + textOf(*place));
    }
}

std::optional<std::vector<ServerFiles>> fleet::findServers(const fs::path& directory) {
    std::error_code error;
    const std::vector<FoundFile> files = listFiles(directory, error);
    if (error) {
        complain(textOf(directory) + ": " + error.message());
        return std::nullopt;
    }
    Servers servers;
    for (const FoundFile& file : files) {
        note(file, serverOf(file, servers));
    }
    std::vector<ServerFiles> result;
    for (auto& [name, server] : servers.byName) {
        result.push_back(std::move(server));
    }
    return result;
}

bool fleet::addMissingServers(const fs::path& list, std::vector<ServerFiles>& servers) {
    const FileContent content = readTextFile(list);
    if (!content.fault.empty()) {
        complain(textOf(list) + " " + content.fault);
        return false;
    }
    std::set<std::string> known;
    for (const ServerFiles& server : servers) {
        known.insert(lowerCase(server.name));
    }
    std::string_view text = content.bytes;
    while (!text.empty()) {
        const std::string name(trimmed(takeLine(text)));
        if (!name.empty() && known.insert(lowerCase(name)).second) {
            servers.emplace_back().name = name;
        }
    }
    return true;
}

static void readCode(const fs::path& path, Evidence& evidence) {
    const FileContent content = readFile(path, LINE_FILE_LIMIT);
    evidence.returnCodeFault = content.fault;
    if (content.fault.empty()) {
        evidence.returnCode = readReturnCode(decodedText(content.bytes));
        evidence.returnCodeFault = evidence.returnCode ? "" : "does not hold a number";
    }
}

static std::string readRefusal(const fs::path& path) {
    const FileContent content = readFile(path, LINE_FILE_LIMIT);
    const std::string text = decodedText(content.bytes);
    std::string_view rest = text;
    const std::string reason = content.fault.empty() ? shownText(trimmed(takeLine(rest))) : "";
    return reason.empty() ? "nothing was run, and the reason cannot be read" : reason;
}

Evidence fleet::readEvidence(const ServerFiles& files) {
    Evidence evidence;
    evidence.name = shownText(files.name);
    evidence.rebooted = files.rebooted;
    if (!files.run.empty()) {
        const FileContent content = readTextFile(files.run);
        evidence.hasRun = true;
        evidence.run = readReport(content);
        evidence.time = content.changed;
    }
    if (!files.query.empty()) {
        evidence.query = readReport(readTextFile(files.query));
    }
    if (!files.code.empty()) {
        readCode(files.code, evidence);
    }
    if (!files.refusal.empty()) {
        evidence.refusal = readRefusal(files.refusal);
    }
    return evidence;
}
