#include <algorithm>

#include "report.h"
#include "report_elements.h"
#include "settings/return_codes.h"
#include "text.h"

using namespace fleet;

namespace {

constexpr std::string_view PROLOG = R"(<?xml version="1.0" encoding="UTF-8"?>)";
constexpr std::string_view ROOT_ENDS[] = {"</Execution>", "</Inventory>"};
constexpr size_t LONGEST_QUOTE = 120;

}  // namespace

// Finds the return code in the program's last words, such as "tarnlift.exe: Error - MESSAGE - Return Code=5".
static bool readEndingLine(std::string_view line, Report& report) {
    constexpr std::string_view start = "Error - ";
    constexpr std::string_view label = " - Return Code=";
    const size_t place = line.rfind(label);
    if (place == std::string_view::npos) {
        return false;
    }
    const auto code = readNumber(line.substr(place + label.size()), 0, RETURN_IMAGE_VERSION);
    if (code) {
        report.returnCode = static_cast<int>(*code);
        const size_t message = std::min(line.find(start), line.size() - start.size()) + start.size();
        report.ending = message < place ? shownText(line.substr(message, place - message)) : "";
    }
    return code.has_value();
}

// Text that is no document: what the program prints when it ends early, its help, or the output of something else.
static Report readPlainText(std::string_view text) {
    Report report;
    std::string_view firstLine;
    while (!text.empty()) {
        const std::string_view line = trimmed(takeLine(text));
        firstLine = firstLine.empty() ? line : firstLine;
        if (readEndingLine(line, report)) {
            break;
        }
    }
    if (report.returnCode == RETURN_NO_ADAPTERS) {
        report.kind = ReportKind::NO_ADAPTERS;
    }
    report.fault = firstLine.empty() ? "is empty" : "is plain text: " + cutText(shownText(firstLine), LONGEST_QUOTE);
    return report;
}

static bool isCutOff(std::string_view text) {
    return std::none_of(std::begin(ROOT_ENDS), std::end(ROOT_ENDS),
                        [&](std::string_view end) { return text.rfind(end) != std::string_view::npos; });
}

static Report withoutDocument(std::string_view fault) {
    Report report;
    report.fault = fault;
    return report;
}

static Report readDocument(std::string_view text) {
    if (text.find(PROLOG, 1) != std::string_view::npos) {
        return withoutDocument("holds several documents, as a /log= file can");
    }
    if (isCutOff(text)) {
        return withoutDocument("is cut off");
    }
    Report report;
    return readElements(text, report) ? report : withoutDocument("is not as tarnlift.exe writes it");
}

Report fleet::readReport(const FileContent& content) {
    if (!content.fault.empty()) {
        return withoutDocument(content.fault);
    }
    const std::string_view text = content.bytes;
    if (text.starts_with(PROLOG)) {
        return readDocument(text);
    }
    if (text.find(PROLOG) != std::string_view::npos) {
        return withoutDocument("begins with other text, as /v prints it");
    }
    return readPlainText(text);
}

std::optional<int> fleet::readReturnCode(std::string_view text) {
    const auto number = readNumber(trimmed(text), INT32_MIN, UINT32_MAX);
    return number ? std::optional(static_cast<int>(static_cast<uint32_t>(*number))) : std::nullopt;
}
