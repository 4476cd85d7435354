// The Application event log as a file of one JSON object a line.
#include <cstdlib>
#include <cstring>

#include "base/text.h"
#include "base/utf8.h"
#include "platform/linux/native_path.h"
#include "platform/platform.h"

struct EventSource {
    FILE* log;
    const char* name;  // not owned
};

EventSource* registerEventSource(const char* name) {
    char host[NATIVE_PATH_SIZE];
    char path[NATIVE_PATH_SIZE];
    EventSource* source = static_cast<EventSource*>(malloc(sizeof(EventSource)));
    if (source == nullptr || !hostPath("", host) || !hostPath("eventlog.jsonl", path)) {
        free(source);
        return nullptr;
    }
    makeDirectories(host);
    *source = {.log = fopen(path, "ae"), .name = name};
    if (source->log == nullptr) {
        free(source);
        return nullptr;
    }
    return source;
}

static void writeJsonText(FILE* log, const char* text) {
    fputc('"', log);
    while (*text != '\0') {
        size_t length = utf8SequenceLength(text);
        unsigned char c = static_cast<unsigned char>(*text);
        if (length == 0) {
            fputs("\\ufffd", log);
            length = 1;
        } else if (c < 0x20) {
            fprintf(log, "\\u%04x", c);
        } else {
            if (c == '"' || c == '\\') {
                fputc('\\', log);
            }
            fwrite(text, 1, length, log);
        }
        text += length;
    }
    fputc('"', log);
}

int reportEvent(EventSource* source, EventType type, uint32_t event, const char* const* strings, size_t count) {
    FILE* log = source->log;
    fputs("{\"source\": ", log);
    writeJsonText(log, source->name);
    fprintf(log, ", \"type\": %d, \"category\": 0, \"id\": \"0x%08X\", \"strings\": [", type, event);
    for (size_t i = 0; i < count; i++) {
        fputs(i == 0 ? "" : ", ", log);
        writeJsonText(log, strings[i]);
    }
    fputs("]}\n", log);
    return fflush(log);
}

void deregisterEventSource(EventSource* source) {
    fclose(source->log);
    free(source);
}
