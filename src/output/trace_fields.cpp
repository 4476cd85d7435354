#include "output/trace_fields.h"

#include "output/output.h"

#define LABEL "%-20s : "

void traceText(const char* label, const char* value) {
    printDbg(LABEL "%s\n", label, value);
}

void traceNumber(const char* label, int64_t value) {
    printDbg(LABEL "%d\n", label, static_cast<int32_t>(value));
}

void traceHex(const char* label, uint32_t value) {
    printDbg(LABEL "%X\n", label, value);
}

void traceId(const char* label, uint32_t value) {
    printDbg(LABEL "%04X\n", label, value);
}

void traceNamedNumber(const char* label, uint32_t value, const char* name) {
    printDbg(LABEL "%d (%s)\n", label, value, name);
}
