#include "selection/auto_selection.h"

#include "download/download_driver.h"
#include "images/version_rules.h"
#include "output/output.h"
#include "records/fixed_words.h"
#include "records/port_outcome.h"
#include "records/run_counters.h"
#include "report/event_log.h"
#include "report/port_report.h"
#include "selection/matrix_selection.h"
#include "settings/program_names.h"
#include "settings/run_options.h"

int isUpdateRequired(HbaRecord* hba, const CLUImage* image) {
    if (isDownloadDue(&hba->fwImage, image)) {
        printDbg("update needed = true\n");
        reportImage(hba, image, image->filename);
        return downloadFirmware(hba, image);
    }
    hba->fwDownloadStatus = OUTCOME_NOT_NEEDED;
    if (!runOptions.downgrade) {
        printDbg("update needed = false\n");
        reportImage(hba, image, image->filename);
        reportNotNeeded(hba, image);
    }
    return UPDATE_NOT_REQUIRED;
}

// The highest image that fits the port, null if none does.
static CLUImage* firstCandidate(const HbaRecord* hba) {
    return isB1Adapter(hba) ? getFirstB1FwMatch(hba, gFirmwareImageList)
                            : getFirstFwMatch(hba->imageType, gFirmwareImageList);
}

static void sendNotRequiredEvent(HbaRecord* hba, const CLUImage* image) {
    setNotRequiredReason(&hba->eventReason);
    reportNotRequiredEvent(hba->portWwn, image->filename, hba->fwImage.decodedVersion, hba->eventReason,
                           hba->fwDownloadStatus, sfjLowByte(hba));
}

// The end of a port that no image fits: `message` under /v, and the event.
static void explainNoCandidate(HbaRecord* hba, const char* message) {
    if (runOptions.verbose) {
        printOut("\n%s: %s found for HBA: %s\n", appName, message, hba->model);
    }
    hba->eventReason = "No compatible firmware image found.";
    reportNoCompatibleImageEvent(hba->portWwn, hba->fwImage.decodedVersion, hba->eventReason, hba->fwDownloadStatus,
                                 sfjLowByte(hba));
}

// /ff, /update and /rewrite look at the highest image and at no other.
static void tryHighestImage(HbaRecord* hba) {
    printDbg("operation     = forceFw || updateFw || rewriteFw\n");
    const CLUImage* candidate = firstCandidate(hba);
    beginFirmware(hba);
    if (candidate == nullptr) {
        hba->fwDownloadStatus = OUTCOME_NO_COMPATIBLE_FIRMWARE;
        printDbg("New image     = NONE\n");
        reportNoCandidate(hba, WORD_NONE);
        endFirmware();
        explainNoCandidate(hba, "No matching firmware");
        return;
    }
    runCounters.compatibleImageCount++;
    printDbg("New image     = %s\n", candidate->decodedVersion);
    isUpdateRequired(hba, candidate);
    if (hba->fwDownloadStatus == OUTCOME_NOT_NEEDED) {
        sendNotRequiredEvent(hba, candidate);
    }
    endFirmware();
}

// No image for the port is below its version; `lastImage` is the last one looked at.
static void skipWithoutLowerImage(HbaRecord* hba, const CLUImage* lastImage) {
    hba->fwDownloadStatus = OUTCOME_NOT_NEEDED;
    reportImage(hba, lastImage, lastImage->filename);
    reportNotNeeded(hba, lastImage);
    sendNotRequiredEvent(hba, lastImage);
}

// Walks down from the highest image to the first one below the port's version and downloads that. A failed download
// ends the walk, too: the next lower image is not tried.
static void walkDown(HbaRecord* hba, const CLUImage* candidate) {
    const CLUImage* lastImage = candidate;
    int result = UPDATE_NOT_REQUIRED;
    while (candidate != nullptr && result == UPDATE_NOT_REQUIRED && isCompatibleImage(hba, candidate)) {
        runCounters.compatibleImageCount++;
        lastImage = candidate;
        result = isUpdateRequired(hba, candidate);
        candidate = candidate->next;
    }
    if (result == UPDATE_NOT_REQUIRED) {
        skipWithoutLowerImage(hba, lastImage);
    }
}

static void tryNextLowerImage(HbaRecord* hba) {
    beginFirmware(hba);
    printDbg("operation     = firmware downgrade\n");
    const CLUImage* candidate = firstCandidate(hba);
    if (candidate != nullptr) {
        walkDown(hba, candidate);
    } else {
        hba->fwDownloadStatus = OUTCOME_NO_COMPATIBLE_FIRMWARE;
        reportNoCandidate(hba, hba->fwVersion);
        explainNoCandidate(hba, "No firmware");
    }
    endFirmware();
}

void processHbaAuto(HbaRecord* hba) {
    if (runOptions.downgrade) {
        tryNextLowerImage(hba);
    } else if (isDownloadRun()) {
        tryHighestImage(hba);
    }
}
