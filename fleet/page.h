// The command "page": the fleet as one HTML file.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace fleet {

inline constexpr std::string_view PAGE_HELP =
    R"(tarnfleet page - makes a page of all servers, to read and to pass on

Usage: tarnfleet page DIR -o FILE.html [--servers FILE]

    DIR              holds the files of each server (see 'tarnfleet status --help')
    -o FILE.html     the page; an older one is replaced
    --servers FILE   the names of the servers that were to report, one a line

The page is one file. It works from disk in every current browser and needs no
network. It shows the servers, the worst first, with their ports; it can be
searched, filtered, sorted, printed and saved as CSV.

Exit code: 0 the page was made; 3 it was not.
)";

int runPage(std::span<const std::string> arguments);

}  // namespace fleet
