#include "selection/matrix_selection.h"

#include <cstring>

#include "base/text.h"
#include "download/download_driver.h"
#include "images/grp_reader.h"
#include "images/image_catalogue.h"
#include "images/version_rules.h"
#include "output/output.h"
#include "platform/file_exists.h"
#include "records/hba_list.h"
#include "records/port_outcome.h"
#include "records/run_counters.h"
#include "report/event_log.h"
#include "report/summaries.h"
#include "report/xml_report.h"
#include "selection/fw_matrix.h"
#include "settings/program_names.h"
#include "settings/run_options.h"
#include "settings/working_paths.h"

static constexpr size_t FAILURE_TEXT_SIZE = 256;
static constexpr uint32_t STATUS_NO_IMAGE = 0xFFFA0000;
static constexpr int FILE_NOT_FOUND = 20;  // beside the GrpStatus of a file that is there

// Why a port gets no image: what the record and the message say of it.
struct ImageFailure {
    PortOutcome outcome;
    EventKind eventKind;
    const char* reason;
    const char* message;
};

static constexpr ImageFailure noEntryFile = {OUTCOME_NO_MATRIX_IMAGE, EVENT_NO_IMAGE,
                                             "fwmatrix.txt firmware image entry not found.", "No firmware entry found"};
static constexpr ImageFailure invalidEntry = {OUTCOME_INVALID_MATRIX_IMAGE, EVENT_NO_IMAGE,
                                              "Invalid fwmatrix.txt firmware entry.", "Invalid firmware entry found"};
static constexpr ImageFailure unreadableFile = {OUTCOME_IMAGE_NOT_OPENED, EVENT_IMAGE_FILE,
                                                "Unable to open firmware file.", "Error - reading firmware image"};
static constexpr ImageFailure shortFile = {OUTCOME_INVALID_FIRMWARE_FILE, EVENT_IMAGE_FILE, "Invalid firmware file.",
                                           "Error - invalid firmware file found"};
static constexpr ImageFailure otherFile = {OUTCOME_IMAGE_NOT_OPENED, EVENT_IMAGE_FILE, "Unable to open firmware file.",
                                           "Error - invalid firmware file found"};

void setNotRequiredReason(const char** reason) {
    *reason = runOptions.update      ? "Firmware update is not required."
              : runOptions.downgrade ? "Firmware downgrade is not required."
              : runOptions.rewrite   ? "Firmware rewrite is not required."
                                     : "Download is not required.";
}

// Ends a port's selection with the report that its eventKind asks for.
static void reportEventOfPort(HbaRecord* hba, const char* fwFile) {
    const char* version = hba->fwImage.decodedVersion;
    const uint8_t sfjByte = sfjByteOf(hba);
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
static void passWithoutEntry(HbaRecord* hba) {
    hba->fwDownloadStatus = OUTCOME_NO_MATRIX_MODEL;
    if (runOptions.xml) {
        xmlWriteNoImageApplication(hba);
    } else if (runOptions.query && isAutoOrDownloadRun()) {
        printHbaRowConsole(hba, "NONE", ROW_NO_SUPPORTED_IMAGE);
    }
    if (runOptions.verbose) {
        printOut("\n%s: No fwmatrix.txt entry for HBA = %s\n", appName, hba->fwMatrixType);
    }
    hba->eventKind = EVENT_NO_IMAGE;
    hba->eventReason = "fwmatrix.txt model entry not found.";
    if (isDownloadRun()) {
        reportEventOfPort(hba, MATRIX_NO_FILE);
    }
}

// Builds the image that the entry names. Returns null on success, else why there is none; `status` is what the message
// shows.
static const ImageFailure* getImage(CLUImage* image, const char* fwFile, uint32_t* status) {
    *status = STATUS_NO_IMAGE;
    if (strcmp(fwFile, MATRIX_NO_FILE) == 0) {
        return &noEntryFile;
    }
    if (strcmp(fwFile, MATRIX_INVALID_FILE) == 0) {
        return &invalidEntry;
    }
    int result = FILE_NOT_FOUND;
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

static void passWithoutImage(HbaRecord* hba, const ImageFailure* failure, uint32_t status) {
    hba->fwDownloadStatus = failure->outcome;
    hba->eventKind = failure->eventKind;
    hba->eventReason = failure->reason;
    runCounters.downloadFailCount++;
    runCounters.downloadAttemptCount++;
    if (isGrpAdapter(hba)) {
        runCounters.boardFailCount++;
        runCounters.boardDownloadCount++;
    }
    if (runOptions.xml) {
        xmlWriteNoImageApplication(hba);
    } else if (runOptions.query) {
        printHbaRowConsole(hba, "NONE", ROW_NO_SUPPORTED_IMAGE);
    }
    if (runOptions.verbose) {
        char failureText[FAILURE_TEXT_SIZE];
        formatText(failureText, sizeof failureText, "\n%s: %s for HBA = %s, status = %X\n", appName, failure->message,
                   hba->model, status);
        printOut("%s", failureText);
    }
}

// Shows the port with the image that was looked at, and opens its element in the report.
static void openPortReport(HbaRecord* hba, const CLUImage* image) {
    if (runOptions.xml) {
        xmlWriteApplicationOpen(hba);
        xmlWriteSupportedImage(image->decodedVersion, image->filename);
    } else {
        printHbaRowConsole(hba, image->decodedVersion, ROW_SUPPORTED_IMAGE);
    }
}

static void downloadDueImage(HbaRecord* hba, const CLUImage* image) {
    printDbg("true\n");
    openPortReport(hba, image);
    downloadFirmware(hba, image);
    xmlCloseTag("Application", 2);
}

static void passWithoutNeed(HbaRecord* hba, const CLUImage* image) {
    printDbg("false\n");
    hba->fwDownloadStatus = OUTCOME_NOT_NEEDED;
    openPortReport(hba, image);
    if (runOptions.xml) {
        xmlWriteVersionChange("false", hba->fwVersion, image->decodedVersion, OUTCOME_NOT_NEEDED);
    }
    if (runOptions.verbose) {
        printUpdateNotRequired(hba, "firmware");
    }
    xmlCloseTag("Application", 2);
    hba->eventKind = EVENT_NOT_REQUIRED;
}

static void decideByVersion(HbaRecord* hba, const CLUImage* image) {
    runCounters.compatibleImageCount++;
    printDbg("\n[Update Needed]\n");
    if (isDownloadDue(&hba->fwImage, image)) {
        downloadDueImage(hba, image);
    } else {
        passWithoutNeed(hba, image);
    }
}

void processHbaWithFwMatrix(HbaRecord* hba) {
    char fwFile[MATRIX_TOKEN_SIZE];
    char bcFile[MATRIX_TOKEN_SIZE];
    printDbg("\n[Using FWMATRIX.TXT]\n");
    if (getFwMatrixMatch(hba, fwFile, bcFile) != 1) {
        passWithoutEntry(hba);
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
        passWithoutImage(hba, failure, status);
    }
    reportEventOfPort(hba, fwFile);
}
