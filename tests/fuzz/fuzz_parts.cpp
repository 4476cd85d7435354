// The targets in which the fuzzer's bytes are one part of the standard machine. FUZZ_TARGET names the target.
#include <cstring>

#include "fuzz/judge.h"
#include "fuzz/standard_machine.h"

struct Part {
    const char* target;
    std::string path;               // of the file that gets the bytes; empty for a part that is no file
    std::vector<std::string> runs;  // the switches of the runs on it
};

static const Part parts[] = {
    {"listing", "", {"/q /xml", "/a /u /xml /xv", "/g /vpd"}},
    {"image", IMAGE_DIRECTORY + "0.grp", {"/iv=" + IMAGE_DIRECTORY + "0.grp", "/a /ff /xml /xv"}},
    {"matrix", MATRIX_PATH, {"/u /v /xv", "/e /xml"}},
    {"rmini", SETTINGS_PATH, {"/h"}},
    {"switches", "", {}},
};

static const Part& partOfTarget() {
    const Part* part = parts;
    while (strcmp(part->target, FUZZ_TARGET) != 0) {
        part++;
    }
    return *part;
}

extern "C" int LLVMFuzzerTestOneInput(const char* data, size_t size) {
    static const Part& part = partOfTarget();
    const std::string bytes(data, size);
    for (const std::string& switches : part.runs.empty() ? std::vector{bytes} : part.runs) {
        machine = standardMachine();
        machine.files[DIAGNOSTIC_LOG_PATH] = "";
        if (!part.path.empty()) {
            machine.files[part.path] = bytes;
        } else if (!part.runs.empty()) {
            machine.listing = bytes;
        }
        judgedRun(switches);
    }
    return 0;
}
