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
    constexpr bool GOOD = true, BAD = false;
    constexpr int UPDATE = 0, PREVIEW = 1;
    constexpr auto OTHER_RESULT = static_cast<BoardResult>(6);
    const struct {
        BoardResult board;
        PortOutcome earlier;  // of the port that was downloaded
        int preview;
        bool result;
        PortOutcome outcome;
        const char* rowEnd;
    } cases[] = {
        // clang-format off
        {BOARD_DOWNLOADED,      OUTCOME_SUCCEEDED,           UPDATE,  GOOD, OUTCOME_SUCCEEDED,           "Success"},
        {BOARD_DOWNLOADED,      OUTCOME_PREVIEW_SUCCEEDED,   PREVIEW, GOOD, OUTCOME_PREVIEW_SUCCEEDED,   "Preview"},
        {BOARD_REBOOT_REQUIRED, OUTCOME_REBOOT_REQUIRED,     UPDATE,  GOOD, OUTCOME_REBOOT_REQUIRED,     "Success"},
        {BOARD_REBOOT_REQUIRED, OUTCOME_REBOOT_REQUIRED,     PREVIEW, GOOD, OUTCOME_REBOOT_REQUIRED,     "Success"},
        {BOARD_ACTIVATED,       OUTCOME_ACTIVATED,           UPDATE,  GOOD, OUTCOME_ACTIVATED,           "Success"},
        {BOARD_DOWNLOAD_TWICE,  OUTCOME_DOWNLOAD_TWICE,      UPDATE,  GOOD, OUTCOME_DOWNLOAD_TWICE,      "download process.\n"},
        {BOARD_FAILED,          OUTCOME_FAILED,              UPDATE,  BAD,  OUTCOME_FAILED,              "Error"},
        {BOARD_FAILED,          OUTCOME_IMAGE_NOT_OPENED,    UPDATE,  BAD,  OUTCOME_FAILED,              "Error"},
        {BOARD_FAILED,          OUTCOME_NOT_FOR_BOARD_MODEL, UPDATE,  BAD,  OUTCOME_NOT_FOR_BOARD_MODEL, "Error"},
        {BOARD_FAILED,          OUTCOME_INVALID_FILE_LENGTH, UPDATE,  BAD,  OUTCOME_INVALID_FILE_LENGTH, "Error"},
        {BOARD_FAILED,          OUTCOME_NOT_FOR_BOARD_MODEL, PREVIEW, BAD,  OUTCOME_PREVIEW_FAILED,      "Preview"},
        {OTHER_RESULT,          OUTCOME_FAILED,              UPDATE,  BAD,  OUTCOME_FAILED,              "Error"},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "board result " << c.board << ", outcome of the earlier port "
                                        << shown(c.earlier) << (c.preview ? ", preview" : ""));
        runCounters = {};
        runOptions.preview = c.preview;
        HbaRecord* hba = addPort(0xE300, "1.0.0.0");
        hba->downloadStat = c.board;
        hba->fwDownloadStatus = c.earlier;
        EXPECT_EQ(executeFwDownload(hba, &image), c.result == GOOD ? 0 : 1);
        EXPECT_EQ(shown(hba->fwDownloadStatus), shown(c.outcome));
        EXPECT_TRUE(std::string(hba->downloadRow).ends_with(c.rowEnd)) << hba->downloadRow;
        EXPECT_EQ(runCounters.downloadAttemptCount, 1);
        EXPECT_EQ(runCounters.boardDownloadCount, 0);
        EXPECT_EQ(runCounters.downloadFailCount, c.result == GOOD ? 0 : 1);
        EXPECT_EQ(runCounters.boardFailCount, c.result == GOOD ? 0 : 1);
    }
}

TEST_F(Download, AnImageThatDisappearedFailsItsPortAlone) {
    CLUImage image = fileImage(64, "1.2.3.4");
    constexpr uint32_t GRP_DEVICE = 0xE300, OTHER_DEVICE = 0x1111;
    const char* row = "Status=Error: unable to open firmware image!\n";
    const char* element = "<VersionChange update=\"false\"";
    const struct {
        uint32_t device;
        int xml;
        const char* shown;
        BoardResult board;
        int boardCount;
    } cases[] = {
        {GRP_DEVICE, 0, row, BOARD_FAILED, 1},
        {GRP_DEVICE, 1, element, BOARD_FAILED, 1},
        {OTHER_DEVICE, 0, row, BOARD_NOT_DOWNLOADED, 0},
        {OTHER_DEVICE, 1, element, BOARD_NOT_DOWNLOADED, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "device " << std::hex << c.device << (c.xml ? ", XML" : ""));
        runCounters = {};
        runOptions.xml = c.xml;
        HbaRecord* hba = addPort(c.device, "1.0.0.0");
        HbaRecord* other = addPort(GRP_DEVICE, "1.0.0.0");
        out();
        EXPECT_EQ(executeFwDownload(hba, &image), 1);
        EXPECT_EQ(shown(hba->fwDownloadStatus), shown(OUTCOME_IMAGE_NOT_OPENED));
        EXPECT_EQ(hba->downloadStat, c.board);
        EXPECT_EQ(other->downloadStat, BOARD_NOT_DOWNLOADED);
        EXPECT_EQ(runCounters.downloadFailCount, 1);
        EXPECT_EQ(runCounters.boardDownloadCount, c.boardCount);
        EXPECT_EQ(runCounters.boardFailCount, c.boardCount);
        EXPECT_NE(out().find(c.shown), std::string::npos);
    }
}

TEST_F(Download, ABoardIsKnownBySerialNumberBusAndDomain) {
    HbaRecord* first = addPort(0xE300, "1.0.0.0", "AB1");
    const HbaRecord* samePort = addPort(0xF400, "1.0.0.0", "ab1");
    HbaRecord* otherBus = addPort(0xE300, "1.0.0.0", "AB1");
    HbaRecord* otherDomain = addPort(0xE300, "1.0.0.0", "AB1");
    const HbaRecord* otherSerialNumber = addPort(0xE300, "1.0.0.0", "AB12");
    otherBus->busNumber = 2;
    otherDomain->domain = 1;
    first->fwDownloadStatus = OUTCOME_ACTIVATED;
    first->downloadStat = BOARD_ACTIVATED;
    updateCNAdownloadStatus(first);
    EXPECT_EQ(shown(samePort->fwDownloadStatus), shown(OUTCOME_ACTIVATED));
    EXPECT_EQ(samePort->downloadStat, BOARD_ACTIVATED);
    EXPECT_EQ(otherBus->downloadStat, BOARD_NOT_DOWNLOADED);
    EXPECT_EQ(otherDomain->downloadStat, BOARD_NOT_DOWNLOADED);
    EXPECT_EQ(otherSerialNumber->downloadStat, BOARD_NOT_DOWNLOADED);
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
