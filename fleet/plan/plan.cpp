#include "plan/plan.h"

#include <algorithm>
#include <array>
#include <optional>

#include "command_line.h"
#include "console.h"
#include "exit_codes.h"
#include "plan/preview_runs.h"
#include "plan/preview_switches.h"
#include "plan/saved_listings.h"
#include "plan/system.h"
#include "text.h"

using namespace fleet;
namespace fs = std::filesystem;

namespace {

constexpr int DEFAULT_TIMEOUT = 60;
constexpr int LONGEST_TIMEOUT = 86400;

struct PlanArguments {
    std::string listings;
    std::string directory;
    int timeout = DEFAULT_TIMEOUT;
    std::span<const std::string> switches;
};

}  // namespace

static bool wrong(const std::string& message) {
    complain(message);
    return false;
}

static bool readPlanArguments(std::span<const std::string> arguments, PlanArguments& plan) {
    const auto separator = std::find(arguments.begin(), arguments.end(), "--");
    const auto ownCount = static_cast<size_t>(separator - arguments.begin());
    std::optional<std::string> directory;
    std::optional<std::string> timeout;
    const std::array<Option, 2> options = {{{"-o", &directory, nullptr}, {"--timeout", &timeout, nullptr}}};
    std::vector<std::string> operands;
    if (!readArguments(arguments.first(ownCount), options, operands)) {
        return false;
    }
    if (separator == arguments.end()) {
        return wrong("the switches of tarnlift.exe are missing: '-- /update', for instance");
    }
    if (operands.size() != 1 || operands.front().empty()) {
        return wrong(operands.size() > 1 ? "'" + operands[1] + "' is one argument too many"
                                         : "the directory with the listings is missing");
    }
    if (!directory) {
        return wrong("-o DIR is missing");
    }
    const auto seconds = timeout ? readNumber(*timeout, 1, LONGEST_TIMEOUT) : DEFAULT_TIMEOUT;
    plan = {operands.front(), *directory, static_cast<int>(seconds.value_or(0)), arguments.subspan(ownCount + 1)};
    return seconds || wrong("--timeout needs a number of seconds from 1 to " + std::to_string(LONGEST_TIMEOUT));
}

static bool fillOrder(const PlanArguments& plan, SavedListings& found, PlanOrder& order, ResultsDirectory& results) {
    const fs::path programs = programDirectory();
    std::string problem;
    order.secondsForOne = plan.timeout;
    if (!readPreviewSwitches(plan.switches, programs, order.arguments, problem) ||
        !readRehearsalPrograms(programs, order.programs, problem) ||
        !findListings(pathOf(plan.listings), found, problem)) {
        return wrong(problem);
    }
    order.servers = std::move(found.servers);
    return results.open(pathOf(plan.directory), problem) || wrong(problem);
}

// One line for each server that was not planned, and how to go on.
static std::string summaryOf(const PlanResult& result, size_t total, const std::string& directory) {
    std::string text = "Planned " + std::to_string(result.planned) + " of " + std::to_string(total) + " servers.\n";
    size_t width = 0;
    for (const Refusal& refusal : result.refused) {
        width = std::max(width, lengthOf(shownText(refusal.server)));
    }
    text += result.refused.empty() ? "" : "Not planned:\n";
    for (const Refusal& refusal : result.refused) {
        const std::string server = shownText(refusal.server);
        text += "    " + server + std::string(width - lengthOf(server), ' ') + "  " + shownText(refusal.reason) + "\n";
    }
    const bool simple = directory.find_first_of(" '\"&|<>()$`;*?!#") == std::string::npos;
    const std::string named = simple ? directory : "\"" + directory + "\"";
    return text + (result.planned > 0 ? "What it says: tarnfleet status " + shownText(named) + "\n" : "");
}

int fleet::runPlan(std::span<const std::string> arguments) {
    PlanArguments plan;
    if (!readPlanArguments(arguments, plan)) {
        return EXIT_WRONG_ARGUMENTS;
    }
    SavedListings found;
    PlanOrder order;
    ResultsDirectory results;
    if (!fillOrder(plan, found, order, results)) {
        return EXIT_NOT_DONE;
    }
    PlanResult result = runPreviews(order, results);
    const size_t total = order.servers.size() + found.refused.size();
    result.refused.insert(result.refused.end(), found.refused.begin(), found.refused.end());
    std::sort(result.refused.begin(), result.refused.end(),
              [](const Refusal& left, const Refusal& right) { return left.server < right.server; });
    if (!result.problem.empty()) {
        complain(result.problem);
    }
    const bool nothing = result.planned == 0 && result.refused.empty();
    const bool printed = nothing || print(summaryOf(result, total, plan.directory));
    if (!printed || !result.problem.empty() || result.planned == 0) {
        return EXIT_NOT_DONE;
    }
    return result.refused.empty() ? EXIT_ALL_WELL : EXIT_ATTENTION;
}
