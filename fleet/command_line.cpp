#include "command_line.h"

#include <algorithm>

#include "console.h"

using namespace fleet;

static bool refuse(const std::string& message) {
    complain(message);
    return false;
}

// Takes the value after '=', or else the next argument.
static bool readValue(const Option& option, std::string_view argument, std::span<const std::string>& rest) {
    const size_t sign = argument.find('=');
    if (option.value->has_value()) {
        return refuse(std::string(option.name) + " is given twice");
    }
    if (sign != std::string_view::npos) {
        *option.value = argument.substr(sign + 1);
    } else if (!rest.empty()) {
        *option.value = rest.front();
        rest = rest.subspan(1);
    }
    return option.value->value_or("").empty() ? refuse(std::string(option.name) + " needs a value") : true;
}

static bool readOption(const Option& option, std::string_view argument, std::span<const std::string>& rest) {
    if (option.value != nullptr) {
        return readValue(option, argument, rest);
    }
    *option.isGiven = true;
    return argument == option.name ? true : refuse(std::string(option.name) + " takes no value");
}

bool fleet::readArguments(std::span<const std::string> arguments, std::span<const Option> options,
                          std::vector<std::string>& operands) {
    while (!arguments.empty()) {
        const std::string& argument = arguments.front();
        arguments = arguments.subspan(1);
        if (argument.size() < 2 || argument[0] != '-') {
            operands.push_back(argument);
            continue;
        }
        const std::string_view name = std::string_view(argument).substr(0, argument.find('='));
        const auto option =
            std::find_if(options.begin(), options.end(), [&](const Option& row) { return row.name == name; });
        if (option == options.end()) {
            return refuse("unknown option " + argument);
        }
        if (!readOption(*option, argument, arguments)) {
            return false;
        }
    }
    return true;
}
