// The start and the end of a run's state.
#pragma once

// Brings options, counters and settings back to their start. Lists and open files are the business of cleanup; the paths
// are set anew by each run.
void initGlobals();

// Releases all that the run holds, and ends its output with a line feed. Called once on every road behind the parsing of
// the switches.
void cleanup();
