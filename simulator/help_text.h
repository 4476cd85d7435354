// The utility's help text.
#pragma once

#include <string>

namespace simulator {

// Usage, the form of adapters.txt, and each script line with its options.
std::string composeHelp();

}  // namespace simulator
