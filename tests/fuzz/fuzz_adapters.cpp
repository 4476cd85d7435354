// The simulator's adapters.txt: what it reads, changes and writes back.
#include "simulator/adapters_parser.h"

extern "C" int LLVMFuzzerTestOneInput(const char* data, size_t size) {
    simulator::Machine machine;
    simulator::ParseError error;
    simulator::Script script;
    if (!simulator::parseAdapters(data, size, machine, error)) {
        return 0;
    }
    for (simulator::Port& port : machine.ports) {
        simulator::useDownloadScript(machine, port, script);
        simulator::setAttribute(machine, port, "FW Version", "14.1");
    }
    simulator::composeListing(machine, true);
    simulator::composeFile(machine);
    return 0;
}
