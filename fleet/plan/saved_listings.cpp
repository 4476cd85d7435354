#include "plan/saved_listings.h"

#include <algorithm>

#include "text.h"

using namespace fleet;
namespace fs = std::filesystem;

namespace {

constexpr std::string_view LISTING_EXTENSION = ".txt";

// In the units of the system. Leaves room for the extension of a result, and of a file that is not whole yet.
constexpr size_t LONGEST_NAME = 220;

}  // namespace

// Why results cannot be named after the listing; empty when they can.
static std::string faultOfName(const fs::path& name) {
    if (lowerCase(textOf(name)).ends_with(".query")) {
        return "NAME.query.xml is the query of a server NAME; give the listing another name";
    }
    return name.native().size() <= LONGEST_NAME ? "" : "the name is too long";
}

static void addListing(const fs::path& file, SavedListings& found) {
    const fs::path::string_type fileName = file.filename().native();
    const fs::path name = fileName.substr(0, fileName.size() - LISTING_EXTENSION.size());
    const std::string fault = faultOfName(name);
    if (fault.empty()) {
        found.servers.push_back({name, file});
    } else {
        found.refused.push_back({textOf(name), fault});
    }
}

static bool isListing(const fs::path& file) {
    const std::string name = lowerCase(textOf(file.filename()));
    return name.size() > LISTING_EXTENSION.size() && name.ends_with(LISTING_EXTENSION);
}

// Of the files a.txt and a.TXT only one can be the server a.
static void refuseDoubles(SavedListings& found) {
    std::vector<PlannedServer> kept;
    for (PlannedServer& server : found.servers) {
        if (!kept.empty() && kept.back().name == server.name) {
            found.refused.push_back({textOf(server.name), "there are two listings of this name"});
        } else {
            kept.push_back(std::move(server));
        }
    }
    found.servers = std::move(kept);
}

bool fleet::findListings(const fs::path& directory, SavedListings& found, std::string& problem) {
    std::error_code failure;
    fs::directory_iterator entries(directory, failure);
    for (const fs::directory_iterator end; !failure && entries != end; entries.increment(failure)) {
        if (isListing(entries->path())) {
            addListing(entries->path(), found);
        }
    }
    if (failure || found.servers.empty()) {
        problem = textOf(directory) + ": " + (failure ? failure.message() : "there is no listing NAME.txt");
        return false;
    }
    std::sort(found.servers.begin(), found.servers.end(), [](const PlannedServer& left, const PlannedServer& right) {
        return left.name != right.name ? left.name < right.name : left.listing < right.listing;
    });
    refuseDoubles(found);
    return true;
}
