#include "report/xml_report.h"

#include <cstring>

#include "base/text.h"
#include "base/utf8.h"
#include "output/output.h"
#include "records/fixed_words.h"
#include "records/port_outcome.h"
#include "settings/run_options.h"

// Room for the longest value of a record or image, each byte as the longest entity.
static constexpr size_t LONGEST_VALUE = 80;
static constexpr size_t LONGEST_ENTITY = 6;
static constexpr char REPLACEMENT[] = "?";  // for a byte that XML cannot hold

struct SafeText {
    char text[LONGEST_VALUE * LONGEST_ENTITY];
};

static const char* entityOf(char c) {
    switch (c) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    default:
        return nullptr;
    }
}

// The length of the character at `text`, 0 when an XML document cannot hold its first byte.
static size_t xmlCharacterLength(const char* text) {
    unsigned char c = static_cast<unsigned char>(*text);
    if (c < 0x20 && c != '\t' && c != '\n' && c != '\r') {
        return 0;
    }
    size_t length = utf8SequenceLength(text);
    bool noncharacter = length == 3 && (memcmp(text, "\xEF\xBF\xBE", 3) == 0 || memcmp(text, "\xEF\xBF\xBF", 3) == 0);
    return noncharacter ? 0 : length;
}

// Makes a value from outside safe for an attribute.
static SafeText safeText(const char* value) {
    SafeText safe = {};
    size_t used = 0;
    while (*value != '\0') {
        size_t length = xmlCharacterLength(value);
        const char* entity = length == 0 ? REPLACEMENT : entityOf(*value);
        if (entity != nullptr) {
            copyText(safe.text + used, sizeof safe.text - used, entity);
        } else {
            copyPrefix(safe.text + used, sizeof safe.text - used, value, length);
        }
        used += strlen(safe.text + used);
        value += length == 0 ? 1 : length;
    }
    return safe;
}

static constexpr int INDENT_WIDTH = 4;

void xmlIndent(int level) {
    printOut("%*s", level * INDENT_WIDTH, "");
}

void xmlOpenTag(const char* name, int level) {
    printOut("%*s<%s ", level * INDENT_WIDTH, "", name);
}

void xmlCloseTag(const char* name, int level) {
    printOut("%*s</%s>\n", level * INDENT_WIDTH, "", name);
}

void xmlWriteProlog() {
    printOut("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
}

void xmlWriteRootOpen(const char* name) {
    xmlOpenTag(name, 0);
    printOut("lang=\"en\">\n");
}

void xmlWriteRootClose(const char* name) {
    xmlCloseTag(name, 0);
}

void xmlWriteDeviceOpen(const HbaRecord* hba) {
    xmlOpenTag("Device", 1);
    printOut("hba=\"%s\" portType=\"%s\" venId=\"%04X\" devId=\"%04X\" subDevId=\"%04X\" subVenId=\"%04X\" "
             "bus=\"%X\" device=\"%X\" function=\"%X\" wwpn=\"%s\">\n",
             safeText(hba->model).text, safeText(hba->portType).text, hba->vendorId, hba->deviceId, hba->subDeviceId,
             hba->subVendorId, hba->busNumber, hba->devNumber, hba->funNumber, safeText(hba->portWwn).text);
}

void xmlWriteDeviceInventory(const HbaRecord* hba) {
    xmlWriteDeviceOpen(hba);
    xmlWriteApplicationRows(hba);
    xmlCloseTag("Device", 1);
}

void xmlWriteApplicationRows(const HbaRecord* hba) {
    xmlOpenTag("Application", 2);
    printOut("componentType=\"firmware\" version=\"%s\"/>\n", safeText(hba->fwVersion).text);
    xmlOpenTag("Application", 2);
    printOut("componentType=\"bootCode\" version=\"%s\" enabled=\"%d\"/>\n", safeText(hba->bcVersion).text,
             hba->bootEnabled);
}

void xmlWriteApplicationOpen(const HbaRecord* hba) {
    xmlOpenTag("Application", 2);
    printOut("componentType=\"firmware\" version=\"%s\">\n", safeText(hba->fwVersion).text);
}

void xmlWriteSupportedImage(const char* version, const char* file) {
    xmlOpenTag("SupportedImage", 3);
    printOut("file=\"%s\" version=\"%s\"/>\n", safeText(file).text, safeText(version).text);
}

void xmlWriteVersionChange(const char* update, const char* currentVersion, const char* newVersion, uint32_t status) {
    xmlOpenTag("VersionChange", 3);
    printOut("update=\"%s\" currentVersion=\"%s\" newVersion=\"%s\"/>\n", update, safeText(currentVersion).text,
             safeText(newVersion).text);
    xmlOpenTag("DownloadStatus", 3);
    printOut("status=\"%d\" message=\"%s\"/>\n", status, DownloadStatusMessages[status]);
}

void xmlWriteNoImageApplication(const HbaRecord* hba) {
    if (isDownloadRun()) {
        xmlWriteApplicationOpen(hba);
        xmlWriteSupportedImage(WORD_NONE, WORD_NONE);
        xmlWriteVersionChange("false", hba->fwVersion, WORD_NONE, hba->fwDownloadStatus);
        xmlCloseTag("Application", 2);
    }
}

void xmlWriteMessage(ReturnCode code, const char* sentence, uint16_t twiceCount) {
    xmlOpenTag("Message", 1);
    printOut("id=\"%d\"> %s. ", code, sentence);
    if (twiceCount != 0) {
        printOut("%d adapter%s include a special firmware release that requires the firmware download process to be "
                 "performed twice. Reboot the system and run tarnlift again using the /f or /rewrite option to "
                 "download the same firmware file again. ",
                 twiceCount, twiceCount > 1 ? "s" : "");
    }
    xmlCloseTag("Message", 0);
}

void xmlWriteRebootRequired(int flag, int level) {
    xmlIndent(level);
    printOut("<RebootRequired>%d</RebootRequired>\n", flag);
}
