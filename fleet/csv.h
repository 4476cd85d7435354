// The command "csv": one row a port, for spreadsheets and scripts.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace fleet {

inline constexpr std::string_view CSV_HELP =
    R"(tarnfleet csv - prints one row for each port, for spreadsheets and scripts

Usage: tarnfleet csv DIR [--servers FILE] [-o FILE.csv]

    DIR              holds the files of each server (see 'tarnfleet status --help')
    --servers FILE   the names of the servers that were to report, one a line
    -o FILE.csv      writes a file, whole or not at all, instead of standard output

Columns: server, server_state, return_code, wwn, model, pci, state, status,
version_before, version_image, image_file, version_now, message.
A server without ports has one row. The text is UTF-8 by RFC 4180. A value that
a spreadsheet would take for a formula (it begins with = + - or @) gets a '
before it.

Exit code: 0 the rows were written; 3 they were not.
)";

int runCsv(std::span<const std::string> arguments);

}  // namespace fleet
