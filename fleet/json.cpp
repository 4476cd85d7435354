#include "json.h"

using namespace fleet;

static void appendEscape(std::string& json, unsigned codePoint) {
    constexpr char digits[] = "0123456789abcdef";
    json += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) {
        json += digits[codePoint >> shift & 0xF];
    }
}

static void appendQuoted(std::string& json, std::string_view text) {
    json += '"';
    for (size_t i = 0; i < text.size(); i++) {
        const char c = text[i];
        const bool isSeparator = text.substr(i, 3) == "\xE2\x80\xA8" || text.substr(i, 3) == "\xE2\x80\xA9";
        if (c == '"' || c == '\\') {
            json += '\\';
            json += c;
        } else if (isSeparator) {
            appendEscape(json, text[i + 2] == '\xA8' ? 0x2028 : 0x2029);
            i += 2;
        } else if (c == '<' || c == '>' || c == '&' || static_cast<unsigned char>(c) < ' ') {
            appendEscape(json, static_cast<unsigned char>(c));
        } else {
            json += c;
        }
    }
    json += '"';
}

static bool needsComma(const std::string& json) {
    return !json.empty() && json.back() != '{' && json.back() != '[' && json.back() != ':';
}

JsonWriter& JsonWriter::raw(std::string_view value) {
    if (needsComma(json)) {
        json += ',';
    }
    json += value;
    return *this;
}

JsonWriter& JsonWriter::open(char bracket) {
    return raw({&bracket, 1});
}

JsonWriter& JsonWriter::close(char bracket) {
    json += bracket;
    return *this;
}

JsonWriter& JsonWriter::name(std::string_view key) {
    text(key);
    json += ':';
    return *this;
}

JsonWriter& JsonWriter::text(std::string_view value) {
    raw("");
    appendQuoted(json, value);
    return *this;
}

JsonWriter& JsonWriter::number(int64_t value) {
    return raw(std::to_string(value));
}

JsonWriter& JsonWriter::number(const std::optional<int>& value) {
    return value ? number(int64_t{*value}) : raw("null");
}

JsonWriter& JsonWriter::number(const std::optional<int64_t>& value) {
    return value ? number(*value) : raw("null");
}

JsonWriter& JsonWriter::boolean(bool value) {
    return raw(value ? "true" : "false");
}
