#include "port_judgement.h"

#include <algorithm>
#include <array>
#include <map>

#include "records/port_outcome.h"

using namespace fleet;

namespace {

// What a port's status says; the query afterwards can prove it or show the opposite.
enum class Claim {
    FAILED,
    DOWNLOADED,
    RUNS_AFTER_REBOOT,
    NEEDS_SECOND_DOWNLOAD,
    WOULD_DOWNLOAD,
    NOT_NEEDED,
    SKIPPED,
};

struct ClaimRow {
    int firstStatus;
    int lastStatus;
    Claim claim;
};

// Every other status is a failure.
constexpr ClaimRow claimRows[] = {
    {OUTCOME_SUCCEEDED, OUTCOME_SUCCEEDED, Claim::DOWNLOADED},
    {OUTCOME_REBOOT_REQUIRED, OUTCOME_REBOOT_REQUIRED, Claim::RUNS_AFTER_REBOOT},
    {OUTCOME_NOT_NEEDED, OUTCOME_NOT_NEEDED, Claim::NOT_NEEDED},
    {OUTCOME_UNKNOWN_FIRMWARE_VERSION - 1, OUTCOME_NO_MATRIX_MODEL, Claim::SKIPPED},
    {OUTCOME_PREVIEW_SUCCEEDED, OUTCOME_PREVIEW_SUCCEEDED, Claim::WOULD_DOWNLOAD},
    {OUTCOME_DOWNLOAD_TWICE, OUTCOME_DOWNLOAD_TWICE, Claim::NEEDS_SECOND_DOWNLOAD},
    {OUTCOME_ACTIVATED, OUTCOME_ACTIVATED, Claim::DOWNLOADED},
};

// Ports by WWN and place.
using PortKey = std::pair<std::string_view, std::string_view>;
using PortsByKey = std::multimap<PortKey, const ReportedPort*>;

}  // namespace

static Claim claimOf(int status) {
    for (const ClaimRow& row : claimRows) {
        if (status >= row.firstStatus && status <= row.lastStatus) {
            return row.claim;
        }
    }
    return Claim::FAILED;
}

static std::array<uint64_t, 4> versionNumbers(std::string_view version) {
    constexpr uint64_t limit = UINT32_MAX;
    std::array<uint64_t, 4> numbers = {};
    for (uint64_t& number : numbers) {
        version.remove_prefix(std::min(version.find_first_not_of('.'), version.size()));
        const std::string_view piece = version.substr(0, version.find('.'));
        version.remove_prefix(piece.size());
        for (size_t i = 0; i < piece.size() && piece[i] >= '0' && piece[i] <= '9'; i++) {
            number = std::min(number * 10 + static_cast<uint64_t>(piece[i] - '0'), limit);
        }
    }
    numbers[0] = numbers[0] == 3 ? 2 : numbers[0];
    return numbers;
}

static bool beginsWithDigit(std::string_view text) {
    return !text.empty() && text[0] >= '0' && text[0] <= '9';
}

// Whether two versions are equal as the updater compares them: four numbers, a major 3 counts as 2.
static bool isSameVersion(std::string_view left, std::string_view right) {
    if (!beginsWithDigit(left) || !beginsWithDigit(right)) {
        return left == right;
    }
    return versionNumbers(left) == versionNumbers(right);
}

static PortKey keyOf(const ReportedPort& port) {
    return {port.wwn, port.pci};
}

static PortsByKey portsByKey(const std::vector<ReportedPort>& ports) {
    PortsByKey byKey;
    for (const ReportedPort& port : ports) {
        byKey.emplace(keyOf(port), &port);
    }
    return byKey;
}

// Takes a port out, the first one of those with this key; null when there is none left.
static const ReportedPort* takePort(PortsByKey& ports, const PortKey& key) {
    const auto found = ports.lower_bound(key);
    if (found == ports.end() || found->first != key) {
        return nullptr;
    }
    const ReportedPort* port = found->second;
    ports.erase(found);
    return port;
}

// Whether the query can be asked for what runs now. One that found no adapters can: it shows that all ports are gone.
static bool isUsable(const std::optional<Report>& query) {
    return query && (query->kind == ReportKind::INVENTORY || query->kind == ReportKind::NO_ADAPTERS);
}

static std::string queryFault(const Report& query) {
    return query.kind == ReportKind::EXECUTION ? "is the report of a run" : query.fault;
}

// Holds a version that should run now against the query. `proven` is the state if it does.
static Verdict compareWithQuery(const ReportedPort* now, const std::string& expected, State proven) {
    if (now == nullptr) {
        return {State::NOT_INSTALLED, "the query afterwards does not list the port"};
    }
    if (!isSameVersion(now->firmware, expected)) {
        return {State::NOT_INSTALLED, "the query afterwards shows " + now->firmware + ", not " + expected};
    }
    return {proven, ""};
}

