// The report of a run, in the words of the run: the only place that chooses between the rows of the console and the XML
// document. Another output form is another branch in each operation here. The texts of /v are the same in every form.
#pragma once

#include "records/clu_image.h"
#include "records/hba_record.h"
#include "report/port_rows.h"
#include "settings/return_codes.h"

// The frame of the whole report. `kind` is "Inventory" for a query-only run, else "Execution".
void beginReport(const char* kind);
void endReport(const char* kind);

// A port of a query-only run. `imageName` and `rowKind` are for the row on the console.
void printQueryRow(const HbaRecord* hba, const char* imageName, RowKind rowKind);

// The frame of a port in every other run.
void beginPort(const HbaRecord* hba);
void endPort();

// The whole firmware part of a port that gets no image: without a firmware version, or by fwmatrix.txt. Its outcome is
// in the record.
void reportNoFirmwareVersion(const HbaRecord* hba);
void reportNoImage(const HbaRecord* hba);

// The frame of a port's firmware part, in which the following operations are called.
void beginFirmware(const HbaRecord* hba);
void endFirmware();

// This image was looked at. `shownName` is its name in the port's row.
void reportImage(const HbaRecord* hba, const CLUImage* image, const char* shownName);

// No image of the firmware directory fits. `currentVersion` is the port's version in the document.
void reportNoCandidate(const HbaRecord* hba, const char* currentVersion);

// The image, which was reported before, is not due. Adds the sentence of /v.
void reportNotNeeded(const HbaRecord* hba, const CLUImage* image);

// How the download of the image ended, by the outcome in the record; `succeeded` includes a preview.
void reportDownload(const HbaRecord* hba, const CLUImage* image, bool succeeded);

// The finished row of a download. The row of an image that could not be opened gets its error on the console only.
void reportDownloadRow(const HbaRecord* hba);
void reportUnopenedImage(HbaRecord* hba);

// The closing sentence, as `console` and `document` say it, after `lineFeeds` on the console. A `twiceCount` above 0
// adds the advice to download a special release a second time.
void reportClosing(ReturnCode code, const char* lineFeeds, const char* console, const char* document,
                   uint16_t twiceCount);

// Whether a reboot is needed to activate the firmware; the console says it only if so.
void reportReboot(bool required);
