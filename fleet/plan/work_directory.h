// The directory in which a plan runs the programs, gone when the plan ends.
#pragma once

#include <filesystem>
#include <string>

namespace fleet {

class WorkDirectory {
public:
    WorkDirectory() = default;
    ~WorkDirectory();
    WorkDirectory(const WorkDirectory&) = delete;
    WorkDirectory& operator=(const WorkDirectory&) = delete;

    // Makes it below the first temporary directory whose path the updater can work with. On false the problem says why
    // there is none.
    bool make(std::string& problem);

    [[nodiscard]] const std::filesystem::path& path() const {
        return directory;
    }

private:
    std::filesystem::path directory;
};

}  // namespace fleet
