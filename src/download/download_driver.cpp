#include "download/download_driver.h"

#include <cstdio>
#include <cstring>

#include "base/text.h"
#include "download/download_reply.h"
#include "inventory/utility_runner.h"
#include "output/output.h"
#include "platform/platform.h"
#include "records/hba_list.h"
#include "records/port_outcome.h"
#include "records/run_counters.h"
#include "report/port_report.h"
#include "report/port_rows.h"
#include "settings/run_options.h"
#include "settings/working_paths.h"

static constexpr char GOOD_REPLY[] = "NO Error";
static constexpr char DOWNLOAD_TWICE_TEXT[] =
    "This special firmware release requires the firmware download process to be\n"
    "performed twice. You must reboot the system and download the same firmware\n"
    "file again to complete the download process.\n";

void makeDownloadCommand(const HbaRecord* hba, const char* filename, char* out) {
    formatText(out, DOWNLOAD_COMMAND_SIZE, "download n=%d i=\"%s%s\"", hba->adapterNumber, firmwarePath, filename);
}

static void appendToRow(HbaRecord* hba, const char* text) {
    appendText(hba->downloadRow, sizeof hba->downloadRow, text);
}

static void makeRow(HbaRecord* hba, const CLUImage* image) {
    formatDownloadRow(hba->downloadRow, hba, image->decodedVersion, "Firmware", hba->fwVersion, image->filename);
}

static bool canOpen(const char* filename) {
    char path[DOWNLOAD_COMMAND_SIZE];
    formatText(path, sizeof path, "%s%s", firmwarePath, filename);
    FILE* file = openFile(path, OPEN_READ_BINARY);
    if (file == nullptr) {
        return false;
    }
    fclose(file);
    return true;
}

// The image file has disappeared. The result stays with this port; the others of its board try for themselves.
static int failUnopened(HbaRecord* hba, const CLUImage* image) {
    makeRow(hba, image);
    runCounters.downloadFailCount++;
    if (isGrpAdapter(hba)) {
        hba->downloadStat = BOARD_FAILED;
        runCounters.boardFailCount++;
    }
    hba->fwDownloadStatus = OUTCOME_IMAGE_NOT_OPENED;
    reportDownload(hba, image, false);
    reportUnopenedImage(hba);
    return 1;
}

static uint16_t runDownload(const HbaRecord* hba, const CLUImage* image) {
    char command[DOWNLOAD_COMMAND_SIZE];
    uint16_t exitStatus = 0;
    makeDownloadCommand(hba, image->filename, command);
    printDbg("\n[Executing utility FW download command]\n");
    printDbg("%s\n", command);
    int tempFileStatus = executeUtilityCommand(command, utilityOutput, &exitStatus);
    if (tempFileStatus != 0) {
        printDbg("executeFwDownload: executeUtilityCommand failed status %d\n", tempFileStatus);
    }
    return exitStatus;
}

static void countResult(const ReplyMeaning& meaning, bool grpAdapter) {
    if (!meaning.noError) {
        runCounters.downloadFailCount++;
    }
    if (grpAdapter && meaning.boardCounter != nullptr) {
        (runCounters.*meaning.boardCounter)++;
    }
}

// Turns the utility's reply into the port's outcome. Returns 0 for a success, else 1.
static int evaluateReply(HbaRecord* hba, const CLUImage* image, uint16_t exitStatus) {
    bool grpAdapter = isGrpAdapter(hba) != 0;
    bool noError = strstr(utilityOutput, GOOD_REPLY) != nullptr;
    // Outside the .grp families there is only one kind of success.
    const ReplyMeaning& meaning = meaningOfReply(noError, grpAdapter || !noError ? exitStatus : ANY_EXIT_STATUS);
    if (grpAdapter) {
        hba->downloadStat = meaning.boardResult;
    }
    hba->fwDownloadStatus = meaning.outcome;
    countResult(meaning, grpAdapter);
    appendToRow(hba, noError ? "Success" : "Error");
    reportDownload(hba, image, noError);
    return noError ? 0 : 1;
}

static int recordPreview(HbaRecord* hba, const CLUImage* image) {
    hba->downloadStat = BOARD_DOWNLOADED;
    hba->fwDownloadStatus = OUTCOME_PREVIEW_SUCCEEDED;
    appendToRow(hba, "Preview");
    reportDownload(hba, image, true);
    return 0;
}

