#include "records/hba_record.h"

#include <cstring>

#include "base/text.h"
#include "output/trace_fields.h"
#include "records/adapter_families.h"
#include "records/fixed_words.h"

int isTamborAdapter(const HbaRecord* hba) {
    return isTamborDevice(hba->deviceId);
}

int isCoralAdapter(const HbaRecord* hba) {
    return isCoralDevice(hba->deviceId);
}

int isGrpAdapter(const HbaRecord* hba) {
    return isTamborAdapter(hba) || isCoralAdapter(hba) ? 1 : 0;
}

int isInvalidHba(const HbaRecord* hba) {
    const struct {
        const char* field;
        const char* unusable;
    } tests[] = {
        {hba->portWwn, "00:00:00:00:00:00:00:00"},
        {hba->portWwn, WORD_NOT_AVAILABLE},
        {hba->portWwn, WORD_NONE},
        {hba->model, "UNKNOWN_MODEL"},
        {hba->model, "Unknown"},
        {hba->fwVersion, WORD_NOT_AVAILABLE},
        {hba->bcVersion, WORD_NOT_AVAILABLE},
        {hba->fwVersion, WORD_NONE},
    };
    for (const auto& test : tests) {
        if (strcmp(test.field, test.unusable) == 0) {
            return 1;
        }
    }
    return 0;
}

bool isSameBoard(const HbaRecord* a, const HbaRecord* b) {
    return a->busNumber == b->busNumber && a->domain == b->domain &&
           equalsIgnoringCase(a->serialNumber, b->serialNumber);
}

void printHba(const HbaRecord* hba) {
    traceNumber("HBA", hba->adapterNumber);
    traceText("Serial Number", hba->serialNumber);
    traceText("Model", hba->model);
    traceText("FW Version", hba->fwVersion);
    traceText("Boot Version", hba->bcVersion);
    traceNumber("Boot Enabled", hba->bootEnabled);
    traceText("Port WWN", hba->portWwn);
    traceText("Function Type", hba->portType);
    traceHex("PCI Domain Number", hba->domain);
    traceHex("PCI Bus Number", hba->busNumber);
    traceHex("PCI Dev Number", hba->devNumber);
    traceHex("PCI Fun Number", hba->funNumber);
    traceId("Device ID", hba->deviceId);
    traceId("Vendor ID", hba->vendorId);
    traceId("Sub Device ID", hba->subDeviceId);
    traceId("Sub Vendor ID", hba->subVendorId);
    traceNumber("VPD Model", hba->vpdModel);
    traceNumber("Multi Channel", hba->multiChannel);
    traceHex("RevID", hba->fwImage.asicRevisionId);
    traceNumber("SFJ", hba->sfj);
    traceText("FW Status", hba->fwStatus);
    traceText("FWmatrix Type", hba->fwMatrixType);
    printCLUImageType(hba->fwImage.imageType);
}
