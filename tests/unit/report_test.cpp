// The closing sentence, the rows, RM.INI, and the escapes of the XML document.
#include "output/diagnostic_log.h"
#include "records/run_counters.h"
#include "report/port_rows.h"
#include "report/summaries.h"
#include "report/xml_report.h"
#include "settings/run_options.h"
#include "unit/fixture.h"

struct Report : RunTest {
    // In `console`, @ is replaced by the program's name.
    void expectStatus(ReturnCode report(), int code, std::string console, const std::string& xml) {
        console.replace(console.find('@'), 1, "tarnlift.exe: ");
        for (const std::string& shown :
             {console + " - Return Code=" + std::to_string(code) + "\n\n",
              "    <Message id=\"" + std::to_string(code) + "\"> " + xml + ". </Message>\n"}) {
            runOptions.xml = shown[0] == ' ';
            EXPECT_EQ(report(), code) << "the return code";
            EXPECT_EQ(out(), shown);
        }
    }
};

TEST_F(Report, CountersBecomeOneSentenceAndCode) {
    runOptions.rewrite = 1;
    for (const auto& [known, compatible, attempts, failures, code, console, xml] :
         Rows<uint16_t, uint16_t, uint16_t, uint16_t, int, std::string, std::string>{
             {0, 0, 0, 0, 5, "\n\n@Error - no supported Velmar HBAs found", "No supported Velmar HBAs found"},
             {1, 0, 2, 2, 7, "\n\n@No compatible firmware found", "No compatible firmware found"},
             {1, 1, 2, 2, 2, "\n\n@Error - all required rewrites failed", "All required rewrites failed"},
             {1, 1, 2, 1, 3, "\n\n@Error - some required rewrites failed", "Some required rewrites failed"},
             {1, 1, 2, 0, 0, "\n\n@All required rewrites succeeded", "All required rewrites succeeded"},
             {1, 1, 0, 0, 1, "\n\n@No rewrites required", "No rewrites required"},
             {1, 1, 1, 2, 0, "\n@Unknown status - rewrites", "Unknown status"},
         }) {
        SCOPED_TRACE(testing::Message() << known << " known ports, " << compatible << " compatible images, " << attempts
                                        << " attempts, " << failures << " failures");
        runCounters = {.knownHbaCount = known,
                       .compatibleImageCount = compatible,
                       .downloadAttemptCount = attempts,
                       .downloadFailCount = failures};
        expectStatus(reportUpdateStatus, code, console, xml);
    }
    runCounters = {.twiceCount = 1};
    EXPECT_EQ(reportUpdateStatus(), 5);
    EXPECT_EQ(out().find("special firmware"), std::string::npos);
    runOptions.rewrite = 0;
    runCounters = {.knownHbaCount = 1, .compatibleImageCount = 1};
    expectStatus(reportUpdateStatus, 1, "\n\n@No unknown operation required", "No unknown operation required");
}

TEST_F(Report, QueriesHaveTheirOwnSentence) {
    for (const auto& [queries, failures, code, console, xml] : Rows<uint16_t, uint16_t, int, std::string, std::string>{
             {3, 3, 2, "Error - all required queries failed", "All required queries failed"},
             {3, 1, 3, "Error - some required queries failed", "Some required queries failed"},
             {3, 0, 0, "All required queries succeeded", "All required queries succeeded"},
             {0, 0, 0, "Unknown status - query", "Unknown status"},
             {1, 2, 0, "Unknown status - queries", "Unknown status"},
         }) {
        SCOPED_TRACE(testing::Message() << queries << " queries, " << failures << " failures");
        runCounters = {.queryCount = queries, .queryFailCount = failures};
        expectStatus(reportQueryStatus, code, "\n\n@" + console, xml);
    }
}

