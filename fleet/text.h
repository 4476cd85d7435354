// Texts: UTF-8 throughout the program, whatever the files and the system use.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace fleet {

// A text from outside, fit to be shown anywhere: well-formed UTF-8 without control characters (tab and line ends
// included), direction marks and separators of lines or paragraphs. U+FFFD replaces each of them, and each byte that
// is not UTF-8.
std::string shownText(std::string_view text);

// UTF-16 as UTF-8. U+FFFD replaces half a surrogate pair.
std::string utf8Of(std::u16string_view text);

// A path, or one component of it, as UTF-8. On Linux its bytes as they are.
std::string textOf(const std::filesystem::path& path);

// The path that an argument or a file's line names.
std::filesystem::path pathOf(std::string_view text);

// How many code points a well-formed UTF-8 text has: its columns on a terminal, nearly.
size_t lengthOf(std::string_view text);

}  // namespace fleet
