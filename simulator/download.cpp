#include "download.h"

#include <cstdio>

#include "grp_format.h"
#include "host_system.h"
#include "text.h"

namespace simulator {

namespace {

// Readers of the reply look for this text to find a success. No other reply may hold it, so none quotes the image's
// path.
constexpr std::string_view SUCCESS_TEXT = "NO Error";

// How the utility answers when nothing is scripted.
struct Outcome {
    uint32_t exitStatus;
    std::string_view reply;
};

constexpr Outcome downloaded = {0, SUCCESS_TEXT};
constexpr Outcome unknownPort = {1, "Error: there is no port of this number."};
constexpr Outcome otherFamily = {70, "Error 70: the image is made for adapters of another family."};
constexpr Outcome unreadableImage = {105, "Error 105: the image cannot be read."};
constexpr Outcome unknownHeader = {106, "Error 106: the image has no known header."};
constexpr Outcome shortImage = {107, "Error 107: the image is shorter than its header."};

constexpr uint32_t REBOOT_STATUS = 80;  // the firmware becomes active by a reboot
constexpr std::string_view PENDING_KEY = "Change Status";

}  // namespace

// Null when the header has been read, else the answer to an image without one.
static const Outcome* readImageHeader(const std::string& path, GrpHeader& header) {
    FILE* file = fopen(path.c_str(), "rb");
    if (file == nullptr) {
        return &unreadableImage;
    }
    unsigned char bytes[GRP_HEADER_SIZE];
    size_t got = fread(bytes, 1, sizeof bytes, file);
    bool broken = ferror(file) != 0;
    fclose(file);
    if (broken) {
        return &unreadableImage;
    }
    if (got < sizeof bytes) {
        return &shortImage;
    }
    decodeGrpHeader(bytes, header);
    return nullptr;
}

// The version is set whenever the image has a sound header, also when it is made for another family.
static const Outcome& checkImage(const std::string& path, const Port& port, std::optional<std::string>& version) {
    GrpHeader header;
    if (const Outcome* failure = readImageHeader(path, header)) {
        return *failure;
    }
    const GrpFamily* family = findFamilyByHeader(header);
    std::optional<std::string> inHeader = versionOfHeader(header);
    if (family == nullptr || !inHeader) {
        return unknownHeader;
    }
    version = inHeader->empty() ? "0.0.0.0" : *inHeader;
    bool fits = readNumber(attributeValue(port, "Device ID"), 16, UINT32_MAX) == family->deviceId;
    return fits ? downloaded : otherFamily;
}

static void updateBoard(Machine& machine, const Port& updated, const std::string& version, bool rebootPending) {
    for (Port& port : machine.ports) {
        if (!onSameBoard(updated, port)) {
            continue;
        }
        setAttribute(machine, port, "FW Version", version);
        if (rebootPending) {
            setAttribute(machine, port, PENDING_KEY, "1");
        }
    }
}

static std::string composeReply(const Script& script, std::string reply, std::string_view lineEnd) {
    if (!reply.empty() && !script.noLineEnd) {
        reply += lineEnd;
    }
    return makeFiller(script.fill.value_or(0)) + reply + makeFiller(script.fillAfter.value_or(0));
}

void downloadImage(Machine& machine, uint32_t portNumber, const std::string& imagePath, DownloadAnswer& answer) {
    Script& script = answer.script;
    Port* port = findPort(machine, portNumber);
    if (port != nullptr) {
        answer.changed = useDownloadScript(machine, *port, script);
    }
    sleepMilliseconds(script.delay.value_or(0));
    std::optional<std::string> version;
    const Outcome& outcome = port != nullptr ? checkImage(imagePath, *port, version) : unknownPort;
    std::string reply = script.reply.value_or(std::string(outcome.reply));
    if (script.version) {
        version = script.version;
    }
    answer.exitStatus = script.exitStatus.value_or(outcome.exitStatus);
    answer.output = composeReply(script, reply, machine.lineEnd);
    bool done = reply.find(SUCCESS_TEXT) != std::string::npos && !script.lie && !script.crash;
    if (!done || !version) {
        return;
    }
    updateBoard(machine, *port, *version, answer.exitStatus == REBOOT_STATUS);
    answer.changed = true;
}

size_t rebootMachine(Machine& machine) {
    size_t activated = 0;
    for (Port& port : machine.ports) {
        std::string_view pending = attributeValue(port, PENDING_KEY);
        if (pending.empty() || pending == "0") {
            continue;
        }
        setAttribute(machine, port, PENDING_KEY, "0");
        activated++;
    }
    return activated;
}

}  // namespace simulator
