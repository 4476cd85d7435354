// What the utility's reply means, and how the ports of a board share it.
#include "base/text.h"
#include "download/download_driver.h"
#include "inventory/listing_parser.h"
#include "inventory/utility_runner.h"
#include "records/port_outcome.h"
#include "records/run_counters.h"
#include "settings/run_options.h"
#include "settings/working_paths.h"
#include "unit/fixture.h"

struct Download : RunTest {};

TEST_F(Download, ALaterPortOfABoardInheritsTheResult) {
    write("1.2.3.4.grp", grpFile(64, "1.2.3.4"));
    CLUImage image = fileImage(64, "1.2.3.4");
    for (const auto& [boardResult, outcomeBefore, preview, result, outcome, failures, rowEnd] :
         Rows<uint32_t, uint8_t, int, int, int, int, const char*>{
             {1, 0, 0, 0, 0, 0, "Success"},
             {1, 17, 1, 0, 17, 0, "Preview"},
             {3, 1, 0, 0, 1, 0, "Success"},
             {5, 29, 0, 0, 29, 0, "Success"},
             {2, 3, 0, 1, 3, 1, "Error"},
             {2, 20, 0, 1, 3, 1, "Error"},
             {2, 28, 0, 1, 28, 1, "Error"},
             {2, 36, 0, 1, 36, 1, "Error"},
             {2, 28, 1, 1, 18, 1, "Preview"},
             {4, 22, 0, 0, 22, 0, "to complete the download process.\n"},
             {6, 3, 0, 1, 3, 1, "Error"},
             {3, 1, 1, 0, 1, 0, "Success"},
         }) {
        SCOPED_TRACE(testing::Message() << boardResult << " with " << int{outcomeBefore});
        runCounters = {};
        runOptions.preview = preview;
        HbaRecord* hba = addPort(0xE300, "1.0.0.0");
        hba->downloadStat = boardResult;
        hba->fwDownloadStatus = outcomeBefore;
        EXPECT_EQ(executeFwDownload(hba, &image), result);
        EXPECT_EQ(hba->fwDownloadStatus, outcome);
        EXPECT_TRUE(std::string(hba->downloadRow).ends_with(rowEnd)) << hba->downloadRow;
        EXPECT_EQ(runCounters.downloadAttemptCount, 1);
        EXPECT_EQ(runCounters.boardDownloadCount, 0);
        EXPECT_EQ(runCounters.downloadFailCount, failures);
        EXPECT_EQ(runCounters.boardFailCount, failures);
    }
}

TEST_F(Download, AnImageThatHasGoneFailsItsPortAlone) {
    CLUImage image = fileImage(64, "1.2.3.4");
    for (auto [grp, xml, shown] :
         Rows<bool, int, const char*>{{true, 0, "Status=Error: unable to open firmware image!\n"},
                                      {false, 1, "<VersionChange update=\"false\""},
                                      {false, 0, "Status=Error: unable to open firmware image!\n"},
                                      {true, 1, "<VersionChange update=\"false\""}}) {
        runCounters = {};
        runOptions.xml = xml;
        HbaRecord* hba = addPort(grp ? 0xE300 : 0x1111, "1.0.0.0");
        HbaRecord* other = addPort(0xE300, "1.0.0.0");
        out();
        EXPECT_EQ(executeFwDownload(hba, &image), 1);
        EXPECT_EQ(hba->fwDownloadStatus, OUTCOME_IMAGE_NOT_OPENED);
        EXPECT_EQ(hba->downloadStat, static_cast<uint32_t>(grp ? BOARD_FAILED : BOARD_NOT_DOWNLOADED));
        EXPECT_EQ(other->downloadStat, BOARD_NOT_DOWNLOADED);
        EXPECT_EQ(runCounters.downloadFailCount, 1);
        EXPECT_EQ(runCounters.boardFailCount + 2 * runCounters.boardDownloadCount, grp ? 3 : 0);
        EXPECT_NE(out().find(shown), std::string::npos);
    }
}

TEST_F(Download, ABoardIsSerialNumberBusAndDomain) {
    HbaRecord* first = addPort(0xE300, "1.0.0.0", "AB1");
    const HbaRecord* same = addPort(0xF400, "1.0.0.0", "ab1");
    HbaRecord* others[] = {addPort(0xE300, "1.0.0.0", "AB1"), addPort(0xE300, "1.0.0.0", "AB1"),
                           addPort(0xE300, "1.0.0.0", "AB12")};
    others[0]->busNumber = 2;
    others[1]->domain = 1;
    first->fwDownloadStatus = 29;
    first->downloadStat = BOARD_ACTIVATED;
    updateCNAdownloadStatus(first);
    EXPECT_TRUE(same->fwDownloadStatus == 29 && same->downloadStat == BOARD_ACTIVATED);
    for (const HbaRecord* other : others) {
        EXPECT_EQ(other->downloadStat, BOARD_NOT_DOWNLOADED);
    }
}

TEST_F(Download, ADownloadWhoseTempFileCannotBeOpenedIsTraced) {
    CLUImage image = fileImage(64, "1.2.3.4");
    write(image.filename, grpFile(64, "1.2.3.4"));
    for (auto [path, traced] :
         {std::pair{"temp.txt", ""}, {"no\\such\\temp.txt", "executeUtilityCommand failed status 1"}}) {
        copyText(tempFilePath, sizeof tempFilePath, path);
        testing::internal::CaptureStderr();
        EXPECT_EQ(executeFwDownload(addPort(0xE300, "1.0.0.0"), &image), 1);
        EXPECT_NE(traces().find(traced), std::string::npos) << path;
        EXPECT_EQ(makeHbaList(), LISTING_FAILED);
        testing::internal::GetCapturedStderr();
    }
}
