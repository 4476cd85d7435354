#include "report/port_report.h"

#include "base/text.h"
#include "output/output.h"
#include "records/fixed_words.h"
#include "report/xml_report.h"
#include "settings/program_names.h"
#include "settings/run_options.h"

void beginReport(const char* kind) {
    if (runOptions.xml) {
        xmlWriteProlog();
        xmlWriteRootOpen(kind);
    }
}

void endReport(const char* kind) {
    if (runOptions.xml) {
        xmlWriteRootClose(kind);
    }
}

void printQueryRow(const HbaRecord* hba, const char* imageName, RowKind rowKind) {
    if (runOptions.xml) {
        xmlWriteDeviceInventory(hba);
    } else {
        printHbaRow(hba, imageName, rowKind);
    }
}

static void printHbaRowConsole(const HbaRecord* hba, const char* imageName, RowKind rowKind) {
    if (!runOptions.xml) {
        printHbaRow(hba, imageName, rowKind);
    }
}

void beginPort(const HbaRecord* hba) {
    if (runOptions.xml) {
        xmlWriteDeviceOpen(hba);
    }
}

void endPort() {
    if (runOptions.xml) {
        xmlCloseTag("Device", 1);
    }
}

static void writeNoImage(const HbaRecord* hba, RowKind rowKind) {
    printHbaRowConsole(hba, WORD_NONE, rowKind);
    if (runOptions.xml) {
        xmlWriteNoImageApplication(hba);
    }
}

void reportNoFirmwareVersion(const HbaRecord* hba) {
    writeNoImage(hba, ROW_PORT);
}

void reportNoImage(const HbaRecord* hba) {
    writeNoImage(hba, ROW_NO_SUPPORTED_IMAGE);
}

void beginFirmware(const HbaRecord* hba) {
    if (runOptions.xml) {
        xmlWriteApplicationOpen(hba);
    }
}

void endFirmware() {
    if (runOptions.xml) {
        xmlCloseTag("Application", 2);
    }
}

void reportImage(const HbaRecord* hba, const CLUImage* image, const char* shownName) {
    printHbaRowConsole(hba, shownName, ROW_SUPPORTED_IMAGE);
    if (runOptions.xml) {
        xmlWriteSupportedImage(image->decodedVersion, image->filename);
    }
}

void reportNoCandidate(const HbaRecord* hba, const char* currentVersion) {
    printHbaRowConsole(hba, WORD_NONE, ROW_NO_SUPPORTED_IMAGE);
    if (runOptions.xml) {
        xmlWriteSupportedImage(WORD_NONE, WORD_NONE);
        xmlWriteVersionChange("false", currentVersion, WORD_NONE, hba->fwDownloadStatus);
    }
}

void reportNotNeeded(const HbaRecord* hba, const CLUImage* image) {
    reportDownload(hba, image, false);
    if (runOptions.verbose) {
        printUpdateNotRequired(hba, "firmware");
    }
}

void reportDownload(const HbaRecord* hba, const CLUImage* image, bool succeeded) {
    if (runOptions.xml) {
        xmlWriteVersionChange(succeeded ? "true" : "false", hba->fwVersion, image->decodedVersion,
                              hba->fwDownloadStatus);
    }
}

void reportDownloadRow(const HbaRecord* hba) {
    if (!runOptions.xml) {
        printDownloadRow(hba);
    }
}

void reportUnopenedImage(HbaRecord* hba) {
    if (!runOptions.xml) {
        appendText(hba->downloadRow, sizeof hba->downloadRow, "Error: unable to open firmware image!\n");
        printOut("%s", hba->downloadRow);
    }
}

void reportClosing(ReturnCode code, const char* lineFeeds, const char* console, const char* document,
                   uint16_t twiceCount) {
    if (runOptions.xml) {
        xmlWriteMessage(code, document, twiceCount);
        return;
    }
    printOut("%s%s: %s - Return Code=%d\n\n", lineFeeds, appName, console, code);
    if (twiceCount != 0) {
        printOut("%d adapter%s include a special firmware release that requires the firmware\n"
                 "download process to be performed twice. Reboot the system and run tarnlift\n"
                 "again using the /f or /rewrite option to download the same firmware file again.\n",
                 twiceCount, twiceCount > 1 ? "s" : "");
    }
}

void reportReboot(bool required) {
    if (runOptions.xml) {
        xmlWriteRebootRequired(required ? 1 : 0, 1);
    } else if (required) {
        printOut("Please reboot system to activate new firmware.\n");
    }
}
