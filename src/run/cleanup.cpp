#include "run/cleanup.h"

#include "images/clu_image.h"
#include "include/run_counters.h"
#include "include/run_options.h"
#include "inventory/hba_list.h"
#include "inventory/utility_runner.h"
#include "report/diagnostic_log.h"
#include "report/output.h"
#include "selection/fw_matrix.h"

RunCounters runCounters;

void initGlobals() {
    runOptions = {};
    runCounters = {};
    rmIniSettings = {};
    gHbaCount = 0;
    utilityOutput[0] = '\0';
}

static void closeFile(FILE** file) {
    if (*file != nullptr) {
        fclose(*file);
        *file = nullptr;
    }
}

void cleanup() {
    freeHbaList();
    freeCLUImageList(gFirmwareImageList);
    gFirmwareImageList = nullptr;
    printOut("\n");
    closeFile(&gFwMatrixFile);
    closeFile(&logFile);
    closeFile(&dbgFile);
}
