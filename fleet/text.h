// Texts: UTF-8 throughout the program, whatever the files and the system use.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace fleet {

// A text from outside, fit to be shown anywhere: well-formed UTF-8 without control characters (tab and line ends
// included), direction marks and separators of lines or paragraphs. U+FFFD replaces each of them, and each byte that
// is not UTF-8.
std::string shownText(std::string_view text);

// The content of a text file as well-formed UTF-8 without a byte order mark. It may be UTF-8, UTF-16 with a byte order
// mark, or UTF-16 without one if it begins with an ASCII character; anything else is read as Latin-1.
std::string decodedText(std::string_view bytes);

// UTF-16 as UTF-8. U+FFFD replaces half a surrogate pair.
std::string utf8Of(std::u16string_view text);

// A path, or one component of it, as UTF-8. On Linux its bytes as they are.
std::string textOf(const std::filesystem::path& path);

// The path that an argument or a file's line names.
std::filesystem::path pathOf(std::string_view text);

// The text without blanks, tabs and line ends at both ends.
std::string_view trimmed(std::string_view text);

// Removes the first line of a text and returns it without its line end (LF or CR LF).
std::string_view takeLine(std::string_view& text);

// The whole text as a decimal number between the limits, a minus sign allowed.
std::optional<int64_t> readNumber(std::string_view text, int64_t smallest, int64_t largest);

// The text with A to Z as a to z.
std::string lowerCase(std::string_view text);

// How many columns a shown text takes on a terminal.
size_t lengthOf(std::string_view text);

// A shown text, cut to `length` columns; with "..." as the last three when it has more.
std::string cutText(std::string_view text, size_t length);

}  // namespace fleet
