#include "run/port.h"

#include <cstring>

#include "output/diagnostic_log.h"
#include "output/output.h"
#include "records/fixed_words.h"
#include "records/port_outcome.h"
#include "records/run_counters.h"
#include "report/port_report.h"
#include "selection/auto_selection.h"
#include "selection/matrix_selection.h"
#include "settings/run_options.h"

static void tracePort(const HbaRecord* hba) {
    if (dbgFile == nullptr) {
        return;
    }
    printDbg("\n");
    printDbg("adapterNumber = %d\n", hba->adapterNumber);
    printDbg("model         = %s\n", hba->model);
    printDbg("portType      = %s\n", hba->portType);
    printDbg("fwVersion     = %s\n", hba->fwVersion);
    printDbg("imageType     = %d\n", hba->imageType);
}

static void queryPort(HbaRecord* hba) {
    printDbg("operation     = query only\n");
    logLine("operation     = query only");
    runCounters.queryCount++;
    if (isInvalidHba(hba)) {
        runCounters.queryFailCount++;
    }
    printQueryRow(hba, WORD_NONE, ROW_PORT);
}

static bool hasFirmwareVersion(const HbaRecord* hba) {
    return strcmp(hba->fwVersion, WORD_NOT_AVAILABLE) != 0 && strcmp(hba->fwVersion, WORD_NONE) != 0;
}

// A port without a firmware version is skipped: no selection, no counter.
static void skipWithoutVersion(HbaRecord* hba) {
    printDbg("firmware version N/A!!!\n");
    hba->fwDownloadStatus = OUTCOME_UNKNOWN_FIRMWARE_VERSION;
    reportNoFirmwareVersion(hba);
}

void processPort(HbaRecord* hba) {
    tracePort(hba);
    if (isQueryOnly()) {
        queryPort(hba);
        return;
    }
    beginPort(hba);
    if (!hasFirmwareVersion(hba)) {
        skipWithoutVersion(hba);
    } else if (runOptions.autoSelect) {
        processHbaAuto(hba);
    } else {
        processHbaWithFwMatrix(hba);
    }
    endPort();
}
