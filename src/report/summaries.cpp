#include "report/summaries.h"

#include <cstring>

#include "base/text.h"
#include "output/output.h"
#include "platform/platform.h"
#include "records/hba_list.h"
#include "records/port_outcome.h"
#include "records/run_counters.h"
#include "report/xml_report.h"
#include "settings/program_names.h"
#include "settings/run_options.h"

static constexpr size_t IMAGE_TEXT_SIZE = 64;
static constexpr size_t ROW_SIZE = 1024;  // more than all fields of a record take at their longest
static constexpr size_t TIME_TEXT_SIZE = 64;
static constexpr size_t DOWNLOAD_ROW_HEAD_SIZE = 321;
static constexpr size_t VERSION_PREFIX_LENGTH = 2;  // in front of the version, outside the .grp families
static constexpr char STARS[] = "*******************************************************************************\n";

// "N/A" and "NONE" show as nothing.
static const char* shownVersion(const char* version) {
    bool hasNothingToShow = strcmp(version, "N/A") == 0 || strcmp(version, "NONE") == 0;
    return hasNothingToShow ? "" : version;
}

static void appendBootEnabled(char* row, const HbaRecord* hba) {
    appendFormat(row, ROW_SIZE, ", Boot Enabled=%d", hba->bootEnabled);
}

static void appendFirmwareStatus(char* row, const HbaRecord* hba) {
    if (strcmp(hba->fwStatus, "N/A") != 0) {
        appendFormat(row, ROW_SIZE, ", Firmware Status=\"%s\"", hba->fwStatus);
    }
}

static void appendSupportedImage(char* row, const char* imageName) {
    char image[IMAGE_TEXT_SIZE];
    copyText(image, sizeof image, imageName);
    upperCaseInPlace(image);
    appendFormat(row, ROW_SIZE, ", Supported Firmware=%s", image);
}

void printHbaRow(const HbaRecord* hba, const char* imageName, RowKind rowKind) {
    if (!runOptions.query) {
        return;
    }
    char row[ROW_SIZE];
    formatText(row, sizeof row,
               "\nHBA=%s, Port Type=%s, WWN=%s, PCI ID=%04X, VID=%04X, SSID=%04X, SVID=%04X, Firmware=%s, Boot Code=%s",
               hba->model, hba->portType, hba->portWwn, hba->deviceId, hba->vendorId, hba->subDeviceId,
               hba->subVendorId, shownVersion(hba->fwVersion), shownVersion(hba->bcVersion));
    switch (rowKind) {
    case ROW_PORT:
        appendBootEnabled(row, hba);
        appendFirmwareStatus(row, hba);
        appendFormat(row, sizeof row, ", FLASH PART=%s", hba->flashPart);
        break;
    case ROW_SUPPORTED_IMAGE:
        appendSupportedImage(row, imageName);
        appendFirmwareStatus(row, hba);
        appendBootEnabled(row, hba);
        break;
    case ROW_NO_SUPPORTED_IMAGE:
        appendSupportedImage(row, imageName);
        appendBootEnabled(row, hba);
        break;
    }
    printOut("%s", row);
}

void printHbaRowConsole(const HbaRecord* hba, const char* imageName, RowKind rowKind) {
    if (!runOptions.xml) {
        printHbaRow(hba, imageName, rowKind);
    }
}

void printQueryRow(const HbaRecord* hba, const char* imageName, RowKind rowKind) {
    if (runOptions.xml) {
        xmlWriteDeviceInventory(hba);
    } else {
        printHbaRow(hba, imageName, rowKind);
    }
}

static void formatTime(char out[TIME_TEXT_SIZE]) {
    static const char* const days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    LocalTime now;
    if (localTime(&now) != 0) {
        copyText(out, TIME_TEXT_SIZE, "Current time is not available");
        return;
    }
    formatText(out, TIME_TEXT_SIZE, "%s %s %2d %02d:%02d:%02d %d\n", days[now.dayOfWeek], months[now.month - 1],
               now.day, now.hour, now.minute, now.second, now.year);
}

void formatDownloadRow(char* row, const HbaRecord* hba, const char* newVersion, const char* updateWord,
                       const char* oldVersion, const char* imageFile) {
    char time[TIME_TEXT_SIZE];
    formatTime(time);
    if (!isGrpAdapter(hba)) {
        size_t length = strlen(newVersion);
        newVersion += length < VERSION_PREFIX_LENGTH ? length : VERSION_PREFIX_LENGTH;
    }
    formatText(row, DOWNLOAD_ROW_HEAD_SIZE,
               "\n%sHBA=%s, Port Type=%s, WWN=%s,\nUpdate=%s, Image=%s, New=%s, Old=%s, Status=", time, hba->model,
               hba->portType, hba->portWwn, updateWord, imageFile, newVersion, oldVersion);
}

void printDownloadRow(const HbaRecord* hba) {
    printOut("%s", hba->downloadRow);
    const char* sentence = activationSentence(hba->fwDownloadStatus);
    if (sentence != nullptr) {
        printOut(", Firmware Status=\"%s\"", sentence);
    }
    printOut("\n");
}

void printUpdateNotRequired(const HbaRecord* hba, const char* what) {
    const char* operation = runOptions.rewrite     ? "rewrite"
                            : runOptions.update    ? "update"
                            : runOptions.downgrade ? "downgrade"
                                                   : nullptr;
    if (operation != nullptr) {
        printOut("\n%s: A %s %s was not required on HBA: %s\n", appName, what, operation, hba->model);
    }
}

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

