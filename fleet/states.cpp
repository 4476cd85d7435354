#include "states.h"

using namespace fleet;

static constexpr StateRow rows[] = {
    {State::FAILED, "failed", "Failed", "A download failed, or the run ended with a code that means failure.",
     EXIT_ATTENTION},
    {State::NOT_INSTALLED, "not-installed", "Not installed",
     "The run said success, but the query afterwards shows another version, or not the port.", EXIT_ATTENTION},
    {State::NO_REPORT, "no-report", "No report", "There is no report, or none that can be read.", EXIT_ATTENTION},
    {State::WAITING, "waiting", "Waiting", "Downloaded; waits for a reboot, or for a second download.",
     EXIT_UNFINISHED},
    {State::NOT_VERIFIED, "not-verified", "Not verified", "Downloaded, but no query was made afterwards.",
     EXIT_UNFINISHED},
    {State::UPDATED, "updated", "Updated", "Downloaded, and the query afterwards shows the version.", EXIT_ALL_WELL},
    {State::WOULD_UPDATE, "would-update", "Would update", "A preview: a run would download.", EXIT_ALL_WELL},
    {State::SKIPPED, "skipped", "Skipped", "No line in fwmatrix.txt, no image for the model, or no firmware version.",
     EXIT_ALL_WELL},
    {State::CURRENT, "current", "Current", "Nothing had to be done.", EXIT_ALL_WELL},
    {State::LISTED, "listed", "Listed", "Found by a query; no run was asked for.", EXIT_ALL_WELL},
    {State::NO_ADAPTERS, "no-adapters", "No adapters", "The server has no supported adapter.", EXIT_ALL_WELL},
};

std::span<const StateRow> fleet::stateRows() {
    return rows;
}

const StateRow& fleet::rowOf(State state) {
    return rows[static_cast<size_t>(state)];
}
