#include "records/hba_list.h"

#include <cstdlib>

#include "output/output.h"
#include "records/run_counters.h"

HbaRecord* gHbaList = nullptr;
uint16_t gHbaCount = 0;

// The record at the tail, so that appending needs no walk.
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

void printHbaList() {
    if (dbgFile == nullptr) {
        return;
    }
    printDbg("\n[Discovered HBA List]\n");
    printDbg("gHbaCount     = %d\n", gHbaCount);
    printDbg("knownHbaCount = %d\n\n", runCounters.knownHbaCount);
    for (const HbaRecord* hba = gHbaList; hba != nullptr; hba = hba->next) {
        printHba(hba);
        printDbg("\n");
    }
    printDbg("\n");
}
