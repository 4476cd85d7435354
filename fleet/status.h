// The command "status": all servers on the terminal.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace fleet {

inline constexpr std::string_view STATUS_HELP =
    R"(tarnfleet status - shows all servers, the worst first, with reasons and totals

Usage: tarnfleet status DIR [--servers FILE]

    DIR              holds the files of each server:
                       NAME.xml         what 'tarnlift.exe SWITCHES /xml' printed
                       NAME.query.xml   what '/q /xml' printed afterwards
                       NAME.code        the return code of the run
                       NAME.rebooted    any content: the server was restarted
                                        between run and query
                       NAME.refused     why a plan or the role made no report
                     Only NAME.xml is needed.
    --servers FILE   the names of the servers that were to report, one a line

States, the worst first; a server has the worst of its ports:
    failed  not-installed  no-report  waiting  not-verified  updated
    would-update  skipped  current  listed  no-adapters
NO_COLOR=1 in the environment turns colours off.

Exit code: 0 all is well; 1 waiting or not-verified; 2 failed, not-installed or
no-report; 3 the command could not be carried out, or there is no report.
)";

int runStatus(std::span<const std::string> arguments);

}  // namespace fleet
