// An EventSource is the system's own handle under the name of the seam.
#include <windows.h>

#include "platform/platform.h"

static HANDLE handleOf(EventSource* source) {
    return reinterpret_cast<HANDLE>(source);
}

EventSource* registerEventSource(const char* name) {
    return reinterpret_cast<EventSource*>(RegisterEventSourceA(nullptr, name));
}

int reportEvent(EventSource* source, EventType type, uint32_t event, const char* const* strings, size_t count) {
    const WORD category = 0;
    BOOL reported = ReportEventA(handleOf(source), static_cast<WORD>(type), category, event, nullptr,
                                 static_cast<WORD>(count), 0, const_cast<const char**>(strings), nullptr);
    return reported ? 0 : 1;
}

void deregisterEventSource(EventSource* source) {
    DeregisterEventSource(handleOf(source));
}
