#include "selection/matrix_selection.h"

#include <cstring>

#include "base/text.h"
#include "download/download_driver.h"
#include "images/grp_reader.h"
#include "images/image_catalogue.h"
#include "images/version_rules.h"
#include "output/output.h"
#include "platform/file_exists.h"
#include "records/fixed_words.h"
#include "records/port_outcome.h"
#include "records/run_counters.h"
#include "report/event_log.h"
#include "report/port_report.h"
#include "selection/fw_matrix.h"
#include "settings/operation_words.h"
#include "settings/program_names.h"
#include "settings/run_options.h"
#include "settings/working_paths.h"

static constexpr size_t FAILURE_TEXT_SIZE = 256;
static constexpr uint32_t STATUS_NO_IMAGE = 0xFFFA0000;
static constexpr int IMAGE_NOT_FOUND = 20;  // not a GrpStatus

// Why a port gets no image, in its record, its event and its message.
struct ImageFailure {
    PortOutcome outcome;
    EventKind eventKind;
    const char* reason;
    const char* message;
};

static constexpr ImageFailure noEntryFile = {
    .outcome = OUTCOME_NO_MATRIX_IMAGE,
    .eventKind = EVENT_NO_IMAGE,
    .reason = "fwmatrix.txt firmware image entry not found.",
    .message = "No firmware entry found",
};
static constexpr ImageFailure invalidEntry = {
    .outcome = OUTCOME_INVALID_MATRIX_IMAGE,
    .eventKind = EVENT_NO_IMAGE,
    .reason = "Invalid fwmatrix.txt firmware entry.",
    .message = "Invalid firmware entry found",
};
static constexpr ImageFailure unreadableFile = {
    .outcome = OUTCOME_IMAGE_NOT_OPENED,
    .eventKind = EVENT_IMAGE_FILE,
    .reason = "Unable to open firmware file.",
    .message = "Error - reading firmware image",
};
static constexpr ImageFailure shortFile = {
    .outcome = OUTCOME_INVALID_FIRMWARE_FILE,
    .eventKind = EVENT_IMAGE_FILE,
    .reason = "Invalid firmware file.",
    .message = "Error - invalid firmware file found",
};
static constexpr ImageFailure otherFile = {
    .outcome = OUTCOME_IMAGE_NOT_OPENED,
    .eventKind = EVENT_IMAGE_FILE,
    .reason = "Unable to open firmware file.",
    .message = "Error - invalid firmware file found",
};

void setNotRequiredReason(const char** reason) {
    *reason = selectedOperation().notRequired;
}

// Sends the event that the port's eventKind asks for.
static void sendPortEvent(HbaRecord* hba, const char* fwFile) {
    const char* version = hba->fwImage.decodedVersion;
    const uint8_t sfjByte = sfjLowByte(hba);
    switch (hba->eventKind) {
    case EVENT_NO_IMAGE:
        reportNoImageEvent(hba->portWwn, version, hba->eventReason, hba->fwDownloadStatus, sfjByte);
        break;
    case EVENT_IMAGE_FILE:
        reportImageFileEvent(hba->portWwn, version, fwFile, hba->eventReason, hba->fwDownloadStatus, sfjByte);
        break;
    case EVENT_NOT_REQUIRED:
        setNotRequiredReason(&hba->eventReason);
        reportNotRequiredEvent(hba->portWwn, fwFile, version, hba->eventReason, hba->fwDownloadStatus, sfjByte);
        break;
    default:
        break;
    }
}

// Such a port counts neither as a failure nor as a success.
static void skipWithoutEntry(HbaRecord* hba) {
    hba->fwDownloadStatus = OUTCOME_NO_MATRIX_MODEL;
    reportNoImage(hba);
    if (runOptions.verbose) {
        printOut("\n%s: No fwmatrix.txt entry for HBA = %s\n", appName, hba->fwMatrixType);
    }
    hba->eventKind = EVENT_NO_IMAGE;
    hba->eventReason = "fwmatrix.txt model entry not found.";
    if (isDownloadRun()) {
        sendPortEvent(hba, WORD_NONE);
    }
}

// Builds the image that the entry names. Returns null on success, else why there is none; `status` is the number in
// the message.
static const ImageFailure* getImage(CLUImage* image, const char* fwFile, uint32_t* status) {
    *status = STATUS_NO_IMAGE;
    if (strcmp(fwFile, WORD_NONE) == 0) {
        return &noEntryFile;
    }
    if (strcmp(fwFile, WORD_INVALID_FILE) == 0) {
        return &invalidEntry;
    }
    int result = IMAGE_NOT_FOUND;
    if (fileExists(fwFile, firmwarePath) == 0) {
        result = initFileImage(image, firmwarePath, fwFile, IMAGE_CLASS_SELECTION);
    }
    switch (result) {
    case RM_STATUS_OK:
        return nullptr;
    case RM_STATUS_ERROR_READING_RESOURCE:
        *status = RM_STATUS_ERROR_READING_RESOURCE;
        return &unreadableFile;
    case RM_STATUS_ERROR_SHORT_FWIMAGE:
        *status = RM_STATUS_ERROR_SHORT_FWIMAGE;
        return &shortFile;
    default:
        return &otherFile;
    }
}

static void failWithoutImage(HbaRecord* hba, const ImageFailure* failure, uint32_t status) {
    hba->fwDownloadStatus = failure->outcome;
    hba->eventKind = failure->eventKind;
    hba->eventReason = failure->reason;
    runCounters.downloadFailCount++;
    runCounters.downloadAttemptCount++;
    if (isGrpAdapter(hba)) {
        runCounters.boardFailCount++;
        runCounters.boardDownloadCount++;
    }
    reportNoImage(hba);
    if (runOptions.verbose) {
        char failureText[FAILURE_TEXT_SIZE];
        formatText(failureText, sizeof failureText, "\n%s: %s for HBA = %s, status = %X\n", appName, failure->message,
                   hba->model, status);
        printOut("%s", failureText);
    }
}

static void decideByVersion(HbaRecord* hba, const CLUImage* image) {
    runCounters.compatibleImageCount++;
    printDbg("\n[Update Needed]\n");
    bool due = isDownloadDue(&hba->fwImage, image);
    printDbg(due ? "true\n" : "false\n");
    beginFirmware(hba);
    reportImage(hba, image, image->decodedVersion);
    if (due) {
        downloadFirmware(hba, image);
    } else {
        hba->fwDownloadStatus = OUTCOME_NOT_NEEDED;
        hba->eventKind = EVENT_NOT_REQUIRED;
        reportNotNeeded(hba, image);
    }
    endFirmware();
}

void processHbaWithFwMatrix(HbaRecord* hba) {
    char fwFile[MATRIX_TOKEN_SIZE];
    char bcFile[MATRIX_TOKEN_SIZE];
    printDbg("\n[Using FWMATRIX.TXT]\n");
    if (getFwMatrixMatch(hba, fwFile, bcFile) != 1) {
        skipWithoutEntry(hba);
        return;
    }
    if (!isDownloadRun()) {
        return;
    }
    printDbg("\n[Operation]\n");
    printDbg("forceFw || downgradeFw || rewriteFw || updateFw\n");
    CLUImage image = {};
    uint32_t status = 0;
    const ImageFailure* failure = getImage(&image, fwFile, &status);
    if (failure == nullptr) {
        decideByVersion(hba, &image);
    } else {
        failWithoutImage(hba, failure, status);
    }
    sendPortEvent(hba, fwFile);
}
