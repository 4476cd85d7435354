// The two sentences on the activation of new firmware, which the listing, the rows and the summary share.
#pragma once

inline constexpr char REBOOT_TO_ACTIVATE_TEXT[] = "Reboot the system to activate new firmware.";
inline constexpr char ACTIVATED_TEXT[] =
    "The new firmware is activated. Some features require an optional reboot. Refer to the Adapter's Firmware and Boot "
    "Code Release Notes for details.";
