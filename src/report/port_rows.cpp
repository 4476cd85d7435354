#include "report/port_rows.h"

#include <cstring>

#include "base/text.h"
#include "output/output.h"
#include "platform/platform.h"
#include "records/fixed_words.h"
#include "records/port_outcome.h"
#include "settings/operation_words.h"
#include "settings/program_names.h"
#include "settings/run_options.h"

static constexpr size_t IMAGE_TEXT_SIZE = 64;
static constexpr size_t ROW_SIZE = 1024;  // more than all fields of a record at their longest
static constexpr size_t TIME_TEXT_SIZE = 64;
static constexpr size_t DOWNLOAD_ROW_HEAD_SIZE = 321;
static constexpr size_t VERSION_PREFIX_LENGTH = 2;  // before the version, outside the .grp families

// "N/A" and "NONE" are shown as nothing.
static const char* shownVersion(const char* version) {
    bool hasNothingToShow = strcmp(version, WORD_NOT_AVAILABLE) == 0 || strcmp(version, WORD_NONE) == 0;
    return hasNothingToShow ? "" : version;
}

static void appendBootEnabled(char* row, const HbaRecord* hba) {
    appendFormat(row, ROW_SIZE, ", Boot Enabled=%d", hba->bootEnabled);
}

static void appendFirmwareStatus(char* row, const HbaRecord* hba) {
    if (strcmp(hba->fwStatus, WORD_NOT_AVAILABLE) != 0) {
        appendFormat(row, ROW_SIZE, ", Firmware Status=\"%s\"", hba->fwStatus);
    }
}

static void appendSupportedImage(char* row, const char* imageName) {
    char image[IMAGE_TEXT_SIZE];
    copyText(image, sizeof image, imageName);
    upperCaseInPlace(image);
    appendFormat(row, ROW_SIZE, ", Supported Firmware=%s", image);
}

void printHbaRow(const HbaRecord* hba, const char* imageName, RowKind rowKind) {
    if (!runOptions.query) {
        return;
    }
    char row[ROW_SIZE];
    formatText(row, sizeof row,
               "\nHBA=%s, Port Type=%s, WWN=%s, PCI ID=%04X, VID=%04X, SSID=%04X, SVID=%04X, Firmware=%s, Boot Code=%s",
               hba->model, hba->portType, hba->portWwn, hba->deviceId, hba->vendorId, hba->subDeviceId,
               hba->subVendorId, shownVersion(hba->fwVersion), shownVersion(hba->bcVersion));
    switch (rowKind) {
    case ROW_PORT:
        appendBootEnabled(row, hba);
        appendFirmwareStatus(row, hba);
        appendFormat(row, sizeof row, ", FLASH PART=%s", hba->flashPart);
        break;
    case ROW_SUPPORTED_IMAGE:
        appendSupportedImage(row, imageName);
        appendFirmwareStatus(row, hba);
        appendBootEnabled(row, hba);
        break;
    case ROW_NO_SUPPORTED_IMAGE:
        appendSupportedImage(row, imageName);
        appendBootEnabled(row, hba);
        break;
    }
    printOut("%s", row);
}

static void formatTime(char out[TIME_TEXT_SIZE]) {
    static const char* const days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    LocalTime now;
    if (localTime(&now) != 0) {
        copyText(out, TIME_TEXT_SIZE, "Current time is not available");
        return;
    }
    formatText(out, TIME_TEXT_SIZE, "%s %s %2d %02d:%02d:%02d %d\n", days[now.dayOfWeek], months[now.month - 1],
               now.day, now.hour, now.minute, now.second, now.year);
}

void formatDownloadRow(char* row, const HbaRecord* hba, const char* newVersion, const char* updateWord,
                       const char* oldVersion, const char* imageFile) {
    char time[TIME_TEXT_SIZE];
    formatTime(time);
    if (!isGrpAdapter(hba)) {
        size_t length = strlen(newVersion);
        newVersion += length < VERSION_PREFIX_LENGTH ? length : VERSION_PREFIX_LENGTH;
    }
    formatText(row, DOWNLOAD_ROW_HEAD_SIZE,
               "\n%sHBA=%s, Port Type=%s, WWN=%s,\nUpdate=%s, Image=%s, New=%s, Old=%s, Status=", time, hba->model,
               hba->portType, hba->portWwn, updateWord, imageFile, newVersion, oldVersion);
}

void printDownloadRow(const HbaRecord* hba) {
    printOut("%s", hba->downloadRow);
    const char* sentence = activationSentence(hba->fwDownloadStatus);
    if (sentence != nullptr) {
        printOut(", Firmware Status=\"%s\"", sentence);
    }
    printOut("\n");
}

void printUpdateNotRequired(const HbaRecord* hba, const char* what) {
    const char* operation = selectedOperation().name;
    if (operation != nullptr) {
        printOut("\n%s: A %s %s was not required on HBA: %s\n", appName, what, operation, hba->model);
    }
}
