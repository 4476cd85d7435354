// One adapter port: its facts from the listing, what selection decided, how the download ended; and the tests on it.
#pragma once

#include <cstdint>

#include "records/clu_image.h"

struct HbaRecord {
    CLUImage fwImage;  // the firmware that the port runs, in the form of a file image
    CLUImage bootImage;
    uint32_t eventKind;       // an EventKind: which event report ends the port's selection
    const char* eventReason;  // for that report; a fixed text, not owned
    uint32_t bootEnabled;
    uint32_t adapterNumber;  // the n= of a download; not the position in the list
    char model[80];
    char fwMatrixType[32];  // the model as fwmatrix.txt names it
    char fwVersion[32];
    char bcVersion[32];
    char portWwn[32];
    char portType[32];
    uint8_t downloadAttempted;  // 1 once executeFwDownload ran for the port
    uint8_t fwDownloadStatus;   // a PortOutcome
    char downloadRow[512];      // the port's rows of the Download Summary
    uint32_t downloadStat;      // a BoardResult, shared by the ports of the board
    uint32_t imageType;         // the family that the port's firmware must have
    uint32_t CNAMajorVer;
    uint32_t CNAMinorVer;
    uint32_t CNAReleaseVer;
    uint32_t CNABuildVer;
    uint32_t multiChannel;
    uint32_t vpdModel;
    char serialNumber[256];  // with busNumber and domain: the board
    uint32_t domain;
    uint32_t busNumber;
    uint32_t devNumber;
    uint32_t funNumber;
    uint32_t deviceId;  // decides the adapter family
    uint32_t vendorId;
    uint32_t subDeviceId;
    uint32_t subVendorId;
    int32_t sfj;         // secure firmware state; the low 8 bits go to every event
    char fwStatus[254];  // on the activation of new firmware, or "N/A"
    char flashPart[18];
    HbaRecord* next;
    HbaRecord* prev;
};

// Return 1 or 0. A .grp adapter is one of either line: its firmware comes in .grp files, and the ports of its board share
// one download.
int isTamborAdapter(const HbaRecord* hba);
int isCoralAdapter(const HbaRecord* hba);
int isGrpAdapter(const HbaRecord* hba);

// Returns 1 when the port's data are unusable, else 0.
int isInvalidHba(const HbaRecord* hba);

// True when the two ports are on one board.
bool isSameBoard(const HbaRecord* a, const HbaRecord* b);

// Traces all fields of the port.
void printHba(const HbaRecord* hba);
