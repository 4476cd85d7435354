// UTF-8, as far as the two formats that promise it (XML report, JSON events) need it.
#pragma once

#include <cstddef>

// The length of the well-formed UTF-8 sequence at the start of `text`, 1 to 4; 0 when there is none, and for the end.
size_t utf8SequenceLength(const char* text);
