// The command `plan`: what a roll-out would do, by a preview of each server beside simulated adapters.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace fleet {

inline constexpr std::string_view PLAN_HELP =
    R"(tarnfleet plan - what a roll-out would do, without touching an adapter

Usage: tarnfleet plan LISTINGS -o DIR [--timeout SECONDS] -- SWITCHES

    LISTINGS    a directory with what 'winhbcfg.exe listattr /c' prints on each
                server, as NAME.txt (without /c for a plan with /vpd)
    -o DIR      a new directory, or that of an earlier plan, which is replaced
    --timeout   the longest time for one server; 60 seconds if not named
    SWITCHES    of tarnlift.exe: one of /update /rewrite /downgrade /ff, with
                /auto /id= /fmd= /vpd. Relative paths count from the current
                directory; /id= and /fmd= are by default that of tarnfleet

For each server 'tarnlift.exe /p /xml SWITCHES' is run beside the simulated
winhbcfg.exe, never beside the real one. It leaves NAME.xml and NAME.code, or
NAME.refused with the reason. 'tarnfleet status DIR' tells what the plan says.

Windows: run it as an administrator; events go to this machine's event log.

Exit code 0: every server was planned. 2: some were not; the list says why.
3: the plan could not be made or was interrupted.
)";

// Returns an ExitCode.
int runPlan(std::span<const std::string> arguments);

}  // namespace fleet
