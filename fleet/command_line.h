// Reads the arguments of a command.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fleet {

// An option of a command: with a value, as in "-o FILE" and "--servers=FILE", or without one.
struct Option {
    std::string_view name;
    std::optional<std::string>* value;  // null for an option without a value
    bool* isGiven;                      // null for an option with one
};

// Sorts arguments into options and the others, which it appends to `operands`. Returns false after a message on standard
// error: an unknown option, an option twice, or a value that is missing or not expected.
bool readArguments(std::span<const std::string> arguments, std::span<const Option> options,
                   std::vector<std::string>& operands);

}  // namespace fleet
