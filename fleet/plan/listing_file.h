// A saved listing: the text that the adapter utility printed on a server for listattr. It may hold anything at all.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace fleet {

// Reads the listing in `file` into `listing`: the lines from the first port on, each with a line feed. UTF-16, CR LF and
// lines of other programs before the first port are understood. On false the reason says what is wrong with the file,
// with the line where there is one.
bool readListingFile(const std::filesystem::path& file, std::string& listing, std::string& reason);

// The same for the text of a file, in UTF-8.
bool readListing(std::string_view text, std::string& listing, std::string& reason);

// The text of an adapters.txt that makes the simulated utility print exactly this listing, whatever its lines hold, and
// record its calls in the file `calls`. It has no port to which anything could be downloaded.
std::string adaptersFileOf(std::string_view listing, std::string_view calls);

}  // namespace fleet
