// The options of the lines that script the utility's behaviour: reading them, and the help text on them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace simulator {

// What a call is to do otherwise than a sound utility would. What is not set stays as it is without a script.
struct Script {
    std::optional<uint32_t> exitStatus;
    std::optional<std::string> reply;    // without the line end that is printed behind it
    std::optional<std::string> version;  // to be stored in the place of the image's
    std::optional<uint32_t> delay;       // milliseconds
    std::optional<uint32_t> fill;        // bytes of filler in front of the output
    std::optional<uint32_t> fillAfter;   // bytes of filler behind it
    std::optional<uint32_t> cut;         // the listing stops behind this many bytes
    bool noLineEnd = false;
    bool lie = false;
    bool crash = false;
    bool crashAfter = false;
};

// The calls that an option may stand for.
enum ScriptUse : unsigned { FOR_DOWNLOAD = 1, FOR_LISTING = 2 };

// Reads options such as 'exit=80 reply="NO Error" lie'. Each must be one that the use allows. On false the
// message says what is wrong, and the script may be half filled.
bool readScript(std::string_view options, ScriptUse use, Script& script, std::string& message);

// One line of help for each option that the use allows.
std::string describeOptions(ScriptUse use);

// So many bytes of filler: lines of dots, the last one ended too. It never holds a letter.
std::string makeFiller(size_t size);

}  // namespace simulator
