#include "text.h"

#include <charconv>

namespace simulator {

static constexpr std::string_view BLANKS = " \t\r";

std::string_view trim(std::string_view text) {
    size_t first = text.find_first_not_of(BLANKS);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

static char upperCase(char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

bool equalsIgnoringCase(std::string_view left, std::string_view right) {
    if (left.size() != right.size()) {
        return false;
    }
    for (size_t i = 0; i < left.size(); i++) {
        if (upperCase(left[i]) != upperCase(right[i])) {
            return false;
        }
    }
    return true;
}

std::optional<uint32_t> readNumber(std::string_view text, int base, uint32_t limit) {
    uint32_t number = 0;
    const char* end = text.data() + text.size();
    auto [stop, failure] = std::from_chars(text.data(), end, number, base);
    if (failure != std::errc() || stop != end || number > limit) {
        return std::nullopt;
    }
    return number;
}

std::optional<uint32_t> readPortNumber(std::string_view text) {
    if (!text.starts_with('-')) {
        return readNumber(text, 10, UINT32_MAX);
    }
    std::optional<uint32_t> number = readNumber(text.substr(1), 10, UINT32_MAX);
    if (number) {
        number = 0 - *number;
    }
    return number;
}

bool refuse(std::string& message, std::initializer_list<std::string_view> parts) {
    message.clear();
    for (std::string_view part : parts) {
        message.append(part);
    }
    return false;
}

}  // namespace simulator