void updateCNAdownloadStatus(const HbaRecord* hba) {
    printDbg("\n[updateCNAdownloadStatus]\n");
    printDbg("currentHba adapterNumber = %d\n", hba->adapterNumber);
    printDbg("currentHba serialNumber  = %s\n", hba->serialNumber);
    printDbg("currentHba domain        = %X\n", hba->domain);
    printDbg("currentHba busNumber     = %X\n", hba->busNumber);
    printDbg("currentHba downloadStat  = %X\n\n", hba->downloadStat);
    for (HbaRecord* port = gHbaList; port != nullptr; port = port->next) {
        if (!isSameBoard(port, hba)) {
            continue;
        }
        port->fwDownloadStatus = hba->fwDownloadStatus;
        port->downloadStat = hba->downloadStat;
        printDbg("updatedHba adapterNumber     = %d\n", port->adapterNumber);
        printDbg("updatedHba serialNumber      = %s\n", port->serialNumber);
        printDbg("updatedHba domain            = %X\n", port->domain);
        printDbg("updatedHba busNumber         = %X\n", port->busNumber);
        printDbg("updatedHba downloadStat      = %d\n\n", port->downloadStat);
        printDbg("updatedHba fwDownloadStatus  = %d\n\n", port->fwDownloadStatus);
    }
}

static int downloadForBoard(HbaRecord* hba, const CLUImage* image) {
    int result = 0;
    if (runOptions.preview) {
        printDbg("fw download   = preview\n");
        makeRow(hba, image);
        result = recordPreview(hba, image);
    } else {
        uint16_t exitStatus = runDownload(hba, image);
        makeRow(hba, image);
        result = evaluateReply(hba, image, exitStatus);
    }
    if (isGrpAdapter(hba)) {
        updateCNAdownloadStatus(hba);
    }
    if (runCounters.twiceCount != 0) {
        appendToRow(hba, DOWNLOAD_TWICE_TEXT);
    }
    reportDownloadRow(hba);
    return result;
}

static uint8_t inheritedOutcome(const HbaRecord* hba, const InheritedResult& inherited) {
    if (runOptions.preview && inherited.boardResult == BOARD_DOWNLOADED) {
        return OUTCOME_PREVIEW_SUCCEEDED;
    }
    if (runOptions.preview && !inherited.succeeded) {
        return OUTCOME_PREVIEW_FAILED;
    }
    if (!inherited.succeeded && isNamedFailure(hba->fwDownloadStatus)) {
        return hba->fwDownloadStatus;
    }
    return inherited.outcome;
}

static void printSkipping(const HbaRecord* hba) {
    printDbg("Skipping adapter...\n");
    printDbg("currentHba adapterNumber = %d\n", hba->adapterNumber);
    printDbg("currentHba serialNumber  = %s\n", hba->serialNumber);
    printDbg("currentHba busNumber     = %X\n", hba->busNumber);
    printDbg("currentHba domain        = %X\n", hba->domain);
    printDbg("currentHba downloadStat  = %X\n\n", hba->downloadStat);
}

// Reports the result of an earlier port of the same board.
static int inheritDownload(HbaRecord* hba, const CLUImage* image) {
    const InheritedResult& inherited = inheritedResult(hba->downloadStat);
    runCounters.boardDownloadCount--;
    makeRow(hba, image);
    hba->fwDownloadStatus = inheritedOutcome(hba, inherited);
    bool previewed =
        hba->fwDownloadStatus == OUTCOME_PREVIEW_SUCCEEDED || hba->fwDownloadStatus == OUTCOME_PREVIEW_FAILED;
    appendToRow(hba, previewed ? "Preview" : inherited.succeeded ? "Success" : "Error");
    if (inherited.boardResult == BOARD_DOWNLOAD_TWICE) {
        appendToRow(hba, "\n");
        appendToRow(hba, DOWNLOAD_TWICE_TEXT);
    }
    if (!inherited.succeeded) {
        runCounters.downloadFailCount++;
        runCounters.boardFailCount++;
    }
    reportDownload(hba, image, inherited.succeeded);
    reportDownloadRow(hba);
    printSkipping(hba);
    return inherited.succeeded ? 0 : 1;
}

int executeFwDownload(HbaRecord* hba, const CLUImage* image) {
    runCounters.downloadAttemptCount++;
    if (isGrpAdapter(hba)) {
        runCounters.boardDownloadCount++;
    }
    hba->downloadAttempted = 1;
    if (!canOpen(image->filename)) {
        return failUnopened(hba, image);
    }
    if (isGrpAdapter(hba) && hba->downloadStat != BOARD_NOT_DOWNLOADED) {
        return inheritDownload(hba, image);
    }
    return downloadForBoard(hba, image);
}

int downloadFirmware(HbaRecord* hba, const CLUImage* image) {
    return executeFwDownload(hba, image);
}
