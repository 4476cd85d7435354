// The help text.
#pragma once

// Prints the banner, the usage and the description of the switches.
void printHelp();
