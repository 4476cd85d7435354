// The system, the environment, the clock.
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <unistd.h>

#include "base/text.h"
#include "platform/linux/native_path.h"
#include "platform/platform.h"

static constexpr uint32_t DEFAULT_SYSTEM_VERSION = 10;

void startPlatform() {
    // Without this the next opened file would take the number of a closed standard stream, and receive its output.
    int descriptor = open("/dev/null", O_RDWR);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO) {
        descriptor = dup(descriptor);
    }
    if (descriptor > STDERR_FILENO) {
        close(descriptor);
    }
    signal(SIGPIPE, SIG_IGN);  // an update goes on when nobody reads its output any more
    signal(SIGXFSZ, SIG_IGN);  // and when a log reaches the limit for the size of a file
    signal(SIGCHLD, SIG_DFL);  // waitpid gets no exit code when the caller of the program ignores this signal
}

uint32_t systemMajorVersion() {
    char path[NATIVE_PATH_SIZE];
    FILE* file = hostPath("os-version", path) ? openNativeFile(path) : nullptr;
    if (file == nullptr) {
        return DEFAULT_SYSTEM_VERSION;
    }
    char text[64] = "";
    text[readText(file, text, sizeof text - 1)] = '\0';
    fclose(file);
    const char* number = text + strspn(text, " \t");
    return *number >= '0' && *number <= '9' ? parseUnsigned(number, 10) : 0;
}

uint32_t processNumber() {
    return static_cast<uint32_t>(getpid());
}

int localTime(LocalTime* now) {
    struct timespec clock;
    struct tm parts;
    if (clock_gettime(CLOCK_REALTIME, &clock) != 0 || localtime_r(&clock.tv_sec, &parts) == nullptr) {
        return 1;
    }
    *now = {.year = parts.tm_year + 1900,
            .month = parts.tm_mon + 1,
            .day = parts.tm_mday,
            .dayOfWeek = parts.tm_wday,
            .hour = parts.tm_hour,
            .minute = parts.tm_min,
            .second = parts.tm_sec,
            .millisecond = static_cast<int>(clock.tv_nsec / 1000000)};
    return 0;
}

static const char* environmentOr(const char* name, const char* fallback) {
    const char* value = getenv(name);
    return value != nullptr && value[0] != '\0' ? value : fallback;
}

const char* tempDirectory() {
    return environmentOr("TEMP", environmentOr("TMPDIR", "/tmp"));
}

const char* systemDrive() {
    return environmentOr("SYSTEMDRIVE", "C:");
}
