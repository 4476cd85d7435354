#include "plan/preview_runs.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "files.h"
#include "plan/child_process.h"
#include "plan/listing_file.h"
#include "plan/preview_result.h"
#include "plan/progress_line.h"
#include "plan/work_directory.h"
#include "text.h"

using namespace fleet;
namespace fs = std::filesystem;

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned MOST_WORKERS = 32;

// On Windows every run makes and deletes the same registry key to test the user's rights. A run that meets the key of
// another one just as it is deleted takes that for missing rights.
constexpr int MOST_ATTEMPTS = 5;

// A directory with both programs, in which one run is going on at a time.
struct Worker {
    fs::path directory;
    Child child;
    bool busy = false;
    size_t server = 0;
    int attempts = 0;
    Clock::time_point deadline;
};

class Previews {
public:
    Previews(const PlanOrder& planOrder, ResultsDirectory& resultsDirectory)
        : order(planOrder), results(resultsDirectory), progress(planOrder.servers.size()) {
    }

    PlanResult run();

private:
    bool makeWorkers();
    void startFreeWorkers();
    void startServer(Worker& worker, size_t server);
    void startRun(Worker& worker);
    void waitForAnEnd() const;
    void collect(Worker& worker);
    void accept(Worker& worker, int code, const PreviewResult& found);
    void refuse(size_t server, const std::string& reason);
    void stop(const std::string& problem);

    const PlanOrder& order;
    ResultsDirectory& results;
    ProgressLine progress;
    ProcessWatch watch;
    WorkDirectory work;
    std::vector<Worker> workers;
    size_t next = 0;  // the first server that was not begun
    PlanResult result;
};

}  // namespace

void Previews::stop(const std::string& problem) {
    if (result.problem.empty()) {
        result.problem = problem;
    }
}

bool Previews::makeWorkers() {
    std::string problem;
    if (!work.make(problem)) {
        stop(problem);
        return false;
    }
    const size_t cores = std::clamp(std::thread::hardware_concurrency(), 1U, MOST_WORKERS);
    workers.resize(std::min(cores, order.servers.size()));
    for (size_t i = 0; i < workers.size(); i++) {
        workers[i].directory = work.path() / std::to_string(i);
        std::error_code failure;
        fs::create_directory(workers[i].directory, failure);
        if (!installPrograms(order.programs, workers[i].directory, problem)) {
            stop(problem);
            return false;
        }
    }
    return true;
}

void Previews::refuse(size_t server, const std::string& reason) {
    const PlannedServer& refused = order.servers[server];
    result.refused.push_back({textOf(refused.name), reason});
    std::string problem;
    if (!results.publish(refused.name, ".refused", "not planned: " + shownText(reason) + "\n", problem)) {
        stop(problem);
    }
}

// The child sees paths that are relative to its directory: whatever the directory is called, they can go into a command
// line.
void Previews::startRun(Worker& worker) {
    std::error_code failure;
    for (const char* leftover : {CALLS_NAME, "temp.txt"}) {
        fs::remove(worker.directory / leftover, failure);
    }
    const ChildOrder child = {.program = worker.directory / UPDATER_NAME,
                              .arguments = order.arguments,
                              .directory = worker.directory,
                              .environment = {{"TEMP", "."}, {"TARNLIFT_HOST", "host"}},
                              .output = worker.directory / OUTPUT_NAME,
                              .errors = worker.directory / ERRORS_NAME};
    std::string problem;
    worker.attempts++;
    worker.deadline = Clock::now() + std::chrono::seconds(order.secondsForOne);
    worker.busy = startChild(child, worker.child, problem);
    if (!worker.busy) {
        stop(textOf(child.program) + " cannot be started: " + problem +
             ". Is it built for this system, and may programs be run from there?");
    }
}

void Previews::startServer(Worker& worker, size_t server) {
    std::string listing;
    std::string reason;
    if (!readListingFile(order.servers[server].listing, listing, reason)) {
        refuse(server, reason);
        return;
    }
    const fs::path file = worker.directory / "adapters.txt";
    const std::string fault = writeFile(file, adaptersFileOf(listing, CALLS_NAME));
    if (!fault.empty()) {
        stop(textOf(file) + ": " + fault);
        return;
    }
    worker.server = server;
    worker.attempts = 0;
    startRun(worker);
}

void Previews::startFreeWorkers() {
    for (Worker& worker : workers) {
        while (!worker.busy && next < order.servers.size() && result.problem.empty() && !userInterrupted()) {
            startServer(worker, next++);
        }
    }
}

void Previews::waitForAnEnd() const {
    std::vector<Child> children;
    Clock::time_point first = Clock::time_point::max();
    for (const Worker& worker : workers) {
        if (worker.busy) {
            children.push_back(worker.child);
            first = std::min(first, worker.deadline);
        }
    }
    if (!children.empty()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(first - Clock::now());
        waitForChildren(children, static_cast<int>(std::max<int64_t>(left.count(), 0)));
    }
}

void Previews::accept(Worker& worker, int code, const PreviewResult& found) {
    if (found.verdict == Verdict::REPEAT && worker.attempts < MOST_ATTEMPTS) {
        startRun(worker);
        return;
    }
    if (found.verdict == Verdict::REFUSED) {
        refuse(worker.server, found.reason);
        return;
    }
    if (found.verdict != Verdict::PLANNED) {
        stop(found.reason);
        return;
    }
    const fs::path& name = order.servers[worker.server].name;
    std::string problem;
    if (!results.publish(name, ".code", std::to_string(code) + "\n", problem) ||
        !results.publish(name, ".xml", found.report, problem)) {
        stop(problem);
        return;
    }
    result.planned++;
}

void Previews::collect(Worker& worker) {
    const std::optional<ChildEnd> end = endOfChild(worker.child);
    if (end) {
        worker.busy = false;
        accept(worker, end->code, judgePreview(worker.directory, *end));
    } else if (Clock::now() >= worker.deadline) {
        killChild(worker.child);
        worker.busy = false;
        refuse(worker.server, "tarnlift.exe did not end within " + std::to_string(order.secondsForOne) + " seconds");
    }
}

PlanResult Previews::run() {
    const auto isBusy = [](const Worker& worker) { return worker.busy; };
    bool goesOn = makeWorkers();
    while (goesOn) {
        startFreeWorkers();
        waitForAnEnd();
        if (userInterrupted()) {
            stop("interrupted");
        }
        for (Worker& worker : workers) {
            if (worker.busy && result.problem.empty()) {
                collect(worker);
            }
        }
        progress.show(result.planned, result.refused.size());
        goesOn = result.problem.empty() &&
                 (next < order.servers.size() || std::any_of(workers.begin(), workers.end(), isBusy));
    }
    for (const Worker& worker : workers) {
        if (worker.busy) {
            killChild(worker.child);
        }
    }
    std::string problem;
    if (!results.close(problem)) {
        stop(problem);
    }
    return std::move(result);
}

PlanResult fleet::runPreviews(const PlanOrder& order, ResultsDirectory& results) {
    return Previews(order, results).run();
}
