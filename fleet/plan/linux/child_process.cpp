#include "plan/child_process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace fleet;

namespace {

constexpr std::array<int, 4> watchedSignals = {SIGCHLD, SIGINT, SIGTERM, SIGHUP};

volatile sig_atomic_t interruption = 0;
int wakePipe[2] = {-1, -1};
std::array<struct sigaction, watchedSignals.size()> formerActions;

}  // namespace

static void noteSignal(int number) {
    const int error = errno;
    if (number != SIGCHLD) {
        interruption = 1;
    }
    // A full pipe is no loss: it wakes the reader as well.
    [[maybe_unused]] const ssize_t written = write(wakePipe[1], "", 1);
    errno = error;
}

ProcessWatch::ProcessWatch() {
    interruption = 0;
    if (pipe2(wakePipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        wakePipe[0] = wakePipe[1] = -1;
    }
    for (size_t i = 0; i < watchedSignals.size(); i++) {
        struct sigaction action = {};
        action.sa_handler = noteSignal;
        action.sa_flags = SA_RESTART;
        sigaction(watchedSignals[i], nullptr, &formerActions[i]);
        // A program in the background of a script, or under nohup, was told to ignore them.
        if (watchedSignals[i] == SIGCHLD || formerActions[i].sa_handler != SIG_IGN) {
            sigaction(watchedSignals[i], &action, nullptr);
        }
    }
}

ProcessWatch::~ProcessWatch() {
    for (size_t i = 0; i < watchedSignals.size(); i++) {
        sigaction(watchedSignals[i], &formerActions[i], nullptr);
    }
    close(wakePipe[0]);
    close(wakePipe[1]);
}

bool fleet::userInterrupted() {
    return interruption != 0;
}

// This process's variables with the order's in the place of those of the same name.
static std::vector<std::string> environmentOf(const ChildOrder& order) {
    std::vector<std::string> texts;
    for (const auto& [name, value] : order.environment) {
        texts.emplace_back(name).append("=").append(value);
    }
    const size_t own = texts.size();
    for (char** variable = environ; *variable != nullptr; variable++) {
        const std::string_view text = *variable;
        bool replaced = false;
        for (size_t i = 0; i < own; i++) {
            const size_t nameLength = texts[i].find('=') + 1;
            replaced = replaced || text.substr(0, nameLength) == std::string_view(texts[i]).substr(0, nameLength);
        }
        if (!replaced) {
            texts.emplace_back(text);
        }
    }
    return texts;
}

static std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

// In a process group of its own: Ctrl+C does not reach it before us, and killing the group also ends what it started.
bool fleet::startChild(const ChildOrder& order, Child& child, std::string& problem) {
    std::vector<std::string> arguments = {order.program.native()};
    arguments.insert(arguments.end(), order.arguments.begin(), order.arguments.end());
    std::vector<std::string> environment = environmentOf(order);
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    constexpr int create = O_WRONLY | O_CREAT | O_TRUNC;
    int failure = posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    failure = failure != 0
                  ? failure
                  : posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, order.output.c_str(), create, 0600);
    failure = failure != 0
                  ? failure
                  : posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, order.errors.c_str(), create, 0600);
    failure = failure != 0 ? failure : posix_spawn_file_actions_addchdir_np(&actions, order.directory.c_str());
    failure = failure != 0 ? failure : posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    pid_t number = 0;
    if (failure == 0) {
        failure = posix_spawn(&number, order.program.c_str(), &actions, &attributes, pointersTo(arguments).data(),
                              pointersTo(environment).data());
    }
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (failure != 0) {
        problem = strerror(failure);
        return false;
    }
    child = {.process = number};
    return true;
}

void fleet::waitForChildren(std::span<const Child> /*children*/, int milliseconds) {
    pollfd wake = {.fd = wakePipe[0], .events = POLLIN, .revents = 0};
    constexpr int shortWait = 20;  // without the pipe nothing wakes it
    poll(&wake, 1, wake.fd < 0 ? std::min(milliseconds, shortWait) : milliseconds);
    std::array<char, 64> bytes;
    while (read(wakePipe[0], bytes.data(), bytes.size()) > 0) {
    }
}

std::optional<ChildEnd> fleet::endOfChild(const Child& child) {
    int status = 0;
    if (waitpid(static_cast<pid_t>(child.process), &status, WNOHANG) == 0) {
        return std::nullopt;
    }
    if (WIFSIGNALED(status)) {
        return ChildEnd{.violent = "signal " + std::to_string(WTERMSIG(status))};
    }
    return ChildEnd{.code = WEXITSTATUS(status), .violent = {}};
}

void fleet::killChild(const Child& child) {
    const pid_t number = static_cast<pid_t>(child.process);
    kill(-number, SIGKILL);
    while (waitpid(number, nullptr, 0) < 0 && errno == EINTR) {
    }
}
