#include "text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <span>

using namespace fleet;

namespace {

constexpr char32_t REPLACEMENT = 0xFFFD;
constexpr char32_t LAST_CODE_POINT = 0x10FFFF;

// A code point, REPLACEMENT for a byte that begins none, and the number of bytes that it takes.
struct Decoded {
    char32_t codePoint;
    size_t size;
};

struct CodePointRange {
    char32_t first;
    char32_t last;
};

// What would change the text around it: controls, direction marks, separators, the byte order mark, tags.
constexpr CodePointRange unshown[] = {
    {0x00, 0x1F},     {0x7F, 0x9F},     {0x061C, 0x061C}, {0x200B, 0x200F},   {0x2028, 0x202E},
    {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xE0000, 0xE007F},
};

// What takes two columns on a terminal: the letters and signs of East Asia, and pictures.
constexpr CodePointRange wide[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0xA4CF},   {0xA960, 0xA97C}, {0xAC00, 0xD7A3},
    {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF01, 0xFF60},   {0xFFE0, 0xFFE6}, {0x1F300, 0x1F64F},
    {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD},
};

// What takes none: marks that join the letter before them.
constexpr CodePointRange combining[] = {
    {0x0300, 0x036F}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F},
};

}  // namespace

static bool isSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDFFF;
}

static Decoded decode(std::string_view text) {
    auto byte = [&](size_t at) { return at < text.size() ? static_cast<uint8_t>(text[at]) : uint8_t{0}; };
    const uint8_t first = byte(0);
    if (first < 0x80) {
        return {first, 1};
    }
    const size_t size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    char32_t codePoint = first & (0x7FU >> size);
    for (size_t i = 1; i < size; i++) {
        if ((byte(i) & 0xC0U) != 0x80) {
            return {REPLACEMENT, 1};
        }
        codePoint = codePoint << 6 | (byte(i) & 0x3FU);
    }
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool valid = first >= 0xC0 && first < 0xF8 && codePoint >= smallest[size] && codePoint <= LAST_CODE_POINT &&
                       !isSurrogate(codePoint);
    return valid ? Decoded{codePoint, size} : Decoded{REPLACEMENT, 1};
}

static void append(std::string& text, char32_t codePoint) {
    auto add = [&](char32_t bits) { text += static_cast<char>(bits); };
    if (codePoint < 0x80) {
        add(codePoint);
    } else if (codePoint < 0x800) {
        add(0xC0 | codePoint >> 6);
        add(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        add(0xE0 | codePoint >> 12);
        add(0x80 | (codePoint >> 6 & 0x3F));
        add(0x80 | (codePoint & 0x3F));
    } else {
        add(0xF0 | codePoint >> 18);
        add(0x80 | (codePoint >> 12 & 0x3F));
        add(0x80 | (codePoint >> 6 & 0x3F));
        add(0x80 | (codePoint & 0x3F));
    }
}

static bool isIn(std::span<const CodePointRange> ranges, char32_t codePoint) {
    for (const CodePointRange& range : ranges) {
        if (codePoint >= range.first && codePoint <= range.last) {
            return true;
        }
    }
    return false;
}

// Most texts are plain, which is found out fast.
static bool isAscii(std::string_view text, char lowest) {
    return std::all_of(text.begin(), text.end(), [&](char c) { return c >= lowest && c < '\x7F'; });
}

std::string fleet::shownText(std::string_view text) {
    if (isAscii(text, ' ')) {
        return std::string(text);
    }
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const Decoded next = decode(text);
        append(result, isIn(unshown, next.codePoint) ? REPLACEMENT : next.codePoint);
        text.remove_prefix(next.size);
    }
    return result;
}

static bool isUtf8(std::string_view text) {
    if (isAscii(text, '\0')) {
        return true;
    }
    while (!text.empty()) {
        const Decoded next = decode(text);
        if (next.codePoint == REPLACEMENT && next.size == 1) {
            return false;
        }
        text.remove_prefix(next.size);
    }
    return true;
}

