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

static void appendUtf8(char32_t character, std::string& text) {
    // How many continuation bytes follow, and the bits that mark the first byte.
    unsigned following = character < 0x80 ? 0 : character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    constexpr unsigned marks[] = {0x00, 0xC0, 0xE0, 0xF0};
    text += static_cast<char>(marks[following] | character >> (6 * following));
    while (following-- > 0) {
        text += static_cast<char>(0x80 | (character >> (6 * following) & 0x3F));
    }
}

std::string utf8Of(std::u16string_view units) {
    constexpr char32_t REPLACEMENT = 0xFFFD;
    std::string text;
    for (size_t at = 0; at < units.size(); at++) {
        char32_t unit = units[at];
        char32_t next = at + 1 < units.size() ? units[at + 1] : 0;
        if (unit >= 0xD800 && unit < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
            appendUtf8(0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00), text);
            at++;
        } else {
            appendUtf8(unit >= 0xD800 && unit < 0xE000 ? REPLACEMENT : unit, text);
        }
    }
    return text;
}

bool refuse(std::string& message, std::initializer_list<std::string_view> parts) {
    message.clear();
    for (std::string_view part : parts) {
        message.append(part);
    }
    return false;
}

}  // namespace simulator
