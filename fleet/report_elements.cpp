#include "report_elements.h"

#include <span>

#include "records/port_outcome.h"
#include "settings/return_codes.h"
#include "text.h"
#include "xml_reader.h"

using namespace fleet;

namespace {

constexpr std::string_view NO_IMAGE = "NONE";
constexpr size_t LONGEST_VALUE = 512;  // longer than any value of a report

enum Element : int {
    DOCUMENT = -1,
    EXECUTION,
    RUN_DEVICE,
    RUN_FIRMWARE,
    IMAGE,
    CHANGE,
    STATUS,
    RUN_MESSAGE,
    REBOOT,
    INVENTORY,
    QUERY_DEVICE,
    QUERY_FIRMWARE,
    QUERY_BOOT_CODE,
    QUERY_MESSAGE,
};

// The values of an element's attributes in the order of its row.
using Values = std::span<const std::string>;

// One element that a report has, and how it is read. A reader returns false for a value that no report has.
struct ElementRow {
    Element element;
    std::string_view name;
    Element parent;
    bool repeats;  // can come more than once in its parent
    std::span<const std::string_view> attributes;
    bool (*read)(Values values, Report& report);
    bool (*readText)(const std::string& text, Report& report);  // null: only blanks are allowed
};

// Takes the elements of a document and fills a report from those that fit.
class ReportVisitor : public XmlVisitor {
public:
    explicit ReportVisitor(Report& result) : report(result) {
    }

    bool startElement(std::string_view name, const XmlAttributes& attributes) override;
    bool endElement() override;
    bool text(std::string_view piece) override;

private:
    // An element that is open.
    struct Level {
        const ElementRow* row;
        unsigned children;  // one bit for each Element that it has had
    };

    bool enter(const ElementRow& row, Values values);

    Report& report;
    std::vector<Level> levels;
    std::string content;  // the text of the innermost element
};

}  // namespace

static std::string imageText(const std::string& value) {
    return value == NO_IMAGE ? "" : value;
}

static bool readNothing(Values /*values*/, Report& /*report*/) {
    return true;
}

static bool readDevice(Values values, Report& report) {
    ReportedPort& port = report.ports.emplace_back();
    port.model = values[0];
    port.wwn = values[9];
    port.pci = values[6] + ":" + values[7] + "." + values[8];
    return true;
}

static bool readFirmware(Values values, Report& report) {
    report.ports.back().firmware = values[1];
    return values[0] == "firmware";
}

static bool readBootCode(Values values, Report& report) {
    report.ports.back().bootCode = values[1];
    return values[0] == "bootCode";
}

static bool readImage(Values values, Report& report) {
    report.ports.back().file = imageText(values[0]);
    report.ports.back().image = imageText(values[1]);
    return true;
}

// The status says the same, and more.
static bool readChange(Values values, Report& /*report*/) {
    return values[0] == "true" || values[0] == "false";
}

static bool readStatus(Values values, Report& report) {
    const auto status = readNumber(values[0], 0, OUTCOME_COUNT - 1);
    report.ports.back().status = static_cast<int>(status.value_or(0));
    report.ports.back().message = values[1];
    return status.has_value() && !values[1].empty();
}

static bool readMessage(Values values, Report& report) {
    const auto code = readNumber(values[0], 0, RETURN_IMAGE_VERSION);
    report.returnCode = static_cast<int>(code.value_or(0));
    return code.has_value();
}

static bool readSentence(const std::string& /*text*/, Report& /*report*/) {
    return true;
}

static bool readReboot(const std::string& text, Report& report) {
    report.rebootRequired = text == "1";
    return text == "0" || text == "1";
}

static constexpr std::string_view rootAttributes[] = {"lang"};
static constexpr std::string_view deviceAttributes[] = {"hba",      "portType", "venId",  "devId",    "subDevId",
                                                        "subVenId", "bus",      "device", "function", "wwpn"};
static constexpr std::string_view firmwareAttributes[] = {"componentType", "version"};
static constexpr std::string_view bootCodeAttributes[] = {"componentType", "version", "enabled"};
static constexpr std::string_view imageAttributes[] = {"file", "version"};
static constexpr std::string_view changeAttributes[] = {"update", "currentVersion", "newVersion"};
static constexpr std::string_view statusAttributes[] = {"status", "message"};
static constexpr std::string_view messageAttributes[] = {"id"};

