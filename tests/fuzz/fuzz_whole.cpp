// A whole machine as one text, its parts separated by `|`: the operation that fails (with a minus, all after it as well),
// the switches, the listing, the table, the settings, five images (a digit for the family and a version), and the
// utility's replies to downloads (an exit status and a text).
#include <cstdlib>
#include <sstream>

#include "fuzz/judge.h"
#include "fuzz/standard_machine.h"

static constexpr size_t IMAGE_COUNT = 5;

extern "C" int LLVMFuzzerTestOneInput(const char* data, size_t size) {
    std::istringstream rest(std::string(data, size));
    const auto nextPart = [&rest] {
        std::string part;
        std::getline(rest, part, '|');
        return part;
    };
    machine = standardMachine();
    machine.files[DIAGNOSTIC_LOG_PATH] = "";
    const long failAt = atol(nextPart().c_str());
    machine.failAt = static_cast<size_t>(labs(failAt));
    machine.failOnwards = failAt < 0;
    const std::string switches = nextPart();
    machine.listing = nextPart();
    machine.files[MATRIX_PATH] = nextPart();
    machine.files[SETTINGS_PATH] = nextPart();
    for (size_t i = 0; i < IMAGE_COUNT; i++) {
        const std::string image = nextPart() + '0';
        const size_t family = static_cast<unsigned char>(image[0]) - size_t{'0'};
        machine.files[IMAGE_DIRECTORY + std::to_string(i) + ".grp"] = imageFile(family, image.substr(1));
    }
    machine.replies.clear();
    do {
        const std::string reply = nextPart();
        machine.replies.push_back({atoi(reply.c_str()), reply});
    } while (rest);
    judgedRun(switches);
    return 0;
}
