#include "plan/work_directory.h"

#include <chrono>
#include <thread>

#include "plan/system.h"
#include "text.h"

using namespace fleet;
namespace fs = std::filesystem;

namespace {

// The updater hands its own path to a command interpreter, and cuts long ones.
constexpr std::string_view ALLOWED = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 ._-~+()/:"
#ifdef _WIN32
                                     "\\"
#endif
    ;
constexpr size_t LONGEST_PATH = 150;

constexpr int REMOVAL_ATTEMPTS = 20;
constexpr auto REMOVAL_PAUSE = std::chrono::milliseconds(100);

}  // namespace

// The interpreter cannot work in a directory on a network share.
static bool isUsable(const std::string& path) {
    return !path.empty() && path.size() <= LONGEST_PATH && !path.starts_with("\\\\") &&
           path.find_first_not_of(ALLOWED) == std::string::npos;
}

bool WorkDirectory::make(std::string& problem) {
    std::string reasons;
    for (const fs::path& parent : temporaryDirectories()) {
        const std::string text = textOf(parent);
        std::string reason = "tarnlift.exe cannot work with this path";
        if (isUsable(text)) {
            directory = makePrivateDirectory(parent, reason);
        }
        if (!directory.empty()) {
            return true;
        }
        reasons.append("; ").append(text).append(": ").append(reason);
    }
    problem = "no temporary directory can be used" + reasons;
    return false;
}

// A program that was just ended may hold its files for another moment.
WorkDirectory::~WorkDirectory() {
    std::error_code failure;
    for (int attempt = 0; !directory.empty() && attempt < REMOVAL_ATTEMPTS; attempt++) {
        fs::remove_all(directory, failure);
        if (!failure) {
            return;
        }
        std::this_thread::sleep_for(REMOVAL_PAUSE);
    }
}
