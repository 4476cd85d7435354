#include "text.h"

#include <cstdint>

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

static bool isUnshown(char32_t codePoint) {
    for (const CodePointRange& range : unshown) {
        if (codePoint >= range.first && codePoint <= range.last) {
            return true;
        }
    }
    return false;
}

std::string fleet::shownText(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const Decoded next = decode(text);
        append(result, isUnshown(next.codePoint) ? REPLACEMENT : next.codePoint);
        text.remove_prefix(next.size);
    }
    return result;
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

size_t fleet::lengthOf(std::string_view text) {
    size_t length = 0;
    for (char c : text) {
        length += (static_cast<uint8_t>(c) & 0xC0U) == 0x80 ? 0 : 1;
    }
    return length;
}
