#include "unit/failing_calls.h"

#include <cerrno>
#include <cstdio>

static int failingCall;  // 0 for none
static int calls;
static int failure;

static bool fails() {
    bool failing = failingCall != 0 && ++calls == failingCall;
    errno = failing ? failure : errno;
    return failing;
}

bool runWithFailingCall(int number, int error, const std::function<void()>& operation) {
    failingCall = number;
    calls = 0;
    failure = error;
    operation();
    failingCall = 0;
    return calls >= number;
}

// The linker directs each call to its wrapper here. Parameters and results are words of the machine.
#define CAN_FAIL(name, failed)                                                                                         \
    extern "C" long __real_##name(long, long, long, long, long, long);                                                 \
    extern "C" long __wrap_##name(long a, long b, long c, long d, long e, long f) {                                    \
        return fails() ? (failed) : __real_##name(a, b, c, d, e, f);                                                   \
    }

CAN_FAIL(malloc, 0)
CAN_FAIL(calloc, 0)
CAN_FAIL(realloc, 0)
CAN_FAIL(strdup, 0)
CAN_FAIL(fopen, 0)
CAN_FAIL(fseek, -1)
CAN_FAIL(opendir, 0)
CAN_FAIL(readdir, 0)
CAN_FAIL(stat, -1)
CAN_FAIL(open, -1)
CAN_FAIL(readlink, -1)
CAN_FAIL(getcwd, 0)
CAN_FAIL(waitpid, -1)
CAN_FAIL(clock_gettime, -1)
CAN_FAIL(localtime_r, 0)
CAN_FAIL(posix_spawn, failure)
CAN_FAIL(posix_spawn_file_actions_init, failure)
CAN_FAIL(posix_spawn_file_actions_adddup2, failure)
CAN_FAIL(posix_spawnattr_init, failure)
CAN_FAIL(posix_spawnattr_setsigdefault, failure)
CAN_FAIL(posix_spawnattr_setflags, failure)

// A failed read also leaves its mark on the stream.
extern "C" size_t __real_fread(void*, size_t, size_t, FILE*);
extern "C" size_t __wrap_fread(void* out, size_t size, size_t count, FILE* file) {
    if (!fails()) {
        return __real_fread(out, size, count, file);
    }
    fputc('x', file);  // an error for a stream that is only read
    return 0;
}
