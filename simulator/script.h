// The options of the lines that script the utility's behaviour: reads them, and describes them for the help.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace simulator {

// How a call differs from that of a working utility. What is not set is as without a script.
struct Script {
    std::optional<uint32_t> exitStatus;
    std::optional<std::string> reply;    // without the line end that is printed after it
    std::optional<std::string> version;  // stored instead of the image's
    std::optional<uint32_t> delay;       // milliseconds
    std::optional<uint32_t> fill;        // bytes of filler before the output
    std::optional<uint32_t> fillAfter;   // bytes of filler after it
    std::optional<uint32_t> cut;         // the listing stops after this many bytes
    bool noLineEnd = false;
    bool lie = false;
    bool crash = false;
    bool crashAfter = false;
};

// The calls that an option is allowed for.
enum ScriptUse : unsigned { FOR_DOWNLOAD = 1, FOR_LISTING = 2 };

// Reads options such as 'exit=80 reply="NO Error" lie'. Each must be one that the use allows. On false the
// message says what is wrong, and the script may be incomplete.
bool readScript(std::string_view options, ScriptUse use, Script& script, std::string& message);

// One line of help for each option that the use allows.
std::string describeOptions(ScriptUse use);

// `size` bytes of filler: lines of dots, each with a line end. It never holds a letter.
std::string makeFiller(size_t size);

}  // namespace simulator
