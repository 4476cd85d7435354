// fwmatrix.txt, the operator's table: which firmware file belongs on which adapter model. It stays open for the run and
// is read from its start for each port.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "records/hba_record.h"

inline constexpr size_t MATRIX_TOKEN_SIZE = 32;

// A model that the entry check knows. Being listed has no effect on what a port gets; only modelName is read.
struct FwMatrixModelEntry {
    char modelName[32];
    char shortCode[8];
    uint32_t deviceId;
    uint32_t valueA;
    uint32_t valueB;
};

inline constexpr size_t MATRIX_MODEL_COUNT = 16;
extern const FwMatrixModelEntry FwMatrixModelTable[MATRIX_MODEL_COUNT];

// The open table, null under /auto. Closed by run/cleanup.
extern FILE* gFwMatrixFile;

// Returns 0 when the table is open or not needed, RETURN_ALL_FAILED after a message when it cannot be opened.
int openFwMatrix();

// Tells the operator which entries are for a model that FwMatrixModelTable does not have. Ends at a read error. The
// result of the run does not depend on it.
void verifyFWmatrixEntries();

// Looks the port's model up. Both outputs have MATRIX_TOKEN_SIZE bytes and get a file name, WORD_NONE without one, or
// WORD_INVALID_FILE for one that is too long; the last line for the model decides. Returns 1 when there is a line for it,
// else 0. A table that cannot be read to its end gives 1 and WORD_INVALID_FILE.
int getFwMatrixMatch(const HbaRecord* hba, char* fwFile, char* bcFile);

// Returns 0 when the model is in FwMatrixModelTable, else 1. `shortCode` has 8 bytes and gets the model's code or "XX".
int lookupFwMatrixModel(const char* type, char* shortCode);

// Traces a match.
void printFwMatrixMatch(const HbaRecord* hba, const char* matrixType);
