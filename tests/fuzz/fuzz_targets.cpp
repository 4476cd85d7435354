// Each target is a few runs in which one part is the fuzzer's bytes; TARGET says which.
#include "fuzz/memory_platform.h"
#include "simulator/adapters_parser.h"

static void readAdapters(const std::string& bytes) {
    simulator::Machine read;
    simulator::ParseError error;
    simulator::Script script;
    if (!simulator::parseAdapters(bytes.data(), bytes.size(), read, error)) {
        return;
    }
    for (simulator::Port& port : read.ports) {
        simulator::takeDownloadScript(read, port, script);
        simulator::setAttribute(read, port, "FW Version", "14.1");
    }
    simulator::composeListing(read, true);
    simulator::composeFile(read);
}

extern "C" int LLVMFuzzerTestOneInput(const char* data, size_t size) {
    const std::string bytes(data, size), target = TARGET;
    const std::map<std::string, std::pair<std::string, std::vector<std::string>>> targets = {
        {"listing", {"the listing", {"/q /xml", "/a /u /xml /xv", "/g /vpd"}}},
        {"image", {"C:\\t\\firmware\\0.grp", {"/iv=C:\\t\\firmware\\0.grp", "/a /ff /xml /xv"}}},
        {"matrix", {"C:\\t\\fwmatrix.txt", {"/u /v /xv", "/e /xml"}}},
        {"rmini", {"C:\\t\\RM.INI", {"/h"}}},
        {"switches", {"unused", {bytes}}},
        {"adapters", {"unused", {""}}},
        {"whole", {"unused", {""}}}};
    for (const std::string& switches : targets.at(target).second) {
        machine = machineOf(target == "whole" ? bytes : "0|" + switches + STANDARD);
        machine.files["C:\\t\\vlmdbg.log"] = "";
        machine.files[targets.at(target).first] = bytes;
        target == "adapters" ? readAdapters(bytes) : judgedRun();
    }
    return 0;
}
