#include "status.h"

#include <algorithm>
#include <map>
#include <set>

#include "console.h"
#include "fleet.h"
#include "text.h"

using namespace fleet;

namespace {

constexpr size_t LONGEST_NAME = 24;    // a longer name is cut on a terminal
constexpr size_t LONGEST_COLUMN = 64;  // elsewhere a longer name stays whole, and its row leaves the columns
constexpr size_t STATE_WIDTH = 13;
constexpr size_t CODE_WIDTH = 5;
constexpr size_t COUNT_WIDTH = 7;
constexpr size_t LEAST_REASON = 20;
constexpr size_t MOST_REASONS = 20;  // rows of failures by reason on a terminal
constexpr std::string_view GAP = "  ";

struct Count {
    size_t servers = 0;
    size_t ports = 0;
};

// How the rows are laid out. A width of 0 is none: the text stays as it is.
struct Layout {
    Terminal terminal;
    size_t nameWidth;
    size_t restWidth;  // of the return code and the reason
};

}  // namespace

static std::string padded(std::string_view text, size_t width) {
    const size_t length = lengthOf(text);
    return std::string(text).append(length < width ? width - length : 0, ' ');
}

static std::string padLeft(std::string_view text, size_t width) {
    return std::string(text.size() < width ? width - text.size() : 0, ' ').append(text);
}

static std::string limited(const std::string& text, size_t width) {
    return width == 0 ? text : cutText(text, width);
}

// Breaks a text at blanks into lines of a width; all but the first are indented.
static std::string wrapped(std::string_view text, size_t width, size_t indent) {
    std::string result;
    size_t used = 0;
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(word.size() + 1, text.size()));
        if (used > 0 && used + 1 + lengthOf(word) > width) {
            result.append("\n").append(indent, ' ');
            used = 0;
        }
        result.append(used > 0 ? " " : "").append(word);
        used += lengthOf(word) + (used > 0 ? 1 : 0);
    }
    return result;
}

static const char* colourOf(State state) {
    switch (rowOf(state).exitCode) {
    case EXIT_ATTENTION:
        return "\x1B[31m";
    case EXIT_UNFINISHED:
        return "\x1B[33m";
    default:
        return state == State::UPDATED || state == State::CURRENT ? "\x1B[32m" : "";
    }
}

static std::string stateCell(State state, const Layout& layout) {
    const std::string cell = padded(rowOf(state).name, STATE_WIDTH);
    return layout.terminal.hasColours ? colourOf(state) + cell + "\x1B[0m" : cell;
}

static Layout chooseLayout(const std::vector<ServerResult>& servers) {
    Layout layout = {openTerminal(), std::string_view("SERVER").size(), 0};
    for (const ServerResult& server : servers) {
        layout.nameWidth = std::max(layout.nameWidth, lengthOf(server.name));
    }
    layout.nameWidth = std::min(layout.nameWidth, layout.terminal.isTerminal ? LONGEST_NAME : LONGEST_COLUMN);
    if (layout.terminal.isTerminal) {
        // The last column stays free: some terminals begin a new line there.
        const size_t used = layout.nameWidth + STATE_WIDTH + 2 * GAP.size() + 1;
        const size_t left = layout.terminal.columns - std::min(used, layout.terminal.columns);
        layout.restWidth = std::max(CODE_WIDTH + GAP.size() + LEAST_REASON, left);
    }
    return layout;
}

// For a server without a reason: its ports by state, such as "2 updated, 1 current".
static std::string portSummary(const ServerResult& server) {
    std::map<State, size_t> counts;
    for (const PortResult& port : server.ports) {
        counts[port.state]++;
    }
    std::string text;
    for (const auto& [state, count] : counts) {
        text.append(text.empty() ? "" : ", ").append(std::to_string(count)).append(" ").append(rowOf(state).name);
    }
    return text;
}

static std::string serverRows(const std::vector<ServerResult>& servers, const Layout& layout) {
    std::string text = padded("SERVER", layout.nameWidth);
    text.append(GAP).append(padded("STATE", STATE_WIDTH)).append(GAP).append(padLeft("CODE", CODE_WIDTH));
    text.append(GAP).append("REASON\n");
    for (const ServerResult& server : servers) {
        const std::string name = layout.terminal.isTerminal ? cutText(server.name, layout.nameWidth) : server.name;
        const std::string code = server.code ? std::to_string(*server.code) : "-";
        std::string rest = padLeft(code, CODE_WIDTH).append(GAP);
        rest += server.reasons.empty() ? portSummary(server) : reasonText(server);
        text.append(padded(name, layout.nameWidth)).append(GAP).append(stateCell(server.state, layout));
        text.append(GAP).append(limited(rest, layout.restWidth)).append("\n");
    }
    return text;
}

