#include "records/hba_list.h"

#include <cstdlib>
#include <cstring>

#include "base/text.h"
#include "output/output.h"
#include "records/adapter_families.h"
#include "records/clu_image.h"
#include "records/run_counters.h"

HbaRecord* gHbaList = nullptr;
uint16_t gHbaCount = 0;

// The record at the tail, so that a long listing costs no walk for each port.
static HbaRecord* hbaListTail = nullptr;

static void linkAtTail(HbaRecord* hba) {
    hba->prev = hbaListTail;
    if (hbaListTail != nullptr) {
        hbaListTail->next = hba;
    } else {
        gHbaList = hba;
    }
    hbaListTail = hba;
}

static void linkAtHead(HbaRecord* hba) {
    hba->next = gHbaList;
    if (gHbaList != nullptr) {
        gHbaList->prev = hba;
    } else {
        hbaListTail = hba;
    }
    gHbaList = hba;
}

HbaRecord* allocHba(uint32_t append) {
    gHbaCount++;
    HbaRecord* hba = static_cast<HbaRecord*>(calloc(1, sizeof(HbaRecord)));
    if (hba == nullptr) {
        return nullptr;
    }
    if (append == 1) {
        linkAtTail(hba);
    } else {
        linkAtHead(hba);
    }
    hba->adapterNumber = gHbaCount;
    hba->sfj = -1;
    return hba;
}

void freeHbaList() {
    while (gHbaList != nullptr) {
        HbaRecord* next = gHbaList->next;
        free(gHbaList);
        gHbaList = next;
    }
    hbaListTail = nullptr;
}

int markHbaKnown() {
    runCounters.knownHbaCount++;
    return 0;
}

int isInvalidHba(const HbaRecord* hba) {
    const struct {
        const char* field;
        const char* unusable;
    } tests[] = {
        {hba->portWwn, "00:00:00:00:00:00:00:00"},
        {hba->portWwn, "N/A"},
        {hba->portWwn, "NONE"},
        {hba->model, "UNKNOWN_MODEL"},
        {hba->model, "Unknown"},
        {hba->fwVersion, "N/A"},
        {hba->bcVersion, "N/A"},
        {hba->fwVersion, "NONE"},
    };
    for (const auto& test : tests) {
        if (strcmp(test.field, test.unusable) == 0) {
            return 1;
        }
    }
    return 0;
}

int isGrpAdapter(const HbaRecord* hba) {
    return familyOfDevice(hba->deviceId) != nullptr ? 1 : 0;
}

int isSameBoard(const HbaRecord* a, const HbaRecord* b) {
    return a->busNumber == b->busNumber && a->domain == b->domain &&
           equalsIgnoringCase(a->serialNumber, b->serialNumber);
}

static void dumpText(const char* label, const char* value) {
    printDbg("%-20s : %s\n", label, value);
}

static void dumpNumber(const char* label, int64_t value) {
    printDbg("%-20s : %d\n", label, static_cast<int32_t>(value));
}

static void dumpHex(const char* label, uint32_t value) {
    printDbg("%-20s : %X\n", label, value);
}

static void dumpId(const char* label, uint32_t value) {
    printDbg("%-20s : %04X\n", label, value);
}

static void dumpHba(const HbaRecord* hba) {
    dumpNumber("HBA", hba->adapterNumber);
    dumpText("Serial Number", hba->serialNumber);
    dumpText("Model", hba->model);
    dumpText("FW Version", hba->fwVersion);
    dumpText("Boot Version", hba->bcVersion);
    dumpNumber("Boot Enabled", hba->bootEnabled);
    dumpText("Port WWN", hba->portWwn);
    dumpText("Function Type", hba->portType);
    dumpHex("PCI Domain Number", hba->domain);
    dumpHex("PCI Bus Number", hba->busNumber);
    dumpHex("PCI Dev Number", hba->devNumber);
    dumpHex("PCI Fun Number", hba->funNumber);
    dumpId("Device ID", hba->deviceId);
    dumpId("Vendor ID", hba->vendorId);
    dumpId("Sub Device ID", hba->subDeviceId);
    dumpId("Sub Vendor ID", hba->subVendorId);
    dumpNumber("VPD Model", hba->vpdModel);
    dumpNumber("Multi Channel", hba->multiChannel);
    dumpHex("RevID", hba->fwImage.asicRevisionId);
    dumpNumber("SFJ", hba->sfj);
    dumpText("FW Status", hba->fwStatus);
    dumpText("FWmatrix Type", hba->fwMatrixType);
    printCLUImageType(hba->fwImage.imageType);
}

void printHbaList() {
    if (dbgFile == nullptr) {
        return;
    }
    printDbg("\n[Discovered HBA List]\n");
    printDbg("gHbaCount     = %d\n", gHbaCount);
    printDbg("knownHbaCount = %d\n\n", runCounters.knownHbaCount);
    for (const HbaRecord* hba = gHbaList; hba != nullptr; hba = hba->next) {
        dumpHba(hba);
        printDbg("\n");
    }
    printDbg("\n");
}
