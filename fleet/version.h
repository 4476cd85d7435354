// The program's name with its version, which is the updater's: both are released together.
#pragma once

#include <string_view>

#include "settings/program_version.h"

namespace fleet {

inline constexpr std::string_view NAME_AND_VERSION = "tarnfleet " TARNLIFT_VERSION_TEXT;

}  // namespace fleet
