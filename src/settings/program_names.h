// The fixed names of the program, the adapter utility and the product.
#pragma once

inline constexpr char appName[] = "tarnlift.exe";            // begins nearly every message
inline constexpr char cliUtilName[] = "winhbcfg.exe";        // the adapter utility, in binPath
inline constexpr char offlineAppName[] = "tarnliftOffline";  // the product name in the help's banner
