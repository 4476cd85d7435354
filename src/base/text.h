// Text in fixed buffers: the one bounded format, copy and append, the one comparison without case, and numbers.
#pragma once

#include <cstddef>
#include <cstdint>

#define PRINTF_LIKE(formatIndex, firstArgument) __attribute__((format(printf, formatIndex, firstArgument)))

// All of them cut a text that does not fit into `size` bytes, and end it with a NUL.

// Formats into `out`. Returns true when the whole text fitted.
bool formatText(char* out, size_t size, const char* format, ...) PRINTF_LIKE(3, 4);

// Formats and appends to the text in `out`.
void appendFormat(char* out, size_t size, const char* format, ...) PRINTF_LIKE(3, 4);

// Copies `text` into `out`.
void copyText(char* out, size_t size, const char* text);

// Copies the first `length` bytes of `text` into `out`.
void copyPrefix(char* out, size_t size, const char* text, size_t length);

// Appends `text` to the text in `out`.
void appendText(char* out, size_t size, const char* text);

// Only the ASCII letters have two cases here.
char upperCase(char c);
void upperCaseInPlace(char* text);
bool equalsIgnoringCase(const char* a, const char* b);
bool beginsIgnoringCase(const char* text, const char* beginning);

// Removes every `c` from `text`, in place.
void stripChar(char* text, char c);

// Ends `text` after its last backslash; a text without one becomes empty.
void cutAfterLastBackslash(char* text);

// Reads an unsigned number as a 32-bit unsigned long is read: leading white space and one sign are accepted, a minus
// negates in 32 bits, a number that does not fit becomes 4294967295, and reading stops at the first character that is
// no digit. Returns true and sets `value` if there is a digit. `base` is 10 or 16.
bool readUnsigned(const char* text, int base, uint32_t* value);

// The same; 0 for a text without a number.
uint32_t parseUnsigned(const char* text, int base);