TEST_F(Report, ARebootIsAdvisedForBoardsThatWaitForIt) {
    for (const auto& [downloads, failures, noReboot, preview, advised] : Rows<uint16_t, uint16_t, uint16_t, int, bool>{
             // clang-format off
        {0, 0, 0, 0, false},
        {1, 0, 0, 0, true},
        {1, 0, 0, 1, false},
        {1, 1, 0, 0, false},
        {1, 0, 1, 0, false},
        {3, 1, 1, 0, true},
        {3, 1, 2, 0, false},
        {2, 4, 0, 0, false},
        {3, 2, 2, 0, false},
             // clang-format on
         }) {
        runCounters = {.boardDownloadCount = downloads, .boardFailCount = failures, .boardNoRebootCount = noReboot};
        runOptions.preview = preview;
        reportRebootRequired();
        EXPECT_EQ(out() == "Please reboot system to activate new firmware.\n", advised)
            << downloads << " boards, " << failures << " failed, " << noReboot << " without a reboot, preview "
            << preview;
    }
}

TEST_F(Report, OutsideTheGrpFamiliesAVersionLosesItsFirstTwoCharacters) {
    HbaRecord* hba = addPort(0x1111, "1.0.0.0");
    char row[512];
    for (auto [version, shown] : {std::pair{"14.0.1.2", ".0.1.2"}, {"14", ""}, {"1", ""}, {"", ""}}) {
        formatDownloadRow(row, hba, version, "Firmware", "1.0.0.0", "a.grp");
        EXPECT_NE(std::string(row).find(std::string(", New=") + shown + ", Old="), std::string::npos) << row;
    }
}

TEST_F(Report, ValuesFromOutsideCannotBreakTheDocument) {
    for (auto [model, shown] : {std::pair{"a&b<c>\"d'", "a&amp;b&lt;c&gt;&quot;d'"},
                                {"tab\tok\r\x01\x1F\x7F", "tab\tok\r??\x7F"},
                                {"\xC3\xA4\xE2\x82\xAC", "\xC3\xA4\xE2\x82\xAC"},
                                {"\xC3(\x80", "?(?"},
                                {"\xED\xA0\x80", "???"},
                                {"\xEF\xBF\xBF\xEF\xBF\xBE\n", "??????\n"},
                                {"\xE2\x82(\xE2\x82\xC0", "?\?(???"}}) {
        xmlWriteSupportedImage("1", model);
        EXPECT_EQ(out(), std::string("            <SupportedImage file=\"") + shown + "\" version=\"1\"/>\n");
    }
    xmlWriteSupportedImage("1", std::string(79, '"').c_str());
    EXPECT_EQ(out().find("\" version"), strlen("            <SupportedImage file=\"") + 79 * 6);
}

TEST_F(Report, SettingsFileIsReadToTheEnd) {
    write("RM.INI",
          "// comment\n   /anything\n\ndbg_mode = 0x10\nLOG_MODE=16 more\nPARAM04=0X1\n  param01\t-1\nPARAM02 = x\n"
          "PARAM03 = 0xZZ\nINSIZER 4294967296\nfillbyte=0x1FF\n= 5\nREMOTE_HBA_WWPN=20:00:00:11:22:33:44:5\n");
    ASSERT_EQ(openRmIni(), 1);
    testing::internal::CaptureStdout();
    parseRmIni();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    const RmIniSettings& s = rmIniSettings;
    EXPECT_EQ((std::vector{s.dbgMode, s.logMode, s.param01, s.param02, s.param03, s.inSizeR, uint32_t{s.fillByte}}),
              (std::vector{0x10U, 16U, ~0U, ~0U, ~0U, ~0U, 0xFFU}))
        << "a line without a number keeps that of the line before";
    EXPECT_EQ(openRmIni(), 1);  // a second reading, in which no earlier line has a number
    write("RM.INI", "#comment\nDBG_MODE=x\n" + std::string(200, 'a') + "\n");
    testing::internal::CaptureStdout();
    parseRmIni();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Unkonw Token FoundUnkonw Token FoundUnkonw Token Found");
    EXPECT_EQ(rmIniSettings.dbgMode, 0U);
    uint8_t wwpn[8] = {};
    EXPECT_EQ(readWwpn("20:00:00:11:aB-Cd:44:55", wwpn), 1);
    EXPECT_EQ(std::string(wwpn, wwpn + 8), std::string("\x20\0\0\x11\xAB\xCD\x44\x55", 8));
    EXPECT_EQ(readWwpn("20:00:00:11:22:33:44:555", wwpn), 0);
}
