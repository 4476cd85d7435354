// The roll-up, the rows, RM.INI and what makes values safe for XML.
#include "base/text.h"
#include "include/run_counters.h"
#include "include/run_options.h"
#include "report/diagnostic_log.h"
#include "report/summaries.h"
#include "report/xml_report.h"
#include "unit/fixture.h"

struct Report : RunTest {};

TEST_F(Report, CountersBecomeOneSentenceAndCode) {
    const struct {
        uint16_t known, compatible, attempts, failures;
        int code;
        std::string console, xml;
    } cases[] = {
        {0, 0, 0, 0, 5, "Error - no supported Velmar HBAs found", "No supported Velmar HBAs found"},
        {1, 0, 2, 2, 7, "No compatible firmware found", "No compatible firmware found"},
        {1, 1, 2, 2, 2, "Error - all required rewrites failed", "All required rewrites failed"},
        {1, 1, 2, 1, 3, "Error - some required rewrites failed", "Some required rewrites failed"},
        {1, 1, 2, 0, 0, "All required rewrites succeeded", "All required rewrites succeeded"},
        {1, 1, 0, 0, 1, "No rewrites required", "No rewrites required"},
    };
    runOptions.rewrite = 1;
    for (const auto& c : cases) {
        runCounters = {.knownHbaCount = c.known,
                       .compatibleImageCount = c.compatible,
                       .downloadAttemptCount = c.attempts,
                       .downloadFailCount = c.failures};
        std::string code = std::to_string(c.code);
        runOptions.xml = 0;
        EXPECT_EQ(reportUpdateStatus(), c.code);
        EXPECT_EQ(out(), "\n\ntarnlift.exe: " + c.console + " - Return Code=" + code + "\n\n");
        runOptions.xml = 1;
        EXPECT_EQ(reportUpdateStatus(), c.code);
        EXPECT_EQ(out(), "    <Message id=\"" + code + "\"> " + c.xml + ". </Message>\n");
    }
    runOptions.xml = 0;
    runCounters = {.knownHbaCount = 1, .compatibleImageCount = 1, .downloadAttemptCount = 1, .downloadFailCount = 2};
    EXPECT_EQ(reportUpdateStatus(), 0);
    EXPECT_EQ(out(), "\ntarnlift.exe: Unknown status - rewrites - Return Code=0\n\n");
}

TEST_F(Report, QueriesHaveTheirOwnSentence) {
    const struct {
        uint16_t queries, failures;
        int code;
        std::string console;
    } cases[] = {
        {3, 3, 2, "\n\ntarnlift.exe: Error - all required queries failed - Return Code=2\n\n"},
        {3, 1, 3, "\n\ntarnlift.exe: Error - some required queries failed - Return Code=3\n\n"},
        {3, 0, 0, "\n\ntarnlift.exe: All required queries succeeded - Return Code=0\n\n"},
        {0, 0, 0, "\n\ntarnlift.exe: Unknown status - query - Return Code=0\n\n"},
    };
    for (const auto& c : cases) {
        runCounters = {.queryCount = c.queries, .queryFailCount = c.failures};
        EXPECT_EQ(reportQueryStatus(), c.code);
        EXPECT_EQ(out(), c.console);
    }
}

TEST_F(Report, ARebootIsAdvisedForBoardsThatWaitForIt) {
    const struct {
        uint16_t downloads, failures, noReboot;
        int preview;
        bool advised;
    } cases[] = {
        {0, 0, 0, 0, false}, {1, 0, 0, 0, true},  {1, 0, 0, 1, false}, {1, 1, 0, 0, false}, {1, 0, 1, 0, false},
        {3, 1, 1, 0, true},  {3, 1, 2, 0, false}, {2, 4, 0, 0, false}, {3, 2, 2, 0, false},
    };
    for (const auto& c : cases) {
        runCounters = {
            .boardDownloadCount = c.downloads, .boardFailCount = c.failures, .boardNoRebootCount = c.noReboot};
        runOptions.preview = c.preview;
        reportRebootRequired();
        EXPECT_EQ(out() == "Please reboot system to activate new firmware.\n", c.advised) << c.downloads << c.failures;
    }
}

