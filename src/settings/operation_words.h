// The words for the four operations that download firmware.
#pragma once

struct OperationWords {
    const char* name;         // null for an operation that has none
    const char* plural;       // in the closing sentence
    const char* notRequired;  // reason of an event
};

// The words of the operation that the switches select. At most one is set once they are validated.
const OperationWords& selectedOperation();
