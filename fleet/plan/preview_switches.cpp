#include "plan/preview_switches.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "text.h"

using namespace fleet;
namespace fs = std::filesystem;

namespace {

enum class Kind {
    OPERATION,      // one of them decides what the plan is about
    FORCE,          // an operation that beats the others
    OPTION,         // goes with an operation
    ALREADY_THERE,  // every preview has it
    IMAGE_DIRECTORY,
    TABLE_DIRECTORY,
    REFUSED,
};

struct Row {
    Kind kind;
    std::array<std::string_view, 4> spellings;  // the first one is passed on
    std::string_view why;                       // of a refusal
};

constexpr std::array<Row, 16> knownSwitches = {{
    {Kind::OPERATION, {"update", "up", "u"}, {}},
    {Kind::OPERATION, {"downgrade", "down", "d", "g"}, {}},
    {Kind::OPERATION, {"rewrite", "e"}, {}},
    {Kind::FORCE, {"ff", "f"}, {}},
    {Kind::OPTION, {"auto", "a"}, {}},
    {Kind::OPTION, {"vpd"}, {}},
    {Kind::OPTION, {"query", "q"}, {}},
    {Kind::ALREADY_THERE, {"preview", "p"}, {}},
    {Kind::ALREADY_THERE, {"xml"}, {}},
    {Kind::IMAGE_DIRECTORY, {"id"}, {}},
    {Kind::TABLE_DIRECTORY, {"fmd"}, {}},
    {Kind::REFUSED, {"iv"}, "it shows the version of one file and plans nothing"},
    {Kind::REFUSED, {"ramdrive"}, "each run has a temporary directory of its own"},
    {Kind::REFUSED, {"s", "verbose", "v"}, "the plan needs the report on standard output, and nothing else there"},
    {Kind::REFUSED, {"log", "l", "xv"}, "a plan writes its results to DIR alone"},
    {Kind::REFUSED, {"?", "help", "h"}, "run 'tarnlift.exe /?' to see its help"},
}};

// The updater cuts longer directories, or the paths of the files in them.
constexpr size_t LONGEST_DIRECTORY = 200;

// It ends a value at an equals sign, opens no path with the others, and on Linux turns a backslash into a slash.
#ifdef _WIN32
constexpr std::string_view WRONG_IN_DIRECTORY = "=\"*<>?|";
#else
constexpr std::string_view WRONG_IN_DIRECTORY = "=\"*<>?|\\";
#endif

// What the switches have asked for so far.
struct Wishes {
    std::vector<std::string_view> operations;
    bool force = false;
    std::vector<std::string_view> options;
    std::string images;
    std::string table;
};

}  // namespace

static bool refuse(std::string& problem, std::string text) {
    problem = std::move(text);
    return false;
}

static const Row* findSwitch(const std::string& argument) {
    if (!argument.starts_with('/')) {
        return nullptr;
    }
    const std::string word = lowerCase(std::string_view(argument).substr(1, argument.find('=') - 1));
    for (const Row& row : knownSwitches) {
        if (!word.empty() && std::find(row.spellings.begin(), row.spellings.end(), word) != row.spellings.end()) {
            return &row;
        }
    }
    return nullptr;
}

static bool readSwitch(const std::string& argument, Wishes& wishes, std::string& problem) {
    const Row* row = findSwitch(argument);
    if (row == nullptr) {
        return refuse(problem, "'" + argument + "' is no switch of tarnlift.exe that a plan knows");
    }
    if (row->kind == Kind::REFUSED) {
        return refuse(problem, "'" + argument + "' cannot be used in a plan: " + std::string(row->why));
    }
    const size_t equals = argument.find('=');
    const bool takesValue = row->kind == Kind::IMAGE_DIRECTORY || row->kind == Kind::TABLE_DIRECTORY;
    if (takesValue != (equals != std::string::npos && equals + 1 < argument.size())) {
        return refuse(problem, "'" + argument + (takesValue ? "' needs a directory after '='" : "' takes no value"));
    }
    if (row->kind == Kind::OPERATION) {
        wishes.operations.push_back(row->spellings.front());
    } else if (row->kind == Kind::FORCE) {
        wishes.force = true;
    } else if (row->kind == Kind::OPTION) {
        wishes.options.push_back(row->spellings.front());
    } else if (takesValue) {
        (row->kind == Kind::IMAGE_DIRECTORY ? wishes.images : wishes.table) = argument.substr(equals + 1);
    }
    return true;
}

static bool chooseOperation(Wishes& wishes, std::string& problem) {
    if (wishes.force) {
        wishes.operations = {"ff"};
    }
    if (wishes.operations.empty()) {
        return refuse(problem, "a plan needs one of the switches /update, /rewrite, /downgrade and /ff after '--'");
    }
    if (std::count(wishes.operations.begin(), wishes.operations.end(), wishes.operations.front()) !=
        static_cast<ptrdiff_t>(wishes.operations.size())) {
        return refuse(problem, "only one of /update, /rewrite and /downgrade can be planned at a time");
    }
    return true;
}

// The directory that the user names, or the default, as an absolute path that the updater can work with.
static bool resolveDirectory(std::string_view word, std::string named, const fs::path& defaultDirectory,
                             std::string& argument, std::string& problem) {
#ifndef _WIN32
    std::replace(named.begin(), named.end(), '\\', '/');
#endif
    std::error_code failure;
    fs::path directory = named.empty() ? defaultDirectory : fs::absolute(pathOf(named), failure).lexically_normal();
    if (!directory.has_filename() && directory.has_relative_path()) {
        directory = directory.parent_path();  // without the separator at its end
    }
    const std::string text = textOf(directory);
    argument = std::string("/").append(word).append("=");
    const std::string shown = argument + (named.empty() ? text : named);
    if (!fs::is_directory(directory, failure)) {
        return refuse(problem, "'" + shown + "': there is no directory " + text);
    }
    if (text.size() > LONGEST_DIRECTORY) {
        return refuse(problem, "'" + shown + "': tarnlift.exe cannot work with paths of more than " +
                                   std::to_string(LONGEST_DIRECTORY) + " characters");
    }
    if (text.find_first_of(WRONG_IN_DIRECTORY) != std::string::npos) {
        return refuse(problem, "'" + shown + "': tarnlift.exe cannot work with a path that holds one of " +
                                   std::string(WRONG_IN_DIRECTORY));
    }
    argument += text;
    return true;
}

bool fleet::readPreviewSwitches(std::span<const std::string> switches, const fs::path& defaultDirectory,
                                std::vector<std::string>& arguments, std::string& problem) {
    Wishes wishes;
    for (const std::string& argument : switches) {
        if (!readSwitch(argument, wishes, problem)) {
            return false;
        }
    }
    std::string images;
    std::string table;
    if (!chooseOperation(wishes, problem) ||
        !resolveDirectory("id", wishes.images, defaultDirectory, images, problem) ||
        !resolveDirectory("fmd", wishes.table, defaultDirectory, table, problem)) {
        return false;
    }
    arguments = {"/p", "/xml"};
    wishes.options.insert(wishes.options.begin(), wishes.operations.front());
    for (std::string_view word : wishes.options) {
        arguments.push_back(std::string("/").append(word));
    }
    arguments.insert(arguments.end(), {images, table});
    return true;
}
