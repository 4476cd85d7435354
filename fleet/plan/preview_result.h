// What a preview run has left in its directory, and whether it is the plan of the server.
#pragma once

#include <filesystem>
#include <string>

#include "plan/child_process.h"

namespace fleet {

// Names of the files in a run's directory.
inline constexpr char OUTPUT_NAME[] = "output";
inline constexpr char ERRORS_NAME[] = "errors";
inline constexpr char CALLS_NAME[] = "calls";

enum class Verdict {
    PLANNED,
    REFUSED,  // this server cannot be planned; the others can
    REPEAT,   // a run at the same time may have been in the way
    STOP,     // every other run would end the same way
};

struct PreviewResult {
    Verdict verdict = Verdict::REFUSED;
    std::string report;  // the document of a planned server
    std::string reason;  // of every other verdict
};

PreviewResult judgePreview(const std::filesystem::path& directory, const ChildEnd& end);

}  // namespace fleet
