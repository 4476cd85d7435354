// What one run of tarnlift.exe printed under /xml.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "files.h"

namespace fleet {

// One port. All texts are fit to be shown; they are empty where the document has NONE for "no image".
struct ReportedPort {
    std::string wwn;
    std::string model;
    std::string pci;       // bus:device.function, hexadecimal, such as 3B:0.1
    std::string firmware;  // what the port ran when it was listed; N/A or NONE when nobody knows
    std::string bootCode;  // only in an inventory
    std::string image;     // version of the chosen image
    std::string file;      // its file
    std::string message;   // the words of the status
    int status = 0;        // a PortOutcome; only in an execution
};

enum class ReportKind {
    NONE,         // there is no readable document
    NO_ADAPTERS,  // plain text instead: the run found no adapters
    INVENTORY,    // a query
    EXECUTION,    // a run that downloads, or its preview
};

struct Report {
    ReportKind kind = ReportKind::NONE;
    std::string fault;              // why there is no document: a predicate, such as "is cut off"
    std::optional<int> returnCode;  // by the document, or by the plain text that was found instead
    std::string ending;             // the message of that plain text, such as "insufficient privileges"
    bool rebootRequired = false;    // by the whole run; see also the status of each port
    std::vector<ReportedPort> ports;
};

// Reads the content of a report's file, which readTextFile has read.
Report readReport(const FileContent& content);

// The text as a return code. Windows shows the code of a crash with or without a sign; both are the same here.
std::optional<int> readReturnCode(std::string_view text);

}  // namespace fleet