// The sentence of a status: what stands in front of and behind the word for the operation, on the console and in the
// report. A sentence without the word has all of it in front.
struct StatusSentence {
    ReturnCode code;
    bool namesOperation;
    const char* console;
    const char* consoleBehind;
    const char* report;
    const char* reportBehind;
};

static constexpr StatusSentence NO_ADAPTERS = {
    RETURN_NO_ADAPTERS, false, "Error - no supported Velmar HBAs found", "", "No supported Velmar HBAs found", ""};
static constexpr StatusSentence NO_COMPATIBLE_FIRMWARE = {
    RETURN_NO_COMPATIBLE_FIRMWARE, false, "No compatible firmware found", "", "No compatible firmware found", ""};
static constexpr StatusSentence ALL_FAILED = {RETURN_ALL_FAILED, true,     "Error - all required ", " failed",
                                              "All required ",   " failed"};
static constexpr StatusSentence SOME_FAILED = {RETURN_SOME_FAILED, true,     "Error - some required ", " failed",
                                               "Some required ",   " failed"};
static constexpr StatusSentence ALL_SUCCEEDED = {RETURN_SUCCEEDED, true,        "All required ", " succeeded",
                                                 "All required ",  " succeeded"};
static constexpr StatusSentence NOT_REQUIRED = {RETURN_NOT_REQUIRED, true, "No ", " required", "No ", " required"};

static void printSentence(const StatusSentence& sentence, const char* operation) {
    const char* word = sentence.namesOperation ? operation : "";
    if (runOptions.xml) {
        printOut("id=\"%d\"> %s%s%s. ", sentence.code, sentence.report, word, sentence.reportBehind);
    } else {
        printOut("\n\n%s: %s%s%s - Return Code=%d\n\n", appName, sentence.console, word, sentence.consoleBehind,
                 sentence.code);
    }
}

// For counters that fit no sentence. `lineFeeds` differ between the two roll-ups.
static void printUnknownStatus(const char* lineFeeds, const char* operation) {
    if (runOptions.xml) {
        printOut("id=\"%d\"> Unknown status. ", RETURN_SUCCEEDED);
    } else {
        printOut("%s%s: Unknown status - %s - Return Code=%d\n\n", lineFeeds, appName, operation, RETURN_SUCCEEDED);
    }
}

static const char* updateWord() {
    return runOptions.update      ? "updates"
           : runOptions.rewrite   ? "rewrites"
           : runOptions.downgrade ? "downgrades"
           : runOptions.forceFw   ? "firmware downloads"
                                  : "unknown operation";
}

// The order of the tests matters: a run that met no usable image says so, whatever else failed. Null when the counters
// fit nothing.
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

static void printTwiceAdvice() {
    printOut("%d adapter%s", runCounters.twiceCount, runCounters.twiceCount > 1 ? "s" : "");
    if (runOptions.xml) {
        printOut(" include a special firmware release that requires the firmware download process to be performed "
                 "twice. Reboot the system and run tarnlift again using the /f or /rewrite option to download the same "
                 "firmware file again. ");
    } else {
        printOut(" include a special firmware release that requires the firmware\ndownload process to be performed "
                 "twice. Reboot the system and run tarnlift\nagain using the /f or /rewrite option to download the "
                 "same firmware file again.\n");
    }
}

ReturnCode reportUpdateStatus() {
    xmlOpenTag("Message", 1);
    const StatusSentence* sentence = updateSentence();
    if (sentence != nullptr) {
        printSentence(*sentence, updateWord());
    } else {
        printUnknownStatus("\n", updateWord());
    }
    if (runCounters.twiceCount != 0 && sentence != &NO_ADAPTERS) {
        printTwiceAdvice();
    }
    xmlCloseTag("Message", 0);
    return sentence != nullptr ? sentence->code : RETURN_SUCCEEDED;
}

ReturnCode reportQueryStatus() {
    const uint16_t queries = runCounters.queryCount;
    const uint16_t failures = runCounters.queryFailCount;
    const char* word = queries != 0 ? "queries" : "query";
    const StatusSentence* sentence = nullptr;
    if (failures != 0 && failures <= queries) {
        sentence = failures == queries ? &ALL_FAILED : &SOME_FAILED;
    } else if (queries != 0 && failures == 0) {
        sentence = &ALL_SUCCEEDED;
    }
    xmlOpenTag("Message", 1);
    if (sentence != nullptr) {
        printSentence(*sentence, word);
    } else {
        printUnknownStatus("\n\n", word);
    }
    xmlCloseTag("Message", 0);
    return sentence != nullptr ? sentence->code : RETURN_SUCCEEDED;
}

// A board that took a download, which neither failed nor took effect at once, calls for the reboot.
static bool isRebootRequired() {
    int waiting = runCounters.boardDownloadCount - runCounters.boardFailCount - runCounters.boardNoRebootCount;
    return !runOptions.preview && runCounters.boardDownloadCount != 0 &&
           runCounters.boardDownloadCount > runCounters.boardFailCount && waiting > 0;
}

void reportRebootRequired() {
    bool required = isRebootRequired();
    if (runOptions.xml) {
        xmlWriteRebootRequired(required ? 1 : 0, 1);
    } else if (required) {
        printOut("Please reboot system to activate new firmware.\n");
    }
}
