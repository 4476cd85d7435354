// fwmatrix.txt on a share or a stick that fails while the table is read (Linux only, for streams of our own).
#include <cerrno>
#include <cstring>

#include "base/text.h"
#include "output/output.h"
#include "records/port_outcome.h"
#include "records/run_counters.h"
#include "selection/fw_matrix.h"
#include "selection/matrix_selection.h"
#include "settings/run_options.h"
#include "unit/fixture.h"

// A table of a few bytes a read. One read can be made to fail, or every seek.
struct Table {
    std::string text;
    size_t position = 0;
    int reads = 0;
    int failingRead = 0;  // counted from 1, 0 for none
    bool seekFails = false;
};

static ssize_t readTable(void* cookie, char* out, size_t size) {
    Table* table = static_cast<Table*>(cookie);
    if (++table->reads == table->failingRead) {
        errno = EIO;
        return -1;
    }
    size_t length = std::min({size, size_t{8}, table->text.size() - table->position});
    memcpy(out, table->text.data() + table->position, length);
    table->position += length;
    return static_cast<ssize_t>(length);
}

static int seekInTable(void* cookie, off64_t* position, int whence) {
    Table* table = static_cast<Table*>(cookie);
    if (table->seekFails || whence != SEEK_SET) {
        return -1;
    }
    table->position = static_cast<size_t>(*position);
    return 0;
}

struct BrokenTable : RunTest {
    BrokenTable() {
        gFwMatrixFile =
            fopencookie(&table, "r", {.read = readTable, .write = nullptr, .seek = seekInTable, .close = nullptr});
        port = addPort(0xE300, "1.0.0.0");
        copyText(port->fwMatrixType, sizeof port->fwMatrixType, "QVa5202");
        runOptions.update = 1;
        runOptions.verbose = 1;
    }

    ~BrokenTable() override {
        fclose(gFwMatrixFile);
        gFwMatrixFile = nullptr;
    }

    Table table = {.text = "QVa5202 gone.grp\nQVa6100 b.grp\nQVa5202 a.grp\n"};
    HbaRecord* port = nullptr;
    char fwFile[MATRIX_TOKEN_SIZE] = "";
    char bcFile[MATRIX_TOKEN_SIZE] = "";
};

TEST_F(BrokenTable, AScanThatDoesNotReachTheEndMakesThePortAFailure) {
    const int readsOfAScan = 7;  // six parts of the text, and its end
    for (int failing = 1; failing <= readsOfAScan; failing++) {
        SCOPED_TRACE("read " + std::to_string(failing) + " of the table fails");
        runCounters = {};
        table.reads = 0;
        table.failingRead = failing;
        processHbaWithFwMatrix(port);
        EXPECT_EQ(port->fwDownloadStatus, OUTCOME_INVALID_MATRIX_IMAGE);
        EXPECT_EQ(runCounters.downloadAttemptCount, 1) << "it is a required download";
        EXPECT_EQ(runCounters.downloadFailCount, 1) << "that failed";
        EXPECT_EQ(getFwMatrixMatch(port, fwFile, bcFile), 1) << "the error does not outlive the scan";
        EXPECT_STREQ(fwFile, "a.grp");
    }
}

TEST_F(BrokenTable, TheCheckOfTheEntriesEndsAtTheErrorWithoutHalfALine) {
    table.failingRead = 4;  // in the middle of the second line
    verifyFWmatrixEntries();
    EXPECT_EQ(traces(), "\n[verifyFWmatrixEntries]\nFound known fwmatrix.txt entry   = QVa5202\n");
    EXPECT_EQ(out(), "") << "half a name was reported as an unknown entry";
}

TEST_F(BrokenTable, ATableThatCannotBeReadAgainHasNoEntry) {
    EXPECT_EQ(getFwMatrixMatch(port, fwFile, bcFile), 1);
    traces();
    table.seekFails = true;
    EXPECT_EQ(getFwMatrixMatch(port, fwFile, bcFile), 0);
    EXPECT_STREQ(fwFile, "NONE");
    EXPECT_STREQ(bcFile, "NONE");
    verifyFWmatrixEntries();
    const std::string failed = "fseek failed. Unable to open fwmatrix\n";
    EXPECT_EQ(traces(), "[getFwMatrixMatch]\n" + failed + "\n[verifyFWmatrixEntries]\n" + failed);
}
