// A saved listing that tarnfleet plans from: the simulated utility must print what was accepted, and nothing else.
#include <cstdlib>

#include "fleet/plan/listing_file.h"
#include "fleet/text.h"
#include "simulator/adapters_parser.h"

static void require(bool condition) {
    if (!condition) {
        abort();
    }
}

extern "C" int LLVMFuzzerTestOneInput(const char* data, size_t size) {
    std::string listing;
    std::string reason;
    if (!fleet::readListing(fleet::decodedText({data, size}), listing, reason)) {
        require(!reason.empty());
        return 0;
    }
    const std::string adapters = fleet::adaptersFileOf(listing, "calls");
    simulator::Machine machine;
    simulator::ParseError error;
    require(simulator::parseAdapters(adapters.data(), adapters.size(), machine, error));
    require(machine.ports.empty() && machine.callsFile == "calls");
    require(simulator::composeListing(machine, false) == listing);
    return 0;
}
