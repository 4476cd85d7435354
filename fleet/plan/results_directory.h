// The directory that a plan leaves its results in. It never mixes them with those of another run, and holds whole files
// only, whenever the plan ends.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace fleet {

class ResultsDirectory {
public:
    // Accepts a directory that is new, that holds no results, or that holds those of an earlier plan and no others.
    // Changes nothing yet. On false the problem says what is in the way.
    bool open(const std::filesystem::path& path, std::string& problem);

    // Puts a whole file into the directory; the first one replaces the results of an earlier plan. `server` is a part of
    // a file's name. On false the problem says why.
    bool publish(const std::filesystem::path& server, std::string_view extension, std::string_view content,
                 std::string& problem);

    // Marks what was published as the results of a plan. To be called last.
    bool close(std::string& problem);

private:
    bool begin(std::string& problem);

    std::filesystem::path directory;
    std::vector<std::filesystem::path> earlierResults;
    std::string mark;  // what the mark will hold
    bool begun = false;
};

}  // namespace fleet
