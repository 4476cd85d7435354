#include "selection/fw_matrix.h"

#include <cstring>

#include "base/text.h"
#include "output/output.h"
#include "platform/platform.h"
#include "records/fixed_words.h"
#include "records/run_counters.h"
#include "settings/run_options.h"
#include "settings/working_paths.h"

FILE* gFwMatrixFile = nullptr;

static constexpr size_t MATRIX_LINE_SIZE = 256;
static constexpr char SEPARATORS[] = " \t\r\n";
static constexpr char COMMENT = '/';
static constexpr size_t SHORT_CODE_SIZE = sizeof FwMatrixModelEntry{}.shortCode;

const FwMatrixModelEntry FwMatrixModelTable[MATRIX_MODEL_COUNT] = {
    {"QVa5100", "", 0xE300, 1, 0},  {"QVa5102", "", 0xE300, 1, 0}, {"QVa5104", "", 0xE300, 1, 0},
    {"QVa5200", "", 0xE300, 1, 0},  {"QVa5202", "", 0xE300, 1, 0}, {"QVm5205", "", 0xE300, 1, 1},
    {"QVa6100", "", 0xF400, 1, 0},  {"QVa6102", "", 0xF400, 1, 0}, {"QVa6104", "", 0xF400, 1, 0},
    {"QVa6200", "", 0xF400, 1, 0},  {"QVa6202", "", 0xF400, 1, 0}, {"QVa6204", "", 0xF400, 1, 0},
    {"QVa7100", "", 0xF500, 1, 0},  {"QVa7102", "", 0xF500, 1, 0}, {"QVa7104", "", 0xF500, 1, 0},
    {"QVa7104S", "", 0xF600, 1, 0},
};

int openFwMatrix() {
    if (runOptions.autoSelect) {
        return RETURN_SUCCEEDED;
    }
    gFwMatrixFile = openFile(fwMatrixPath, OPEN_READ_TEXT);
    if (gFwMatrixFile == nullptr) {
        return printEndingError(RETURN_ALL_FAILED, "fwmatrix update table not found");
    }
    return RETURN_SUCCEEDED;
}

int lookupFwMatrixModel(const char* type, char* shortCode) {
    copyText(shortCode, SHORT_CODE_SIZE, "XX");
    for (const FwMatrixModelEntry& entry : FwMatrixModelTable) {
        if (equalsIgnoringCase(entry.modelName, type)) {
            copyText(shortCode, SHORT_CODE_SIZE, entry.shortCode);
            return 0;
        }
    }
    return 1;
}

void printFwMatrixMatch(const HbaRecord* hba, const char* matrixType) {
    if (dbgFile == nullptr) {
        return;
    }
    printDbg("[FW matrix match]\n");
    printDbg("HBA Model      = %s\n", hba->model);
    printDbg("Tarnlift Type  = %s\n", hba->fwMatrixType);
    printDbg("FW Matrix Type = %s\n", matrixType);
}

// Starts a scan at the start of the table, without the error of an earlier scan. Returns false when that fails.
static bool startScan() {
    clearerr(gFwMatrixFile);
    if (fseek(gFwMatrixFile, 0, SEEK_SET) == 0) {
        return true;
    }
    printDbg("fseek failed. Unable to open fwmatrix\n");
    return false;
}

// Reads the next line. Returns false at the end of the table, and at a read error, whose line may be a part of one.
static bool nextLine(char line[MATRIX_LINE_SIZE]) {
    return readTextLine(gFwMatrixFile, line, MATRIX_LINE_SIZE) && ferror(gFwMatrixFile) == 0;
}

// The token of the entry check starts in the very first column and ends before the first byte that is not a printable
// ASCII character: unlike the match scan it does not skip leading blanks.
static size_t checkedTokenLength(const char* line) {
    size_t length = 0;
    while (static_cast<signed char>(line[length]) > 0x20) {
        length++;
    }
    return length;
}

