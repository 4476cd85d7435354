// The part of the judgement that looks at single ports.
#pragma once

#include <string>
#include <vector>

#include "judgement.h"

namespace fleet {

// A state with its reason, which can be empty.
struct Verdict {
    State state;
    std::string reason;
};

// The ports of the run, each held against the query; after them those that only the query has found.
std::vector<PortResult> judgePorts(const Evidence& evidence);

// Whether a run left the port with firmware that a reboot has to activate.
bool asksForReboot(const ReportedPort& port);

// Whether the port's status is that of a preview.
bool isPreview(const ReportedPort& port);

}  // namespace fleet
