#include "plan/listing_file.h"

#include <algorithm>
#include <array>

#include "files.h"
#include "text.h"

using namespace fleet;

namespace {

constexpr std::string_view PORT_KEY = "HBA";
constexpr size_t LONGEST_LISTING = size_t{1024} * 1024;  // a server with 64 ports has about 40 kB
constexpr size_t LONGEST_QUOTE = 60;

// Lines with these keys before the first port show that the start of the listing is missing.
constexpr std::array<std::string_view, 4> keysOfAPort = {"Port WWN", "Model", "Serial Number", "FW Version"};

}  // namespace

static bool refuse(std::string& reason, std::string text) {
    reason = std::move(text);
    return false;
}

static std::string shownLine(std::string_view line) {
    return cutText(shownText(trimmed(line)), LONGEST_QUOTE);
}

static bool isControl(char c) {
    return static_cast<uint8_t>(c) < 0x20 && c != '\t';
}

static bool hasColon(std::string_view line) {
    return line.find(':') != std::string_view::npos;
}

static std::string_view keyOf(std::string_view line) {
    return trimmed(line.substr(0, line.find(':')));
}

static bool isPortStart(std::string_view line) {
    return hasColon(line) && keyOf(line) == PORT_KEY;
}

static bool hasPortNumber(std::string_view line) {
    return readNumber(trimmed(line.substr(line.find(':') + 1)), INT32_MIN, UINT32_MAX).has_value();
}

// Why no line, in the listing or before it, may be like this one. Empty when it may.
static std::string faultOfAnyLine(std::string_view line) {
    if (std::any_of(line.begin(), line.end(), isControl)) {
        return "holds a control character";
    }
    return line.starts_with('@') ? "begins with '@', which belongs into a rehearsal's adapters.txt" : "";
}

static std::string faultOfBanner(std::string_view line) {
    const bool isOfAPort =
        hasColon(line) && std::find(keysOfAPort.begin(), keysOfAPort.end(), keyOf(line)) != keysOfAPort.end();
    return isOfAPort ? "is before the first 'HBA: NUMBER': " + shownLine(line) : "";
}

static std::string faultOfPortLine(std::string_view line) {
    if (isPortStart(line) && !hasPortNumber(line)) {
        return "has no port's number after 'HBA:': " + shownLine(line);
    }
    const bool isOther = !trimmed(line).empty() && (!hasColon(line) || keyOf(line).empty());
    return isOther ? "is not 'Key: value': " + shownLine(line) : "";
}

// Appends the line to the listing once the first port has begun. Returns what is wrong with it, or nothing.
static std::string readLine(std::string_view line, std::string& listing) {
    std::string fault = faultOfAnyLine(line);
    if (!fault.empty() || line.starts_with('#')) {
        return fault;
    }
    if (listing.empty() && !isPortStart(line)) {
        return faultOfBanner(line);
    }
    listing.append(line).append("\n");
    return faultOfPortLine(line);
}

bool fleet::readListing(std::string_view text, std::string& listing, std::string& reason) {
    listing.clear();
    if (text.size() > LONGEST_LISTING) {
        return refuse(reason, "the listing is too large: more than 1 MiB");
    }
    if (trimmed(text).empty()) {
        return refuse(reason, "the listing is empty: it was not saved, or the server has no adapters");
    }
    size_t number = 0;
    for (std::string_view rest = text; !rest.empty();) {
        number++;
        const std::string fault = readLine(takeLine(rest), listing);
        if (!fault.empty()) {
            return refuse(reason, "line " + std::to_string(number) + " of the listing " + fault);
        }
    }
    if (listing.empty()) {
        std::string_view start = trimmed(text);
        return refuse(reason, "the listing has no line 'HBA: NUMBER'; it begins with: " + shownLine(takeLine(start)));
    }
    return true;
}

bool fleet::readListingFile(const std::filesystem::path& file, std::string& listing, std::string& reason) {
    const FileContent content = readTextFile(file);
    return content.fault.empty() ? readListing(content.bytes, listing, reason)
                                 : refuse(reason, "the listing " + content.fault);
}

std::string fleet::adaptersFileOf(std::string_view listing, std::string_view calls) {
    std::string text = "@calls ";
    text.append(calls).append("\n");
    for (std::string_view rest = listing; !rest.empty();) {
        text.append("@print ").append(takeLine(rest)).append("\n");
    }
    return text;
}
