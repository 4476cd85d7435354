#include "run/run.h"

#include "images/image_catalogue.h"
#include "inventory/listing_parser.h"
#include "output/diagnostic_log.h"
#include "output/output.h"
#include "platform/platform.h"
#include "records/hba_list.h"
#include "report/event_log.h"
#include "report/port_report.h"
#include "report/summaries.h"
#include "run/cleanup.h"
#include "run/help.h"
#include "run/paths.h"
#include "run/switches.h"
#include "selection/fw_matrix.h"
#include "settings/run_options.h"

static constexpr uint32_t LOWEST_SYSTEM_VERSION = 10;

static int checkOsVersion() {
    return systemMajorVersion() >= LOWEST_SYSTEM_VERSION ? 1 : 0;
}

static void readDiagnosticSettings() {
    if (isDiagnosticLogOn() && openRmIni()) {
        parseRmIni();
    }
}

// Walks the ports. A failure of one port never ends the walk; it is recorded in the port's record and the counters.
static void workOnPorts(PortWork workOnPort) {
    printDbg("[Begin execution]");
    logLine("[Begin execution]");
    for (HbaRecord* hba = gHbaList; hba != nullptr; hba = hba->next) {
        workOnPort(hba);
    }
}

// Turns the counters into the closing sentences and the return code.
static ReturnCode closeReport() {
    if (runOptions.verbose && isDownloadRun()) {
        printSummaries();
    }
    ReturnCode returnCode = isDownloadRun() ? reportUpdateStatus() : reportQueryStatus();
    if (!isQueryOnly()) {
        reportRebootRequired();
    }
    return returnCode;
}

ReturnCode prepareRun(char** argv) {
    if (!checkOsVersion()) {
        printOut("\nError - Unsupported OS detected - Return Code=%d\n\n", RETURN_OLD_SYSTEM);
        return RETURN_OLD_SYSTEM;
    }
    initGlobals();
    if (setupApplicationPaths(argv) != 0) {
        return printEndingError(RETURN_COMMAND_LINE, "Unable to setup application paths");
    }
    readDiagnosticSettings();
    logLine("########started execution of tarnlift########");
    if (!checkPrivileges()) {
        return printEndingError(RETURN_NO_PRIVILEGES, "insufficient privileges");
    }
    return RETURN_SUCCEEDED;
}

int runTarnlift(int argc, char** argv, PortWork workOnPort) {
    printVersion();

    int parseResult = parseCommandLine(argc, argv);
    if (parseResult != 0 || runOptions.help) {
        printHelp();
        return parseResult;
    }
    setDirectoryPaths();
    setTempFile();
    if (!validateSwitches()) {
        return printEndingError(RETURN_ALL_FAILED, "invalid switch options");
    }
    if (runOptions.imageVersion) {
        return showImageVersion(runOptions.imageVersionFile);
    }

    int selectionFault = openFwMatrix();
    if (selectionFault == 0 && !isQueryOnly()) {
        verifyFWmatrixEntries();
    }
    if (selectionFault == 0) {
        selectionFault = discoverAutoFirmware();
    }
    if (selectionFault != 0) {
        return selectionFault;
    }
    printDbg("\n[Executing listattr command]\n");
    makeHbaList();
    if (gHbaCount == 0) {
        return printEndingError(RETURN_NO_ADAPTERS, "no supported Velmar HBAs found");
    }
    printHbaList();

    const char* reportKind = isQueryOnly() ? "Inventory" : "Execution";
    beginReport(reportKind);
    if (runOptions.downloadRequested) {
        createTarnliftRegKey(argv[0]);
    }
    workOnPorts(workOnPort);
    ReturnCode returnCode = closeReport();
    endReport(reportKind);
    return returnCode;
}
