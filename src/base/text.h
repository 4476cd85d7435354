// Text in fixed buffers: the one bounded format, copy and append, the one comparison without case, and numbers.
#pragma once

#include <cstddef>
#include <cstdint>

#define PRINTF_LIKE(formatIndex, firstArgument) __attribute__((format(printf, formatIndex, firstArgument)))

// Formats into `out`, cutting what does not fit. Returns 1 when the whole text fitted, 0 when it was cut.
int formatText(char* out, size_t size, const char* format, ...) PRINTF_LIKE(3, 4);

// Formats behind the text in `out`, cutting what does not fit.
void appendFormat(char* out, size_t size, const char* format, ...) PRINTF_LIKE(3, 4);

// Copies `text` into `out`, cutting what does not fit.
void copyText(char* out, size_t size, const char* text);

// Copies the `length` bytes at `text` into `out`, cutting what does not fit.
void copyPiece(char* out, size_t size, const char* text, size_t length);

// Puts `text` behind the text in `out`, cutting what does not fit.
void appendText(char* out, size_t size, const char* text);

// Only the ASCII letters fold; every other byte stands for itself.
char upperCase(char c);
void upperCaseInPlace(char* text);
bool equalsIgnoringCase(const char* a, const char* b);
bool beginsIgnoringCase(const char* text, const char* beginning);

// Removes every `c` from `text`, in place.
void stripChar(char* text, char c);

// Ends `text` right behind its last backslash; a text without one becomes empty.
void cutBehindLastBackslash(char* text);

// Reads an unsigned number as a 32-bit unsigned long is read: leading white space and one sign are taken, a minus
// negates in 32 bits, what does not fit gives 4294967295, and reading stops at the first character that does not
// belong. Returns 1 and sets `value` when there was a digit, else 0. `base` is 10 or 16.
int readUnsigned(const char* text, int base, uint32_t* value);

// The same with 0 for a text without a number.
uint32_t unsignedOf(const char* text, int base);
