// Each target is a few runs in which one part is the fuzzer's bytes; TARGET says which.
#include "fuzz/memory_platform.h"
#include "simulator/adapters_parser.h"

static void readAdapters(const std::string& bytes) {
    simulator::Machine read;
    simulator::ParseError error;
    simulator::Script script;
    bool good = simulator::parseAdapters(bytes.data(), bytes.size(), read, error);
    for (size_t i = 0; good && i < read.ports.size(); i++) {
        simulator::takeDownloadScript(read, read.ports[i], script);
        simulator::setAttribute(read, read.ports[i], "FW Version", "14.1");
    }
    good ? simulator::composeListing(read, true) + simulator::composeFile(read) : "";
}

// The parts: the operation that fails, switches, listing, matrix, version of an image, reply with its exit status.
static void runWhole(const std::string& bytes) {
    const std::vector<std::string> parts = split(bytes + "|||||", '|');
    machine.failAt = static_cast<size_t>(labs(atoi(parts[0].c_str())));
    machine.failOnwards = parts[0].starts_with('-');
    machine.files["listing"] += parts[2];
    machine.files["C:\\t\\fwmatrix.txt"] += parts[3];
    machine.files["C:\\t\\firmware\\" + parts[4] + ".grp"] = imageFile(parts[4].size() % 2 != 0, parts[4]);
    machine.replies.insert(machine.replies.begin(), {atoi(parts[5].c_str()), parts[5]});
    judgedRun(split(parts[1], ' '));
}

extern "C" int LLVMFuzzerTestOneInput(const char* data, size_t size) {
    const std::string bytes(data, size), target = TARGET;
    const std::map<std::string, std::pair<std::string, std::vector<std::string>>> targets = {
        {"listing", {"listing", {"/q /xml", "/a /u /xml /xv", "/g /vpd"}}},
        {"image", {"C:\\t\\firmware\\0.grp", {"/iv=C:\\t\\firmware\\0.grp", "/a /ff /xml /xv"}}},
        {"matrix", {"C:\\t\\fwmatrix.txt", {"/u /v /xv", "/e /xml"}}},
        {"rmini", {"C:\\t\\RM.INI", {"/h"}}},
        {"switches", {"unused", {bytes}}},
        {"adapters", {"unused", {""}}},
        {"whole", {"unused", {""}}}};
    for (const std::string& arguments : targets.at(target).second) {
        machine = standardMachine();
        machine.files["C:\\t\\vlmdbg.log"] = "";
        machine.files[targets.at(target).first] = bytes;
        target == "adapters" ? readAdapters(bytes)
        : target == "whole"  ? runWhole(bytes)
                             : judgedRun(split(arguments, ' '));
    }
    return 0;
}
