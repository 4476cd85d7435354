#include "report/summaries.h"

#include "base/text.h"
#include "output/output.h"
#include "records/hba_list.h"
#include "records/run_counters.h"
#include "report/port_report.h"
#include "report/port_rows.h"
#include "settings/operation_words.h"
#include "settings/run_options.h"

static constexpr char STARS[] = "*******************************************************************************\n";
static constexpr size_t SENTENCE_SIZE = 64;

void printDownloadSummary() {
    printOut("\n\n%s", STARS);
    printOut("%s", STARS);
    printOut("Download Summary:\n");
    for (const HbaRecord* hba = gHbaList; hba != nullptr; hba = hba->next) {
        if (hba->downloadAttempted) {
            printDownloadRow(hba);
        }
    }
    printOut("\n\n");
}

void printSummaries() {
    if (runCounters.downloadAttemptCount != 0) {
        printDownloadSummary();
    }
}

// The words before and after the operation, for console and XML. A sentence without an operation has only the first part.
struct StatusSentence {
    ReturnCode code;
    bool namesOperation;
    const char* console;
    const char* report;
    const char* afterOperation;
};

static constexpr StatusSentence NO_ADAPTERS = {
    .code = RETURN_NO_ADAPTERS,
    .namesOperation = false,
    .console = "Error - no supported Velmar HBAs found",
    .report = "No supported Velmar HBAs found",
    .afterOperation = "",
};
static constexpr StatusSentence NO_COMPATIBLE_FIRMWARE = {
    .code = RETURN_NO_COMPATIBLE_FIRMWARE,
    .namesOperation = false,
    .console = "No compatible firmware found",
    .report = "No compatible firmware found",
    .afterOperation = "",
};
static constexpr StatusSentence ALL_FAILED = {
    .code = RETURN_ALL_FAILED,
    .namesOperation = true,
    .console = "Error - all required ",
    .report = "All required ",
    .afterOperation = " failed",
};
static constexpr StatusSentence SOME_FAILED = {
    .code = RETURN_SOME_FAILED,
    .namesOperation = true,
    .console = "Error - some required ",
    .report = "Some required ",
    .afterOperation = " failed",
};
static constexpr StatusSentence ALL_SUCCEEDED = {
    .code = RETURN_SUCCEEDED,
    .namesOperation = true,
    .console = "All required ",
    .report = "All required ",
    .afterOperation = " succeeded",
};
static constexpr StatusSentence NOT_REQUIRED = {
    .code = RETURN_NOT_REQUIRED,
    .namesOperation = true,
    .console = "No ",
    .report = "No ",
    .afterOperation = " required",
};

static ReturnCode reportSentence(const StatusSentence& sentence, const char* operation, uint16_t twiceCount) {
    const char* word = sentence.namesOperation ? operation : "";
    char console[SENTENCE_SIZE];
    char report[SENTENCE_SIZE];
    formatText(console, sizeof console, "%s%s%s", sentence.console, word, sentence.afterOperation);
    formatText(report, sizeof report, "%s%s%s", sentence.report, word, sentence.afterOperation);
    reportClosing(sentence.code, "\n\n", console, report, twiceCount);
    return sentence.code;
}

// For counters that match no sentence. `lineFeeds` differ between the two kinds of run.
static ReturnCode reportUnknownStatus(const char* lineFeeds, const char* operation, uint16_t twiceCount) {
    char console[SENTENCE_SIZE];
    formatText(console, sizeof console, "Unknown status - %s", operation);
    reportClosing(RETURN_SUCCEEDED, lineFeeds, console, "Unknown status", twiceCount);
    return RETURN_SUCCEEDED;
}

// The order of the tests matters: a run that met no usable image says so, whatever else failed. Null when the counters
// match nothing.
static const StatusSentence* updateSentence() {
    const uint16_t attempts = runCounters.downloadAttemptCount;
    const uint16_t failures = runCounters.downloadFailCount;
    const struct {
        bool holds;
        const StatusSentence* sentence;
    } tests[] = {
        {runCounters.knownHbaCount == 0, &NO_ADAPTERS},
        {runCounters.compatibleImageCount == 0, &NO_COMPATIBLE_FIRMWARE},
        {failures != 0 && failures == attempts, &ALL_FAILED},
        {failures != 0 && failures < attempts, &SOME_FAILED},
        {attempts != 0 && failures == 0, &ALL_SUCCEEDED},
        {attempts == 0, &NOT_REQUIRED},
    };
    for (const auto& test : tests) {
        if (test.holds) {
            return test.sentence;
        }
    }
    return nullptr;
}

ReturnCode reportUpdateStatus() {
    const StatusSentence* sentence = updateSentence();
    const char* operation = selectedOperation().plural;
    const uint16_t twiceCount = sentence == &NO_ADAPTERS ? 0 : runCounters.twiceCount;
    return sentence != nullptr ? reportSentence(*sentence, operation, twiceCount)
                               : reportUnknownStatus("\n", operation, twiceCount);
}

ReturnCode reportQueryStatus() {
    const uint16_t queries = runCounters.queryCount;
    const uint16_t failures = runCounters.queryFailCount;
    const char* operation = queries != 0 ? "queries" : "query";
    if (failures > queries || queries == 0) {
        return reportUnknownStatus("\n\n", operation, 0);
    }
    const StatusSentence& sentence = failures == 0 ? ALL_SUCCEEDED : failures == queries ? ALL_FAILED : SOME_FAILED;
    return reportSentence(sentence, operation, 0);
}

// A reboot is needed for a board that got a download which neither failed nor took effect at once.
static bool isRebootRequired() {
    int waiting = runCounters.boardDownloadCount - runCounters.boardFailCount - runCounters.boardNoRebootCount;
    return !runOptions.preview && runCounters.boardDownloadCount != 0 &&
           runCounters.boardDownloadCount > runCounters.boardFailCount && waiting > 0;
}

void reportRebootRequired() {
    reportReboot(isRebootRequired());
}
