// UTF-8 for the two formats that promise it: the XML report and the JSON events.
#pragma once

#include <cstddef>

// The length of the well-formed UTF-8 sequence at the start of `text`, 1 to 4; 0 if there is none, or at the end.
size_t utf8SequenceLength(const char* text);
