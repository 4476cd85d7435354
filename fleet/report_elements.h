// The elements of a report: all that tarnlift.exe writes, and nothing else.
#pragma once

#include <string_view>

#include "report.h"

namespace fleet {

// Fills a report from an XML document in UTF-8. Returns false when it is not exactly a report: not well formed, with a
// document type, with an element or attribute more or less, or with a value that no report has. The report may be half
// filled then.
bool readElements(std::string_view document, Report& report);

}  // namespace fleet