TEST_F(Report, AVersionOfNoGrpFamilyLosesItsFirstTwoCharacters) {
    HbaRecord* hba = addPort(0x1111, "1.0.0.0");
    char row[512];
    for (auto [version, shown] : {std::pair{"14.0.1.2", ".0.1.2"}, {"14", ""}, {"1", ""}, {"", ""}}) {
        formatDownloadRow(row, hba, version, "Firmware", "1.0.0.0", "a.grp");
        EXPECT_NE(std::string(row).find(std::string(", New=") + shown + ", Old="), std::string::npos) << row;
    }
}

TEST_F(Report, ValuesFromOutsideCannotBreakTheDocument) {
    const struct {
        const char* model;
        const char* shown;
    } cases[] = {
        {"a&b<c>\"d'", "a&amp;b&lt;c&gt;&quot;d'"},
        {"tab\tok\x01\x1F\x7F", "tab\tok??\x7F"},
        {"\xC3\xA4\xE2\x82\xAC", "\xC3\xA4\xE2\x82\xAC"},
        {"\xC3(\x80", "?(?"},
        {"\xED\xA0\x80", "???"},
        {"\xEF\xBF\xBF\xEF\xBF\xBE", "??????"},
    };
    runOptions.xml = 1;
    for (const auto& c : cases) {
        xmlWriteSupportedImage("1", c.model);
        EXPECT_EQ(out(), std::string("            <SupportedImage file=\"") + c.shown + "\" version=\"1\"/>\n");
    }
    xmlWriteSupportedImage("1", std::string(79, '"').c_str());
    std::string longest = out();
    EXPECT_EQ(longest.find("\" version"), std::string("            <SupportedImage file=\"").size() + 79 * 6);
}

TEST_F(Report, SettingsFileIsReadToTheEnd) {
    write("RM.INI",
          "// comment\n   /anything\n\ndbg_mode = 0x10\nLOG_MODE=16 more\n  param01\t-1\nPARAM02 = x\n"
          "PARAM03 = 0xZZ\nINSIZER 4294967296\nfillbyte=0x1FF\n= 5\nREMOTE_HBA_WWPN=20:00:00:11:22:33:44:5\n");
    ASSERT_EQ(openRmIni(), 1);
    testing::internal::CaptureStdout();
    parseRmIni();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(rmIniSettings.dbgMode, 0x10U);
    EXPECT_EQ(rmIniSettings.logMode, 16U);
    EXPECT_EQ(rmIniSettings.param01, 4294967295U);
    EXPECT_EQ(rmIniSettings.param02, 4294967295U) << "a line without a number keeps that of the line before";
    EXPECT_EQ(rmIniSettings.param03, 4294967295U);
    EXPECT_EQ(rmIniSettings.inSizeR, 4294967295U);
    EXPECT_EQ(rmIniSettings.fillByte, 0xFF);

    write("RM.INI", "#comment\nDBG_MODE=x\n" + std::string(200, 'a') + "\n");
    ASSERT_EQ(openRmIni(), 1);
    testing::internal::CaptureStdout();
    parseRmIni();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Unkonw Token FoundUnkonw Token FoundUnkonw Token Found");
    EXPECT_EQ(rmIniSettings.dbgMode, 0U) << "no line before has a number";

    uint8_t wwpn[8] = {};
    EXPECT_EQ(readWwpn("20:00:00:11:aB-Cd:44:55", wwpn), 1);
    EXPECT_EQ(wwpn[0], 0x20);
    EXPECT_EQ(wwpn[4], 0xAB);
    EXPECT_EQ(wwpn[7], 0x55);
    EXPECT_EQ(readWwpn("20:00:00:11:22:33:44:555", wwpn), 0);
}
