#include "judgement.h"

#include <algorithm>

#include "port_judgement.h"
#include "settings/return_codes.h"

using namespace fleet;

namespace {

// What a return code alone says of the server. A code of 0 or 1 says nothing without a report.
struct CodeRow {
    int code;
    State state;
    const char* meaning;
};

constexpr CodeRow codeRows[] = {
    {RETURN_ALL_FAILED, State::FAILED, "all failed, or the switches do not go together, or there is no fwmatrix.txt"},
    {RETURN_SOME_FAILED, State::FAILED, "some downloads or queries failed"},
    {RETURN_COMMAND_LINE, State::FAILED, "a bad switch, or the program's directory was not found"},
    {RETURN_NO_ADAPTERS, State::NO_ADAPTERS, "no supported adapters"},
    {RETURN_NO_FIRMWARE_DIRECTORY, State::FAILED, "no firmware directory"},
    {RETURN_NO_COMPATIBLE_FIRMWARE, State::SKIPPED, "no usable image for any port"},
    {RETURN_NO_PRIVILEGES, State::FAILED, "not enough rights"},
    {RETURN_OLD_SYSTEM, State::FAILED, "the system is too old"},
    {RETURN_IMAGE_VERSION, State::FAILED, "not a firmware file, or its version cannot be read"},
};

constexpr char UNKNOWN_CODE[] = "tarnlift.exe crashed, was ended, or was not started";

constexpr size_t MOST_REASONS = 20;  // of one server; its ports have theirs

}  // namespace

static const CodeRow* findCode(int code) {
    const auto* row =
        std::find_if(std::begin(codeRows), std::end(codeRows), [&](const CodeRow& r) { return r.code == code; });
    return row == std::end(codeRows) ? nullptr : row;
}

static std::string codeText(int code, std::string_view rest) {
    return std::string("return code ").append(std::to_string(code)).append(rest);
}

static std::optional<Verdict> judgeCode(int code, std::string_view message) {
    if (code == RETURN_SUCCEEDED || code == RETURN_NOT_REQUIRED) {
        return std::nullopt;
    }
    const CodeRow* row = findCode(code);
    const std::string_view meaning = row == nullptr ? UNKNOWN_CODE : row->meaning;
    return Verdict{row == nullptr ? State::FAILED : row->state,
                   codeText(code, ": " + std::string(message.empty() ? meaning : message))};
}

// A server without a document.
static void judgeMissingReport(const Evidence& evidence, const std::optional<int>& code,
                               std::vector<Verdict>& verdicts) {
    const std::string_view message = code == evidence.run.returnCode ? evidence.run.ending : std::string_view();
    const std::optional<Verdict> byCode = code ? judgeCode(*code, message) : std::nullopt;
    if (byCode) {
        verdicts.push_back(*byCode);
    }
    const bool saysNoAdapters = byCode && byCode->state == State::NO_ADAPTERS && !evidence.hasRun;
    if (evidence.run.kind == ReportKind::NO_ADAPTERS || saysNoAdapters) {
        return;
    }
    if (evidence.hasRun) {
        verdicts.push_back({State::NO_REPORT, "the report " + evidence.run.fault});
    } else if (!evidence.refusal.empty()) {
        verdicts.push_back({State::NO_REPORT, evidence.refusal});
    } else if (code) {
        verdicts.push_back({State::NO_REPORT, codeText(*code, ", but no report")});
    } else {
        verdicts.push_back({State::NO_REPORT, evidence.query ? "there is only a query" : "no report has come"});
    }
    if (!evidence.returnCodeFault.empty()) {
        verdicts.push_back({State::NO_REPORT, "the file of the return code " + evidence.returnCodeFault});
    }
}

static bool hasPort(const std::vector<PortResult>& ports, State state) {
    return std::any_of(ports.begin(), ports.end(), [&](const PortResult& port) { return port.state == state; });
}

// What the document says of the whole run, where its ports do not say it.
static void judgeDocument(const Evidence& evidence, const ServerResult& server, std::vector<Verdict>& verdicts) {
    if (const std::optional<Verdict> byCode = server.code ? judgeCode(*server.code, "") : std::nullopt) {
        const bool explained = byCode->state == State::FAILED && hasPort(server.ports, State::FAILED);
        if (!explained) {
            verdicts.push_back(*byCode);
        }
    }
    if (evidence.run.rebootRequired && !evidence.rebooted && !hasPort(server.ports, State::WAITING)) {
        verdicts.push_back({State::WAITING, "the report asks for a reboot"});
    }
}

static void addReason(ServerResult& server, State state, const std::string& reason) {
    const std::vector<std::string>& known = server.reasons;
    if (state != server.state || reason.empty() || known.size() == MOST_REASONS) {
        return;
    }
    if (std::find(known.begin(), known.end(), reason) == known.end()) {
        server.reasons.push_back(reason);
    }
}

// The worst state of all, and the reasons for it.
static void conclude(ServerResult& server, const std::vector<Verdict>& verdicts) {
    for (const Verdict& verdict : verdicts) {
        server.state = worse(server.state, verdict.state);
    }
    for (const PortResult& port : server.ports) {
        server.state = worse(server.state, port.state);
    }
    for (const Verdict& verdict : verdicts) {
        addReason(server, verdict.state, verdict.reason);
    }
    for (const PortResult& port : server.ports) {
        addReason(server, port.state, port.reason);
    }
}

ServerResult fleet::judge(const Evidence& evidence) {
    const Report& run = evidence.run;
    ServerResult server;
    server.name = evidence.name;
    server.time = evidence.time;
    server.code = evidence.returnCode ? evidence.returnCode : run.returnCode;
    server.ports = judgePorts(evidence);
    server.preview = std::any_of(run.ports.begin(), run.ports.end(), isPreview);
    server.reboot =
        !evidence.rebooted && (run.rebootRequired || std::any_of(run.ports.begin(), run.ports.end(), asksForReboot));
    std::vector<Verdict> verdicts;
    if (evidence.returnCode && run.returnCode && evidence.returnCode != run.returnCode) {
        verdicts.push_back({State::FAILED, codeText(*evidence.returnCode,
                                                    ", but the report says " + std::to_string(*run.returnCode))});
    }
    if (run.ports.empty()) {
        judgeMissingReport(evidence, server.code, verdicts);
    } else {
        judgeDocument(evidence, server, verdicts);
    }
    conclude(server, verdicts);
    return server;
}
