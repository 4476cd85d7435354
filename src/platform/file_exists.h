// The test for a file, the same on every system.
#pragma once

// Looks for `name` in `directory`, which must end in a separator. Returns 0 if it is there, 1 if not; a
// joined text that is too long for the search is not found. `name` may hold the wildcards of a directory search.
int fileExists(const char* name, const char* directory);