static bool isFailure(State state) {
    return rowOf(state).exitCode == EXIT_ATTENTION;
}

// Counts each server, and each of its ports, once for a reason.
static std::map<std::string, Count> countFailures(const std::vector<ServerResult>& servers) {
    std::map<std::string, Count> counts;
    for (const ServerResult& server : servers) {
        if (!isFailure(server.state)) {
            break;  // the servers come worst first
        }
        std::set<std::string> reasons(server.reasons.begin(), server.reasons.end());
        for (const PortResult& port : server.ports) {
            if (isFailure(port.state)) {
                reasons.insert(port.reason);
                counts[port.reason].ports++;
            }
        }
        for (const std::string& reason : reasons) {
            counts[reason].servers++;
        }
    }
    return counts;
}

static std::string countCells(const Count& count) {
    return padLeft(std::to_string(count.servers), COUNT_WIDTH) + padLeft(std::to_string(count.ports), COUNT_WIDTH);
}

static std::string failureRows(const std::vector<ServerResult>& servers, const Layout& layout) {
    const std::map<std::string, Count> counts = countFailures(servers);
    if (counts.empty()) {
        return "";
    }
    std::vector<std::pair<std::string, Count>> rows(counts.begin(), counts.end());
    std::stable_sort(rows.begin(), rows.end(), [](const auto& left, const auto& right) {
        return std::pair(left.second.servers, left.second.ports) > std::pair(right.second.servers, right.second.ports);
    });
    const size_t shown = layout.terminal.isTerminal ? std::min(rows.size(), MOST_REASONS) : rows.size();
    const size_t indent = 2 * COUNT_WIDTH + GAP.size();
    const size_t width =
        std::max(LEAST_REASON, layout.terminal.columns - std::min(indent + 1, layout.terminal.columns));
    std::string text = "\nFailures by reason\nSERVERS  PORTS  REASON\n";
    for (size_t i = 0; i < shown; i++) {
        const std::string& reason = rows[i].first;
        text.append(countCells(rows[i].second)).append(GAP);
        text.append(layout.terminal.isTerminal ? wrapped(reason, width, indent) : reason).append("\n");
    }
    if (shown < rows.size()) {
        text.append("and ").append(std::to_string(rows.size() - shown)).append(" more reasons\n");
    }
    return text;
}

static std::string totalRows(const std::vector<ServerResult>& servers, const Layout& layout) {
    std::map<State, Count> counts;
    Count all;
    for (const ServerResult& server : servers) {
        counts[server.state].servers++;
        all.servers++;
        all.ports += server.ports.size();
        for (const PortResult& port : server.ports) {
            counts[port.state].ports++;
        }
    }
    std::string text = "\n";
    text.append(padded("Totals", STATE_WIDTH)).append("SERVERS  PORTS\n");
    for (const auto& [state, count] : counts) {
        text += stateCell(state, layout) + countCells(count) + "\n";
    }
    return text + padded("all", STATE_WIDTH) + countCells(all) + "\n";
}

static std::string previewNote(const std::vector<ServerResult>& servers) {
    const bool hasPreview =
        std::any_of(servers.begin(), servers.end(), [](const ServerResult& server) { return server.preview; });
    return hasPreview ? "\nThis is a preview: where a server would update, nothing was written.\n" : "";
}

int fleet::runStatus(std::span<const std::string> arguments) {
    FleetRequest request;
    if (const ExitCode code = readRequest(arguments, OutputOption::REFUSED, request); code != EXIT_ALL_WELL) {
        return code;
    }
    const auto servers = readFleet(request);
    if (!servers) {
        return EXIT_NOT_DONE;
    }
    const Layout layout = chooseLayout(*servers);
    const std::string text = serverRows(*servers, layout) + failureRows(*servers, layout) +
                             totalRows(*servers, layout) + previewNote(*servers);
    return print(text) ? rowOf(servers->front().state).exitCode : EXIT_NOT_DONE;
}
