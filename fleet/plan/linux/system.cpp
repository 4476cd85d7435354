#include "plan/system.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

namespace fs = std::filesystem;

fs::path fleet::programDirectory() {
    std::error_code failure;
    return fs::read_symlink("/proc/self/exe", failure).parent_path();
}

std::vector<fs::path> fleet::temporaryDirectories() {
    std::vector<fs::path> directories;
    const char* named = getenv("TMPDIR");
    if (named != nullptr && *named != '\0') {
        std::error_code failure;
        directories.push_back(fs::absolute(named, failure));
    }
    directories.insert(directories.end(), {"/tmp", "/var/tmp"});
    return directories;
}

fs::path fleet::makePrivateDirectory(const fs::path& parent, std::string& problem) {
    std::string name = (parent / "tarnfleet-XXXXXX").native();
    if (mkdtemp(name.data()) == nullptr) {
        problem = strerror(errno);
        return {};
    }
    return name;
}

bool fleet::standardErrorIsTerminal() {
    return isatty(STDERR_FILENO) != 0;
}
