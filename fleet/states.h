// The states of ports and servers.
#pragma once

#include <span>
#include <string_view>

#include "exit_codes.h"

namespace fleet {

// In order of badness, the worst first.
enum class State {
    FAILED,
    NOT_INSTALLED,
    NO_REPORT,
    WAITING,
    NOT_VERIFIED,
    UPDATED,
    WOULD_UPDATE,
    SKIPPED,
    CURRENT,
    LISTED,
    NO_ADAPTERS,
};

struct StateRow {
    State state;
    std::string_view name;     // in files and messages for programs
    std::string_view word;     // for people
    std::string_view meaning;  // one sentence
    ExitCode exitCode;         // of a command that finds it
};

// All rows, in the order of State.
std::span<const StateRow> stateRows();

const StateRow& rowOf(State state);

// The worse of two states.
inline State worse(State left, State right) {
    return left < right ? left : right;
}

}  // namespace fleet
