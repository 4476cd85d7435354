#include "selection/auto_selection.h"

#include "images/version_rules.h"
#include "output/output.h"
#include "records/clu_image.h"
#include "records/port_outcome.h"
#include "records/run_counters.h"
#include "report/event_log.h"
#include "report/summaries.h"
#include "report/xml_report.h"
#include "selection/matrix_selection.h"
#include "settings/program_names.h"
#include "settings/run_options.h"

// The highest image that fits the port, null when none does.
static CLUImage* firstCandidate(const HbaRecord* hba) {
    return isB1Adapter(hba) ? getFirstB1FwMatch(hba, gFirmwareImageList)
                            : getFirstFwMatch(hba->imageType, gFirmwareImageList);
}

static void reportNotRequired(HbaRecord* hba, const CLUImage* image) {
    setNotRequiredReason(&hba->eventReason);
    reportNotRequiredEvent(hba->portWwn, image->filename, hba->fwImage.decodedVersion, hba->eventReason,
                           hba->fwDownloadStatus, sfjByteOf(hba));
}

// No image of the directory fits. `currentVersion` is what the report gives as the port's.
static void reportNoCandidate(HbaRecord* hba, const char* currentVersion) {
    hba->fwDownloadStatus = OUTCOME_NO_COMPATIBLE_FIRMWARE;
    if (runOptions.xml) {
        xmlWriteSupportedImage("NONE", "NONE");
        xmlWriteVersionChange("false", currentVersion, "NONE", OUTCOME_NO_COMPATIBLE_FIRMWARE);
    } else {
        printHbaRowConsole(hba, "NONE", ROW_NO_SUPPORTED_IMAGE);
    }
}

static void explainNoCandidate(HbaRecord* hba, const char* message) {
    if (runOptions.verbose) {
        printOut("\n%s: %s found for HBA: %s\n", appName, message, hba->model);
    }
    hba->eventReason = "No compatible firmware image found.";
    reportNoCompatibleImageEvent(hba->portWwn, hba->fwImage.decodedVersion, hba->eventReason, hba->fwDownloadStatus,
                                 sfjByteOf(hba));
}

// forceFw, update and rewrite look at the highest image and at no other.
static void takeHighestImage(HbaRecord* hba) {
    printDbg("operation     = forceFw || updateFw || rewriteFw\n");
    const CLUImage* candidate = firstCandidate(hba);
    xmlWriteApplicationOpen(hba);
    if (candidate == nullptr) {
        printDbg("New image     = NONE\n");
        reportNoCandidate(hba, "NONE");
        xmlCloseTag("Application", 2);
        explainNoCandidate(hba, "No matching firmware");
        return;
    }
    runCounters.compatibleImageCount++;
    printDbg("New image     = %s\n", candidate->decodedVersion);
    isUpdateRequired(hba, candidate);
    if (hba->fwDownloadStatus == OUTCOME_NOT_NEEDED) {
        reportNotRequired(hba, candidate);
    }
    xmlCloseTag("Application", 2);
}

// No image that the port may take is below its version; `lastImage` is the last one looked at.
static void passWithoutLowerImage(HbaRecord* hba, const CLUImage* lastImage) {
    hba->fwDownloadStatus = OUTCOME_NOT_NEEDED;
    if (runOptions.xml) {
        xmlWriteSupportedImage(lastImage->decodedVersion, lastImage->filename);
        xmlWriteVersionChange("false", hba->fwVersion, lastImage->decodedVersion, OUTCOME_NOT_NEEDED);
    } else {
        printHbaRowConsole(hba, lastImage->filename, ROW_SUPPORTED_IMAGE);
    }
    if (runOptions.verbose) {
        printUpdateNotRequired(hba, "firmware");
    }
    reportNotRequired(hba, lastImage);
}

// Walks down from the highest image to the first one below the port's version and downloads that. A download that fails
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
        passWithoutLowerImage(hba, lastImage);
    }
}

static void takeNextLowerImage(HbaRecord* hba) {
    xmlWriteApplicationOpen(hba);
    printDbg("operation     = firmware downgrade\n");
    const CLUImage* candidate = firstCandidate(hba);
    if (candidate != nullptr) {
        walkDown(hba, candidate);
    } else {
        reportNoCandidate(hba, hba->fwVersion);
        explainNoCandidate(hba, "No firmware");
    }
    xmlCloseTag("Application", 2);
}

void processHbaAuto(HbaRecord* hba) {
    if (runOptions.downgrade) {
        takeNextLowerImage(hba);
    } else if (isDownloadRun()) {
        takeHighestImage(hba);
    }
}