static constexpr ElementRow elementRows[] = {
    {EXECUTION, "Execution", DOCUMENT, false, rootAttributes, readNothing, nullptr},
    {RUN_DEVICE, "Device", EXECUTION, true, deviceAttributes, readDevice, nullptr},
    {RUN_FIRMWARE, "Application", RUN_DEVICE, false, firmwareAttributes, readFirmware, nullptr},
    {IMAGE, "SupportedImage", RUN_FIRMWARE, false, imageAttributes, readImage, nullptr},
    {CHANGE, "VersionChange", RUN_FIRMWARE, false, changeAttributes, readChange, nullptr},
    {STATUS, "DownloadStatus", RUN_FIRMWARE, false, statusAttributes, readStatus, nullptr},
    {RUN_MESSAGE, "Message", EXECUTION, false, messageAttributes, readMessage, readSentence},
    {REBOOT, "RebootRequired", EXECUTION, false, {}, readNothing, readReboot},
    {INVENTORY, "Inventory", DOCUMENT, false, rootAttributes, readNothing, nullptr},
    {QUERY_DEVICE, "Device", INVENTORY, true, deviceAttributes, readDevice, nullptr},
    {QUERY_FIRMWARE, "Application", QUERY_DEVICE, false, firmwareAttributes, readFirmware, nullptr},
    {QUERY_BOOT_CODE, "Application", QUERY_DEVICE, false, bootCodeAttributes, readBootCode, nullptr},
    {QUERY_MESSAGE, "Message", INVENTORY, false, messageAttributes, readMessage, readSentence},
};

// A bit for each element that the parent must have, which is each that it can have.
static unsigned childrenOf(Element parent) {
    unsigned children = 0;
    for (const ElementRow& row : elementRows) {
        children |= row.parent == parent ? 1U << row.element : 0;
    }
    return children;
}

// The values; none when the attributes are not those of the row, in its order.
static std::optional<std::vector<std::string>> valuesFor(const ElementRow& row, const XmlAttributes& attributes) {
    if (attributes.size() != row.attributes.size()) {
        return std::nullopt;
    }
    std::vector<std::string> values;
    values.reserve(attributes.size());
    for (size_t i = 0; i < attributes.size(); i++) {
        const auto& [name, value] = attributes[i];
        if (name != row.attributes[i] || value.size() > LONGEST_VALUE) {
            return std::nullopt;
        }
        values.push_back(shownText(value));
    }
    return values;
}

bool ReportVisitor::startElement(std::string_view name, const XmlAttributes& attributes) {
    const Element parent = levels.empty() ? DOCUMENT : levels.back().row->element;
    for (const ElementRow& row : elementRows) {
        if (row.name == name && row.parent == parent) {
            if (const auto values = valuesFor(row, attributes)) {
                return enter(row, *values);
            }
        }
    }
    return false;
}

bool ReportVisitor::enter(const ElementRow& row, Values values) {
    if (!levels.empty()) {
        const unsigned bit = 1U << row.element;
        if (!row.repeats && (levels.back().children & bit) != 0) {
            return false;
        }
        levels.back().children |= bit;
    } else {
        report.kind = row.element == EXECUTION ? ReportKind::EXECUTION : ReportKind::INVENTORY;
    }
    levels.push_back({&row, 0});
    content.clear();
    return row.read(values, report);
}

bool ReportVisitor::endElement() {
    const Level level = levels.back();
    levels.pop_back();
    return level.children == childrenOf(level.row->element) &&
           (level.row->readText == nullptr || level.row->readText(content, report));
}

bool ReportVisitor::text(std::string_view piece) {
    if (trimmed(piece).empty()) {
        return true;
    }
    const bool allowed = !levels.empty() && levels.back().row->readText != nullptr;
    content += piece;
    return allowed && content.size() <= LONGEST_VALUE;
}

bool fleet::readElements(std::string_view document, Report& report) {
    ReportVisitor visitor(report);
    return readXml(document, visitor);
}
