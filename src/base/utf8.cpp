#include "base/utf8.h"

// One row for each form of a sequence: the ranges of its first and second byte, and its length. Every further byte is 80
// to BF. The narrow second ranges exclude overlong forms, surrogates and characters above U+10FFFF.
struct Utf8Form {
    unsigned char firstLow, firstHigh;
    unsigned char secondLow, secondHigh;
    size_t length;
};

static constexpr Utf8Form utf8Forms[] = {
    {0x01, 0x7F, 0x00, 0x00, 1}, {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

static bool hasForm(const unsigned char* text, const Utf8Form& form) {
    if (text[0] < form.firstLow || text[0] > form.firstHigh) {
        return false;
    }
    if (form.length > 1 && (text[1] < form.secondLow || text[1] > form.secondHigh)) {
        return false;
    }
    for (size_t i = 2; i < form.length; i++) {
        if (text[i] < 0x80 || text[i] > 0xBF) {
            return false;
        }
    }
    return true;
}

size_t utf8SequenceLength(const char* text) {
    for (const Utf8Form& form : utf8Forms) {
        if (hasForm(reinterpret_cast<const unsigned char*>(text), form)) {
            return form.length;
        }
    }
    return 0;
}
