// Turns the adapter utility's attribute listing into the port list. The listing is the only source of facts about the
// adapters, and nothing in it is trusted: a missing value leaves a default, a long one is cut.
#pragma once

#include <cstddef>

#include "records/hba_record.h"

enum ListingStatus { LISTING_READ = 0, LISTING_FAILED = 4 };

// Runs the listing and fills gHbaList. Returns LISTING_READ when the text was parsed, even if it held no port.
int makeHbaList();

// Parses a whole listing, a NUL-terminated text: restarts gHbaCount and appends the ports to gHbaList.
void parseListing(const char* text);

// Reads the value of the first `key` in `block`: the text after the next `separator` and blanks, up to a line end,
// blank, comma, semicolon or the end; a value longer than `out` is cut. Returns 0 when there was one, else 1 with "N/A".
int getAttribute(const char* block, const char* key, char* out, size_t size, char separator);

// Derives family and version numbers from the port's device ID and versions.
void encodeAndUpdateFCVersion(HbaRecord* hba);
