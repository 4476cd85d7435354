#include "run/cleanup.h"

#include "inventory/utility_runner.h"
#include "output/diagnostic_log.h"
#include "output/output.h"
#include "records/clu_image.h"
#include "records/hba_list.h"
#include "records/run_counters.h"
#include "selection/fw_matrix.h"
#include "settings/run_options.h"

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
