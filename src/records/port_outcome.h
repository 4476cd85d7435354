// How a port ended, as a number with a message, and how a download ended for a whole board.
#pragma once

#include <cstddef>
#include <cstdint>

#include "records/hba_record.h"

// HbaRecord::fwDownloadStatus: the index of the message. The XML report and the events have the numbers, too; unused
// numbers keep the later ones in place.
enum PortOutcome : uint8_t {
    OUTCOME_SUCCEEDED = 0,
    OUTCOME_REBOOT_REQUIRED = 1,
    OUTCOME_NOT_NEEDED = 2,
    OUTCOME_FAILED = 3,
    OUTCOME_UNKNOWN_FIRMWARE_VERSION = 10,
    OUTCOME_NO_COMPATIBLE_FIRMWARE = 13,
    OUTCOME_NO_MATRIX_MODEL = 16,
    OUTCOME_PREVIEW_SUCCEEDED = 17,
    OUTCOME_PREVIEW_FAILED = 18,
    OUTCOME_NO_MATRIX_IMAGE = 19,
    OUTCOME_IMAGE_NOT_OPENED = 20,
    OUTCOME_DOWNLOAD_TWICE = 22,
    OUTCOME_NO_SIGNATURE = 23,
    OUTCOME_INVALID_SIGNATURE = 24,
    OUTCOME_INVALID_MATRIX_IMAGE = 25,
    OUTCOME_INVALID_FIRMWARE_FILE = 26,
    OUTCOME_NOT_FOR_BOARD_MODEL = 28,
    OUTCOME_ACTIVATED = 29,
    OUTCOME_PROHIBITED = 30,
    OUTCOME_INCOMPATIBLE_IMAGE = 31,
    OUTCOME_INCOMPATIBLE_FLASH_PART = 32,
    OUTCOME_WRONG_ASIC_VERSION = 33,
    OUTCOME_INCOMPATIBLE_OBJECT_GENERAL = 34,
    OUTCOME_INCOMPATIBLE_OBJECT = 35,
    OUTCOME_INVALID_FILE_LENGTH = 36,
};

inline constexpr size_t OUTCOME_COUNT = 37;

// The two sentences on the activation of new firmware, which the listing, the rows and the summary share.
inline constexpr char REBOOT_TO_ACTIVATE_TEXT[] = "Reboot the system to activate new firmware.";
inline constexpr char ACTIVATED_TEXT[] =
    "The new firmware is activated. Some features require an optional reboot. Refer to the Adapter's Firmware and Boot "
    "Code Release Notes for details.";

extern const char* const DownloadStatusMessages[OUTCOME_COUNT];

// HbaRecord::downloadStat.
enum BoardResult : uint32_t {
    BOARD_NOT_DOWNLOADED = 0,
    BOARD_DOWNLOADED = 1,  // no reboot required; also a preview
    BOARD_FAILED = 2,
    BOARD_REBOOT_REQUIRED = 3,
    BOARD_DOWNLOAD_TWICE = 4,
    BOARD_ACTIVATED = 5,  // a reboot is optional
};

// The sentence on the activation of new firmware that belongs to an outcome, null for most.
const char* activationSentence(uint8_t fwDownloadStatus);
