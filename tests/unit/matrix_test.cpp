// fwmatrix.txt: the match scan and the entry check.
#include "base/text.h"
#include "records/run_counters.h"
#include "selection/fw_matrix.h"
#include "settings/run_options.h"
#include "settings/working_paths.h"
#include "unit/fixture.h"

struct Matrix : RunTest {
    static void open(const std::string& text) {
        if (gFwMatrixFile != nullptr) {
            fclose(gFwMatrixFile);
        }
        write("fwmatrix.txt", text);
        copyText(fwMatrixPath, sizeof fwMatrixPath, "fwmatrix.txt");
        ASSERT_EQ(openFwMatrix(), 0);
    }
};

TEST_F(Matrix, TheLastLineForTheModelDecides) {
    const std::string name31 = std::string(27, 'f') + ".grp";
    const std::string q31 = std::string(31, 'Q');
    const std::string longLine = "QVa5202 a.grp" + std::string(242, ' ');  // 255 characters, so the rest is a line
    const struct {
        std::string text;
        std::string model;
        uint32_t deviceId;
        int matches;
        std::string fwFile = "NONE", bcFile = "NONE";
    } cases[] = {
        // clang-format off
        {"/ QVa5202 a.grp\n  / QVa5202 a.grp\n\n \t\n", "QVa5202",   0xE300, 0},
        {"",                                            "QVa5202",   0xE300, 0},
        {"qva5202 \t A.Grp boot.grp x\r\n",             "QVa5202",   0xE300, 1, "A.Grp"},
        {"\n",                                          "NONE",      0xE300, 0},
        {" QVa5202 a.grp",                              "QVa5202",   0xE300, 1, "a.grp"},
        {"/x a.grp\n",                                  "/x",        0xE300, 0},
        {"QVx1\n",                                      "QVx1",      0x1111, 1},
        {"QVa5202 a.grp\nQVa5202\n",                    "QVa5202",   0xE300, 2},
        {"QVa52021 a.grp\nQVa520 a.grp\n",              "QVa5202",   0xE300, 0},
        {"QVa5202\nQVa6100 b.grp\nQVa5202 a.grp\n",     "QVa5202",   0xE300, 2, "a.grp"},
        {"QVa5202 " + name31 + "\n",                    "QVa5202",   0xE300, 1, name31},
        {"QVa5202 f" + name31 + "\n",                   "QVa5202",   0xE300, 1, "INVALID_FILE"},
        {"QVa5202-X a.grp\n",                           "QVa5202",   0xE300, 0},
        {"QVa5202-X a.grp\n",                           "QVa5202-X", 0xE300, 1, "a.grp"},
        {"QVx1-X a.grp b.grp c.grp\n",                  "QVx1",      0x1111, 1, "a.grp", "b.grp"},
        {"QVx1-X a.grp b" + name31 + "\n",              "QVx1",      0x1111, 1, "a.grp", "INVALID_FILE"},
        {longLine + "QVa5202 b.grp\n",                  "QVa5202",   0xE300, 2, "b.grp"},
        {"Q" + q31 + " a.grp\n",                        q31,         0xE300, 0},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE("model " + c.model + " in the table:\n" + c.text);
        open(c.text);
        HbaRecord hba = {};
        hba.deviceId = c.deviceId;
        copyText(hba.fwMatrixType, sizeof hba.fwMatrixType, c.model.c_str());
        char fwFile[MATRIX_TOKEN_SIZE], bcFile[MATRIX_TOKEN_SIZE];
        runCounters.knownHbaCount = 0;
        EXPECT_EQ(getFwMatrixMatch(&hba, fwFile, bcFile), c.matches != 0);
        EXPECT_EQ(traces().find("No match found!") == std::string::npos, c.matches != 0);
        EXPECT_EQ(fwFile, c.fwFile);
        EXPECT_EQ(bcFile, c.bcFile);
        EXPECT_EQ(runCounters.knownHbaCount, c.matches);
    }
}

TEST_F(Matrix, TheEntryCheckReadsFromTheFirstColumn) {
    const std::string unknown = "Found unknown fwmatrix.txt entry = ";
    runOptions.verbose = 1;
    for (const auto& [text, printed] : Rows<std::string, std::string>{
             {"", ""},
             {"/ comment\nQVa5202 a.grp\nqvm5205\r\nQVa7104S\tx\n", ""},
             {" / comment\n\n", unknown + "\n" + unknown + "\n"},
             {" QVa5202 a.grp\n", unknown + "\n"},
             {"QVa5202-X a.grp\n", unknown + "QVa5202-X\n"},
             {"QVa5202\xE4 a.grp\n", ""},  // the entry ends before the byte
             {std::string(40, 'Q') + "\n", unknown + std::string(31, 'Q') + "\n"},
             {std::string(300, 'Q'), unknown + std::string(31, 'Q') + "\n" + unknown + std::string(31, 'Q') + "\n"},
         }) {
        open(text);
        verifyFWmatrixEntries();
        EXPECT_EQ(out(), printed) << text;
    }
}
