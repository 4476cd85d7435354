// The start and the end of a run's state.
#pragma once

// Resets options, counters and settings. cleanup() frees the lists and closes the files; each run sets the paths again.
void initGlobals();

// Releases all that the run holds, and ends its output with a line feed. Called exactly once on every way out after the
// switches were parsed.
void cleanup();