static Verdict judgeDownloaded(const ReportedPort& port, const ReportedPort* now, const Evidence& evidence) {
    if (!evidence.query) {
        return {State::NOT_VERIFIED, "no query was made afterwards"};
    }
    if (!isUsable(evidence.query)) {
        return {State::NOT_VERIFIED, "the file of the query " + queryFault(*evidence.query)};
    }
    return compareWithQuery(now, port.image, State::UPDATED);
}

static Verdict judgeSecondDownload(const ReportedPort* now, const Evidence& evidence) {
    if (!evidence.rebooted) {
        return {State::WAITING, "waits for a reboot, and then for a second download"};
    }
    if (isUsable(evidence.query) && now == nullptr) {
        return compareWithQuery(now, "", State::WAITING);
    }
    return {State::WAITING, "waits for a second download"};
}

// A run that found a port in order said what it runs. An earlier download that waited for a reboot can make that wrong.
static Verdict judgeNotNeeded(const ReportedPort& port, const ReportedPort* now, const Evidence& evidence) {
    if (!isUsable(evidence.query)) {
        return {State::CURRENT, ""};
    }
    return compareWithQuery(now, port.firmware, State::CURRENT);
}

static Verdict judgeRunPort(const ReportedPort& port, const ReportedPort* now, const Evidence& evidence) {
    switch (claimOf(port.status)) {
    case Claim::DOWNLOADED:
        return judgeDownloaded(port, now, evidence);
    case Claim::RUNS_AFTER_REBOOT:
        return evidence.rebooted ? judgeDownloaded(port, now, evidence) : Verdict{State::WAITING, "waits for a reboot"};
    case Claim::NEEDS_SECOND_DOWNLOAD:
        return judgeSecondDownload(now, evidence);
    case Claim::NOT_NEEDED:
        return judgeNotNeeded(port, now, evidence);
    case Claim::WOULD_DOWNLOAD:
        return {State::WOULD_UPDATE, ""};
    case Claim::SKIPPED:
        return {State::SKIPPED, port.message};
    case Claim::FAILED:
        break;
    }
    return {State::FAILED, port.message};
}

// A query counts a port as failed when one of these values is missing.
static Verdict judgeListedPort(const ReportedPort& port) {
    const struct {
        const char* name;
        bool isUsable;
    } values[] = {
        {"WWN", port.wwn != "00:00:00:00:00:00:00:00" && port.wwn != "N/A" && port.wwn != "NONE"},
        {"model", port.model != "UNKNOWN_MODEL" && port.model != "Unknown"},
        {"firmware version", port.firmware != "N/A" && port.firmware != "NONE"},
        {"boot code version", port.bootCode != "N/A"},
    };
    for (const auto& value : values) {
        if (!value.isUsable) {
            return {State::FAILED, std::string("the listing has no usable ") + value.name};
        }
    }
    return {State::LISTED, ""};
}

static PortResult portResult(const ReportedPort& port, Verdict verdict) {
    PortResult result;
    result.wwn = port.wwn;
    result.model = port.model;
    result.pci = port.pci;
    result.state = verdict.state;
    result.reason = std::move(verdict.reason);
    return result;
}

static PortResult runPortResult(const ReportedPort& port, const ReportedPort* now, const Evidence& evidence) {
    PortResult result = portResult(port, judgeRunPort(port, now, evidence));
    result.status = port.status;
    result.before = port.firmware;
    result.image = port.image;
    result.file = port.file;
    result.now = now == nullptr ? "" : now->firmware;
    result.message = port.message;
    return result;
}

static PortResult listedPortResult(const ReportedPort& port, Verdict verdict) {
    PortResult result = portResult(port, std::move(verdict));
    result.now = port.firmware;
    return result;
}

// The ports of the run; after them those that only the query has found.
static std::vector<PortResult> judgeRun(const Evidence& evidence) {
    static const std::vector<ReportedPort> none;
    PortsByKey queried = portsByKey(isUsable(evidence.query) ? evidence.query->ports : none);
    std::vector<PortResult> results;
    for (const ReportedPort& port : evidence.run.ports) {
        results.push_back(runPortResult(port, takePort(queried, keyOf(port)), evidence));
    }
    for (const auto& [key, port] : queried) {
        results.push_back(listedPortResult(*port, {State::LISTED, "only the query lists the port"}));
    }
    return results;
}

std::vector<PortResult> fleet::judgePorts(const Evidence& evidence) {
    if (evidence.run.kind == ReportKind::EXECUTION || evidence.run.kind == ReportKind::NO_ADAPTERS) {
        return judgeRun(evidence);
    }
    std::vector<PortResult> results;
    for (const ReportedPort& port : evidence.run.ports) {
        results.push_back(listedPortResult(port, judgeListedPort(port)));
    }
    return results;
}

bool fleet::asksForReboot(const ReportedPort& port) {
    const Claim claim = claimOf(port.status);
    return claim == Claim::RUNS_AFTER_REBOOT || claim == Claim::NEEDS_SECOND_DOWNLOAD;
}

bool fleet::isPreview(const ReportedPort& port) {
    return port.status == OUTCOME_PREVIEW_SUCCEEDED || port.status == OUTCOME_PREVIEW_FAILED;
}
