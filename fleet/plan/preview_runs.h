// Runs the previews of all servers, as many at a time as there are cores.
#pragma once

#include <string>
#include <vector>

#include "plan/rehearsal_programs.h"
#include "plan/results_directory.h"
#include "plan/saved_listings.h"

namespace fleet {

struct PlanOrder {
    std::vector<PlannedServer> servers;
    RehearsalPrograms programs;
    std::vector<std::string> arguments;  // of the updater
    int secondsForOne = 0;               // a run that takes longer is ended
};

struct PlanResult {
    size_t planned = 0;
    std::vector<Refusal> refused;
    std::string problem;  // why the plan stopped before its end; empty when it did not
};

// Leaves the report and return code of each server, or the reason why it has none, in `results`. All children have
// ended, and all temporary files are gone, when it returns.
PlanResult runPreviews(const PlanOrder& order, ResultsDirectory& results);

}  // namespace fleet
