#include "base/text.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

bool formatText(char* out, size_t size, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    int length = vsnprintf(out, size, format, arguments);
    va_end(arguments);
    return length >= 0 && static_cast<size_t>(length) < size;
}

void appendFormat(char* out, size_t size, const char* format, ...) {
    size_t length = strlen(out);
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(out + length, size - length, format, arguments);
    va_end(arguments);
}

void copyPrefix(char* out, size_t size, const char* text, size_t length) {
    if (length > size - 1) {
        length = size - 1;
    }
    memcpy(out, text, length);
    out[length] = '\0';
}

void copyText(char* out, size_t size, const char* text) {
    copyPrefix(out, size, text, strlen(text));
}

void appendText(char* out, size_t size, const char* text) {
    size_t length = strlen(out);
    copyText(out + length, size - length, text);
}

char upperCase(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

void upperCaseInPlace(char* text) {
    for (; *text != '\0'; text++) {
        *text = upperCase(*text);
    }
}

bool equalsIgnoringCase(const char* a, const char* b) {
    while (*a != '\0' && upperCase(*a) == upperCase(*b)) {
        a++;
        b++;
    }
    return *a == '\0' && *b == '\0';
}

bool beginsIgnoringCase(const char* text, const char* beginning) {
    while (*beginning != '\0' && upperCase(*text) == upperCase(*beginning)) {
        text++;
        beginning++;
    }
    return *beginning == '\0';
}

void stripChar(char* text, char c) {
    char* kept = text;
    for (; *text != '\0'; text++) {
        if (*text != c) {
            *kept++ = *text;
        }
    }
    *kept = '\0';
}

void cutAfterLastBackslash(char* text) {
    char* lastBackslash = strrchr(text, '\\');
    *(lastBackslash == nullptr ? text : lastBackslash + 1) = '\0';
}

static bool isDigitOf(char c, int base) {
    bool decimal = c >= '0' && c <= '9';
    bool hexadecimal = upperCase(c) >= 'A' && upperCase(c) <= 'F';
    return decimal || (base == 16 && hexadecimal);
}

bool readUnsigned(const char* text, int base, uint32_t* value) {
    text += strspn(text, " \t\n\v\f\r");
    bool negative = *text == '-';
    if (*text == '-' || *text == '+') {
        text++;
    }
    if (!isDigitOf(*text, base)) {
        return false;
    }
    // The sign is skipped and a digit follows, so strtoull finds neither a second sign nor blanks.
    unsigned long long wide = strtoull(text, nullptr, base);
    if (wide > UINT32_MAX) {
        *value = UINT32_MAX;
    } else {
        *value = static_cast<uint32_t>(negative ? 0 - wide : wide);
    }
    return true;
}

uint32_t parseUnsigned(const char* text, int base) {
    uint32_t value = 0;
    readUnsigned(text, base, &value);
    return value;
}
