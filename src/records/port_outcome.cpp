#include "records/port_outcome.h"

const char* const DownloadStatusMessages[OUTCOME_COUNT] = {
    "Download succeeded.",
    "Download succeeded. A reboot is required to activate new firmware.",
    "Download not needed.",
    "Download failed.",
    "Download failed. Adaper reset failed.",
    "Download failed. Image decode failed.",
    "Download failed. Unknown image file extension.",
    "Download failed. SysFS flash_fw not found.",
    "Download failed. SysFS image copy failed.",
    "Adapter skipped. Unsupported firmware version.",
    "Adapter skipped. Unknown firmware version.",
    "Adapter skipped. Unsupported boot code version.",
    "Adapter skipped. Unknown boot code version.",
    "Adapter skipped. No compatible firmware found.",
    "Adapter skipped. No compatible boot code found.",
    "Adapter skipped. Unsupported adapter.",
    "Adapter skipped. No fwmatrix.txt model entry.",
    "Download preview succeeded.",
    "Download preview failed.",
    "Download failed. Unable to find image file specified in fwmatrix.txt.",
    "Download failed. Unable to open image file.",
    "Download failed. Unable to allocate memory.",
    "Download succeeded. This special firmware release requires the firmware download process to be performed twice. "
    "You must reboot the system and download the same firmware file again to complete the download process.",
    "Download failed. Download failed due to missing digital signature in firmware file. Please contact customer "
    "support for additional help.",
    "Download failed. Download failed due to invalid firmware digital signature. Please contact customer support for "
    "additional help.",
    "Download failed. Invalid fwmatrix.txt image entry.",
    "Download failed. Invalid firmware file.",
    "Download failed. Invalid bootcode file.",
    "Download failed. This firmware version is not supported on this board model.",
    "Download succeeded. The new firmware is activated. Some features require an optional reboot. Refer to the "
    "Adapter's Firmware and Boot Code Release Notes for details.",
    "Download failed. Firmware downloads have been prohibited by a system configuration setting.",
    "Download failed. Incompatible image.",
    "Download failed. Firmware image incompatible with flash part.",
    "Download failed. Incorrect ASIC version.",
    "Download failed. Incompatible object - general error.",
    "Download failed. Incompatible object.",
    "Download failed. Invalid firmware file length.",
};

const char* activationSentence(uint8_t fwDownloadStatus) {
    switch (fwDownloadStatus) {
    case OUTCOME_REBOOT_REQUIRED:
        return REBOOT_TO_ACTIVATE_TEXT;
    case OUTCOME_ACTIVATED:
        return ACTIVATED_TEXT;
    default:
        return nullptr;
    }
}
