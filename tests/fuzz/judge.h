// Watches one run of the whole program on the machine in memory, and says when it breaks a rule that holds for every run.
#pragma once

#include <string>
#include <vector>

// How the run dealt with one port.
struct PortEnd {
    std::string board;
    int outcome;           // a PortOutcome; in a query only whether the port's data are unusable
    std::string download;  // the utility's command line, empty without a download
    bool attempted;        // the run came as far as a download, even if it was a preview or an earlier port's

    bool operator==(const PortEnd& other) const = default;
};

// The ports of the last judgedRun, in their order.
extern std::vector<PortEnd> portEnds;

// Runs the whole program once on the global `machine`, with these switches, which blanks separate. When the run breaks a
// rule, it prints the rule, the switches, the port, both values and the operation that failed, and aborts.
int judgedRun(const std::string& switches);

// Prints and aborts in the same way unless the rule holds.
void judge(bool holds, const std::string& rule, const std::string& got, const std::string& wanted);
