// The program's name with its version, which is the updater's: both are released together.
#pragma once

#include <string>

#include "settings/program_version.h"

namespace fleet {

inline std::string nameAndVersion() {
    std::string text = "tarnfleet";
    for (char separator = ' '; int number : {TARNLIFT_VERSION_MAJOR, TARNLIFT_VERSION_MINOR, TARNLIFT_VERSION_RELEASE,
                                             TARNLIFT_VERSION_BUILD}) {
        text += separator + std::to_string(number);
        separator = '.';
    }
    return text;
}

}  // namespace fleet
