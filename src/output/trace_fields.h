// The lines "label : value" of the dumps in dbg.log, all with the label padded to the same width.
#pragma once

#include <cstdint>

void traceText(const char* label, const char* value);
void traceNumber(const char* label, int64_t value);  // shown as a signed number of 32 bits
void traceHex(const char* label, uint32_t value);
void traceId(const char* label, uint32_t value);  // hexadecimal, at least four digits
void traceNamedNumber(const char* label, uint32_t value, const char* name);
