// The one place that decides the states of ports and servers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "report.h"
#include "states.h"

namespace fleet {

// All that is known of a server.
struct Evidence {
    std::string name;
    bool hasRun = false;  // whether there is a file for the run's report
    Report run;
    std::optional<Report> query;  // made after the run
    std::optional<int> returnCode;
    std::string returnCodeFault;  // why there is none although there is a file for it
    bool rebooted = false;        // restarted between run and query
    std::string refusal;          // why no run was even tried, if that is so
    std::optional<int64_t> time;  // of the run's report, in seconds since 1970
};

// Texts are empty where there is nothing to tell.
struct PortResult {
    std::string wwn;
    std::string model;
    std::string pci;  // bus:device.function, hexadecimal
    State state = State::LISTED;
    std::optional<int> status;  // a PortOutcome
    std::string before;         // firmware when the run began
    std::string image;          // version of the chosen image
    std::string file;           // its file
    std::string now;            // firmware by the query
    std::string reason;         // why the port is not simply in order
    std::string message;        // of the status
};

struct ServerResult {
    std::string name;
    State state = State::NO_ADAPTERS;
    std::optional<int> code;
    std::vector<std::string> reasons;  // of the state, each once
    std::optional<int64_t> time;       // of the run's report, in seconds since 1970
    bool reboot = false;               // needs one, and has had none since the run
    bool preview = false;
    std::vector<PortResult> ports;
};

ServerResult judge(const Evidence& evidence);

}  // namespace fleet
