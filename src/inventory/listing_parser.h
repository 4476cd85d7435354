// Turns the adapter utility's attribute listing into the port list. The listing is the only source of facts about the
// adapters, and nothing in it is trusted: what is missing leaves a default, what is too long is cut.
#pragma once

#include <cstddef>

#include "records/hba_record.h"

enum ListingStatus { LISTING_READ = 0, LISTING_FAILED = 4 };

// Runs the listing and fills gHbaList. Returns LISTING_READ when the text was parsed, even if it held no port.
int makeHbaList();

// Parses a whole listing, a NUL-terminated text: counts anew in gHbaCount and puts the ports behind those of gHbaList.
void parseListing(const char* text);

// Reads the value of the first `key` in `block`: what stands behind the next `separator` and blanks, up to a line end,
// blank, comma, semicolon or the end; a value longer than `out` is cut. Returns 0 when there was one, else 1 with "N/A".
int getAttribute(const char* block, const char* key, char* out, size_t size, char separator);

// Fills what follows from the port's device ID and versions.
void encodeAndUpdateFCVersion(HbaRecord* hba);
