// The command "check": one server as JSON, for scripts.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace fleet {

inline constexpr std::string_view CHECK_HELP =
    R"(tarnfleet check - tells the state of one server, as JSON for a script

Usage: tarnfleet check RUN.xml [QUERY.xml] [--code N] [--rebooted]

    RUN.xml      what 'tarnlift.exe SWITCHES /xml' printed
    QUERY.xml    what 'tarnlift.exe /q /xml' printed afterwards
    --code N     the return code of the run
    --rebooted   the server was restarted between run and query

It prints one object:
    {"state": STATE, "reasons": [TEXT, ...], "reboot": true or false, "ports":
     [{"wwn": TEXT, "model": TEXT, "state": STATE, "reason": TEXT}, ...]}
"reboot" is true when a restart is needed and --rebooted is not given.

States, the worst first; a server has the worst of its ports:
    failed  not-installed  no-report  waiting  not-verified  updated
    would-update  skipped  current  listed  no-adapters
Exit code: 0 all is well; 1 waiting or not-verified; 2 failed, not-installed or
no-report; 3 the command could not be carried out.
)";

int runCheck(std::span<const std::string> arguments);

}  // namespace fleet
