// Small helpers for text that comes from outside: all work on views, so nothing is read past a known end.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace simulator {

// The text without blanks, tabs and carriage returns at both ends.
std::string_view trim(std::string_view text);

// Whether two texts are equal when a to z count as A to Z. Other bytes must be the same.
bool equalsIgnoringCase(std::string_view left, std::string_view right);

// The whole text as a number without sign in base 10 or 16 (no prefix). No value when there is anything
// else in the text, when it is empty, or when the number is above the limit.
std::optional<uint32_t> readNumber(std::string_view text, int base, uint32_t limit);

// A port's number in decimal. A caller may have printed the 32 bits with a sign, so -1 means 4294967295.
std::optional<uint32_t> readPortNumber(std::string_view text);

// UTF-16 as UTF-8. U+FFFD replaces half a surrogate pair.
std::string utf8Of(std::u16string_view units);

// Joins the parts into the message. Always returns false, so that a reader can refuse and explain in one statement.
bool refuse(std::string& message, std::initializer_list<std::string_view> parts);

}  // namespace simulator
