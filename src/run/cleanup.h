// The start and the end of a run's state.
#pragma once

// Brings every global of a run back to its start.
void initGlobals();

// Releases all that the run holds, and ends its output with a line feed. Called once on every road behind the parsing of
// the switches.
void cleanup();