// `lowByte` is the place of a unit's lower byte, 0 or 1. A single byte at the end is dropped.
static std::string decodedUtf16(std::string_view bytes, size_t lowByte) {
    std::u16string units;
    units.reserve(bytes.size() / 2);
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<uint8_t>(bytes[i + lowByte]);
        const auto high = static_cast<uint8_t>(bytes[i + 1 - lowByte]);
        units += static_cast<char16_t>(high << 8 | low);
    }
    return utf8Of(units);
}

static std::string decodedLatin1(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size() + bytes.size() / 8);
    for (const char byte : bytes) {
        append(text, static_cast<uint8_t>(byte));
    }
    return text;
}

std::string fleet::decodedText(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        bytes.remove_prefix(3);
    }
    if (bytes.starts_with("\xFF\xFE")) {
        return decodedUtf16(bytes.substr(2), 0);
    }
    if (bytes.starts_with("\xFE\xFF")) {
        return decodedUtf16(bytes.substr(2), 1);
    }
    if (bytes.size() >= 2 && (bytes[0] == '\0') != (bytes[1] == '\0')) {
        return decodedUtf16(bytes, bytes[0] == '\0' ? 1 : 0);
    }
    return isUtf8(bytes) ? std::string(bytes) : decodedLatin1(bytes);
}

std::string fleet::utf8Of(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); i++) {
        const char32_t unit = text[i];
        const char32_t next = i + 1 < text.size() ? text[i + 1] : 0;
        if (unit >= 0xD800 && unit <= 0xDBFF && next >= 0xDC00 && next <= 0xDFFF) {
            append(result, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
            i++;
        } else {
            append(result, isSurrogate(unit) ? REPLACEMENT : unit);
        }
    }
    return result;
}

std::string fleet::textOf(const std::filesystem::path& path) {
#ifdef _WIN32
    const std::wstring& native = path.native();
    return utf8Of({reinterpret_cast<const char16_t*>(native.data()), native.size()});
#else
    return path.native();
#endif
}

std::filesystem::path fleet::pathOf(std::string_view text) {
#ifdef _WIN32
    std::wstring native;
    while (!text.empty()) {
        const Decoded next = decode(text);
        if (next.codePoint >= 0x10000) {
            native += static_cast<wchar_t>(0xD7C0 + (next.codePoint >> 10));
            native += static_cast<wchar_t>(0xDC00 + (next.codePoint & 0x3FF));
        } else {
            native += static_cast<wchar_t>(next.codePoint);
        }
        text.remove_prefix(next.size);
    }
    return native;
#else
    return text;
#endif
}

std::string_view fleet::trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? "" : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view fleet::takeLine(std::string_view& text) {
    const size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

std::optional<int64_t> fleet::readNumber(std::string_view text, int64_t smallest, int64_t largest) {
    int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool valid =
        error == std::errc() && end == text.data() + text.size() && number >= smallest && number <= largest;
    return valid ? std::optional(number) : std::nullopt;
}

std::string fleet::lowerCase(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return result;
}

static size_t columnsOf(char32_t codePoint) {
    return isIn(combining, codePoint) ? 0 : isIn(wide, codePoint) ? 2 : 1;
}

size_t fleet::lengthOf(std::string_view text) {
    if (isAscii(text, ' ')) {
        return text.size();
    }
    size_t length = 0;
    while (!text.empty()) {
        const Decoded next = decode(text);
        length += columnsOf(next.codePoint);
        text.remove_prefix(next.size);
    }
    return length;
}

std::string fleet::cutText(std::string_view text, size_t length) {
    constexpr std::string_view ellipsis = "...";
    if (lengthOf(text) <= length) {
        return std::string(text);
    }
    size_t size = 0;
    size_t used = 0;
    while (size < text.size()) {
        const Decoded next = decode(text.substr(size));
        used += columnsOf(next.codePoint);
        if (used + ellipsis.size() > length) {
            break;
        }
        size += next.size;
    }
    return std::string(text.substr(0, size)).append(ellipsis);
}
