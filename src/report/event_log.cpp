#include "report/event_log.h"

#include <cstring>

#include "base/text.h"
#include "output/output.h"
#include "platform/platform.h"

static constexpr char SOURCE_NAME[] = "Velmar Tarnlift";
static constexpr char SOURCE_KEY[] = "SYSTEM\\CurrentControlSet\\Services\\Eventlog\\Application\\Velmar Tarnlift";
static constexpr char MESSAGE_FILE_NAME[] = "VlmHbCfgSvcMsg.dll";
static constexpr char IMAGE_KIND[] = "firmware";
static constexpr char SECURE_NOTE[] = "Secure Firmware is disabled.";
static constexpr uint32_t ALL_EVENT_TYPES = 7;  // error, warning and information

static constexpr size_t STATUS_TEXT_SIZE = 8;
static constexpr size_t REASON_TEXT_SIZE = 128;
static constexpr size_t PROGRAM_PATH_SIZE = 256;
static constexpr size_t MESSAGE_FILE_SIZE = 320;

// The texts that an event can carry.
enum EventText { TEXT_END, TEXT_KIND, TEXT_VERSION, TEXT_WWN, TEXT_FILE, TEXT_STATUS, TEXT_REASON, TEXT_COUNT };
static constexpr size_t MOST_STRINGS = 8;

struct EventForm {
    EventType type;
    uint32_t event;
    uint32_t eventWithNote;         // the event's number when the note on secure firmware is its last text
    EventText order[MOST_STRINGS];  // ended by TEXT_END; the note, if any, follows
};

static constexpr EventForm noImageForm = {
    .type = EVENT_TYPE_ERROR,
    .event = 0xC0000A09,
    .eventWithNote = 0xC0000A10,
    .order = {TEXT_VERSION, TEXT_WWN, TEXT_STATUS, TEXT_REASON},
};
static constexpr EventForm imageFileForm = {
    .type = EVENT_TYPE_ERROR,
    .event = 0xC0000A12,
    .eventWithNote = 0xC0000A13,
    .order = {TEXT_VERSION, TEXT_WWN, TEXT_FILE, TEXT_STATUS, TEXT_REASON},
};
static constexpr EventForm noCompatibleImageForm = {
    .type = EVENT_TYPE_INFORMATION,
    .event = 0x40000A15,
    .eventWithNote = 0x40000A16,
    .order = {TEXT_KIND, TEXT_VERSION, TEXT_WWN, TEXT_STATUS, TEXT_REASON},
};
static constexpr EventForm notRequiredForm = {
    .type = EVENT_TYPE_INFORMATION,
    .event = 0x40000A07,
    .eventWithNote = 0x40000A08,
    .order = {TEXT_KIND, TEXT_VERSION, TEXT_WWN, TEXT_KIND, TEXT_FILE, TEXT_STATUS, TEXT_REASON},
};

struct EventFacts {
    const char* portWwn;
    const char* version;
    const char* fileName;
    const char* reason;
    uint32_t status;
    uint8_t sfjByte;
};

static const char* withoutDirectory(const char* fileName) {
    const char* lastBackslash = strrchr(fileName, '\\');
    return lastBackslash == nullptr ? fileName : lastBackslash + 1;
}

static void sendEvent(EventType type, uint32_t event, const char* const* strings, size_t count) {
    EventSource* source = registerEventSource(SOURCE_NAME);
    if (source != nullptr) {
        reportEvent(source, type, event, strings, count);
        deregisterEventSource(source);
    }
}

static void reportByForm(const EventForm& form, const EventFacts& facts) {
    char status[STATUS_TEXT_SIZE];
    char reason[REASON_TEXT_SIZE];
    formatText(status, sizeof status, "%d", facts.status);
    copyText(reason, sizeof reason, facts.reason);
    const char* texts[TEXT_COUNT] = {};
    texts[TEXT_KIND] = IMAGE_KIND;
    texts[TEXT_VERSION] = facts.version;
    texts[TEXT_WWN] = facts.portWwn;
    texts[TEXT_FILE] = withoutDirectory(facts.fileName);
    texts[TEXT_STATUS] = status;
    texts[TEXT_REASON] = reason;

    const char* strings[MOST_STRINGS];
    size_t count = 0;
    while (form.order[count] != TEXT_END) {
        strings[count] = texts[form.order[count]];
        count++;
    }
    bool hasNote = facts.sfjByte == 0;
    if (hasNote) {
        strings[count++] = SECURE_NOTE;
    }
    sendEvent(form.type, hasNote ? form.eventWithNote : form.event, strings, count);
}

void reportNoImageEvent(const char* portWwn, const char* version, const char* reason, uint32_t status,
                        uint8_t sfjByte) {
    reportByForm(noImageForm, {portWwn, version, "", reason, status, sfjByte});
}

void reportImageFileEvent(const char* portWwn, const char* version, const char* fileName, const char* reason,
                          uint32_t status, uint8_t sfjByte) {
    reportByForm(imageFileForm, {portWwn, version, fileName, reason, status, sfjByte});
}

void reportNoCompatibleImageEvent(const char* portWwn, const char* version, const char* reason, uint32_t status,
                                  uint8_t sfjByte) {
    reportByForm(noCompatibleImageForm, {portWwn, version, "", reason, status, sfjByte});
}

void reportNotRequiredEvent(const char* portWwn, const char* fileName, const char* version, const char* reason,
                            uint32_t status, uint8_t sfjByte) {
    reportByForm(notRequiredForm, {portWwn, version, fileName, reason, status, sfjByte});
}

uint8_t sfjLowByte(const HbaRecord* hba) {
    return static_cast<uint8_t>(hba->sfj & 0xFF);
}

static void traceFailure(const char* valueName) {
    printDbg("Error creating \"%s\" key in Registry.\n", valueName);
}

static void writeSourceKey(const char* messageFile) {
    static constexpr char MESSAGE_FILE_VALUE[] = "EventMessageFile";
    static constexpr char TYPES_VALUE[] = "Types Supported";
    RegistryKey* key = createRegistryKey(SOURCE_KEY, REGISTRY_ALL);
    if (key == nullptr) {
        traceFailure(SOURCE_NAME);
    }
    printDbg("DLL path = %s\n", messageFile);
    if (setRegistryText(key, MESSAGE_FILE_VALUE, messageFile) != 0) {
        traceFailure(MESSAGE_FILE_VALUE);
    }
    if (setRegistryNumber(key, TYPES_VALUE, ALL_EVENT_TYPES) != 0) {
        traceFailure(TYPES_VALUE);
    }
    if (closeRegistryKey(key) != 0) {
        printDbg("Error closing key.\n");
    }
}

int createTarnliftRegKey(const char* programPath) {
    char directory[PROGRAM_PATH_SIZE];
    char messageFile[MESSAGE_FILE_SIZE];
    printDbg("\n[createTarnliftRegKey]\n");
    if (fullPath(programPath, directory, sizeof directory) == 0) {
        copyText(directory, sizeof directory, programPath);
    }
    printDbg("Full path to exe = %s\n", directory);
    cutAfterLastBackslash(directory);
    printDbg("Dir path to exe = %s\n", directory);
    // The directory keeps its backslash, so the value has two; Windows treats them as one.
    formatText(messageFile, sizeof messageFile, "%s\\%s", directory, MESSAGE_FILE_NAME);
    writeSourceKey(messageFile);
    printDbg("Created \"%s\" key in Registry.\n", SOURCE_NAME);
    return 0;
}