void verifyFWmatrixEntries() {
    if (runOptions.autoSelect) {
        return;
    }
    printDbg("\n[verifyFWmatrixEntries]\n");
    if (!startScan()) {
        return;
    }
    char line[MATRIX_LINE_SIZE];
    char token[MATRIX_TOKEN_SIZE];
    char shortCode[SHORT_CODE_SIZE];
    while (nextLine(line)) {
        if (line[0] == COMMENT) {
            continue;
        }
        size_t length = checkedTokenLength(line);
        copyPrefix(token, sizeof token, line, length);
        if (length < sizeof token && lookupFwMatrixModel(token, shortCode) == 0) {
            printDbg("Found known fwmatrix.txt entry   = %s\n", token);
            continue;
        }
        if (runOptions.verbose) {
            printOut("Found unknown fwmatrix.txt entry = %s\n", token);
        }
        printDbg("Found unknown fwmatrix.txt entry = %s\n", token);
    }
}

// Copies the next token of a line, or the word for one that is absent or too long. Returns the rest of the line.
static const char* copyToken(const char* line, char out[MATRIX_TOKEN_SIZE]) {
    line += strspn(line, SEPARATORS);
    size_t length = strcspn(line, SEPARATORS);
    if (length == 0) {
        copyText(out, MATRIX_TOKEN_SIZE, WORD_NONE);
    } else if (length >= MATRIX_TOKEN_SIZE) {
        copyText(out, MATRIX_TOKEN_SIZE, WORD_INVALID_FILE);
    } else {
        copyPrefix(out, MATRIX_TOKEN_SIZE, line, length);
    }
    return line + length;
}

static void printFiles(const char* fwFile, const char* bcFile) {
    printDbg("fwmatrixFwFile = %s\n", fwFile);
    printDbg("fwmatrixBcFile = %s\n", bcFile);
}

// Reads one line of the match scan. Returns true and sets both files when it is an entry for the port.
static bool matchLine(const HbaRecord* hba, const char* line, char* fwFile, char* bcFile) {
    char matrixType[MATRIX_TOKEN_SIZE];
    line += strspn(line, SEPARATORS);
    if (*line == '\0' || *line == COMMENT) {
        return false;
    }
    line = copyToken(line, matrixType);
    if (!isGrpAdapter(hba)) {
        matrixType[strcspn(matrixType, "-")] = '\0';
    }
    if (!equalsIgnoringCase(hba->fwMatrixType, matrixType)) {
        return false;
    }
    printFwMatrixMatch(hba, matrixType);
    runCounters.knownHbaCount++;
    line = copyToken(line, fwFile);
    if (isGrpAdapter(hba)) {
        copyText(bcFile, MATRIX_TOKEN_SIZE, WORD_NONE);
    } else {
        copyToken(line, bcFile);
    }
    printFiles(fwFile, bcFile);
    return true;
}

int getFwMatrixMatch(const HbaRecord* hba, char* fwFile, char* bcFile) {
    copyText(fwFile, MATRIX_TOKEN_SIZE, WORD_NONE);
    copyText(bcFile, MATRIX_TOKEN_SIZE, WORD_NONE);
    printDbg("[getFwMatrixMatch]\n");
    if (!startScan()) {
        return 0;
    }
    int found = 0;
    char line[MATRIX_LINE_SIZE];
    while (nextLine(line)) {
        if (matchLine(hba, line, fwFile, bcFile)) {
            found = 1;
        }
    }
    if (ferror(gFwMatrixFile) != 0) {  // the last line for a model counts, and it may be one that was not read
        copyText(fwFile, MATRIX_TOKEN_SIZE, WORD_INVALID_FILE);
        copyText(bcFile, MATRIX_TOKEN_SIZE, WORD_NONE);
        printFiles(fwFile, bcFile);
        return 1;
    }
    if (!found) {
        printDbg("No match found!\n");
    }
    return found;
}
