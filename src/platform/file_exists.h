// The test for a file, above the seam: the same on every system.
#pragma once

// Looks for `name` in `directory`, which must end in a separator. 0 when it is there, 1 when not; a joined
// text that does not fit the search is not found. `name` may hold the wildcards of a directory search.
int fileExists(const char* name, const char* directory);
