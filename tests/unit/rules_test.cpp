// The decisions for each operation and each relation of versions, with and without the second ASIC revision.
#include <vector>

#include "images/image_catalogue.h"
#include "images/version_rules.h"
#include "platform/platform.h"
#include "records/clu_image.h"
#include "records/hba_list.h"
#include "records/port_outcome.h"
#include "selection/auto_selection.h"
#include "settings/run_options.h"
#include "unit/fixture.h"

struct Rules : RunTest {
    // Selects one operation.
    static void setMode(int RunOptions::*mode) {
        runOptions.update = runOptions.rewrite = runOptions.downgrade = runOptions.forceFw = 0;
        runOptions.*mode = 1;
    }
};

static constexpr struct {
    const char* name;
    int RunOptions::*flag;
} modes[] = {{"update", &RunOptions::update},
             {"rewrite", &RunOptions::rewrite},
             {"downgrade", &RunOptions::downgrade},
             {"forceFw", &RunOptions::forceFw}};

TEST_F(Rules, ADownloadIsDueByModeAndRelation) {
    const struct {
        uint32_t family;
        const char* version;
        int due[4];  // by each of the modes, in their order
    } candidates[] = {
        {65, "14.2.0.1", {1, 1, 0, 1}},  {65, "14.2.0.0", {0, 1, 0, 1}}, {65, "14.1.9.9", {0, 0, 1, 1}},
        {66, "1.0.0.0", {1, 1, 0, 1}},   {64, "99.0.0.0", {0, 0, 1, 1}}, {65, "14.10.0.0", {1, 1, 0, 1}},
        {65, "14.2.0.10", {1, 1, 0, 1}},
    };
    CLUImage current = fileImage(65, "14.2.0.0");
    for (const auto& c : candidates) {
        CLUImage candidate = fileImage(c.family, c.version);
        for (size_t m = 0; m < 4; m++) {
            setMode(modes[m].flag);
            EXPECT_EQ(isDownloadDue(&current, &candidate), c.due[m] == 1)
                << modes[m].name << ": is " << c.version << " of family " << c.family << " due over 14.2.0.0 of 65?";
        }
    }
    runOptions.forceFw = 0;
    CLUImage newer = fileImage(65, "15.0.0.0");
    EXPECT_EQ(isDownloadDue(&current, &newer), 0);
    CLUImage noFamily = fileImage(0, "15.0.0.0");
    EXPECT_EQ(isUpdateNeededCNA(&noFamily, &noFamily, 0), 4);
    EXPECT_EQ(isUpdateNeededCNA(&noFamily, &newer, 0), 1);
}

// The image that /auto chooses from a firmware directory is in the row of a preview.
TEST_F(Rules, AutoChoosesTheRightImageOfTheDirectory) {
    static constexpr char none[] = "";
    static constexpr PortOutcome NO_IMAGE = OUTCOME_NO_COMPATIBLE_FIRMWARE;
    const std::vector<const char*> steps = {"14.2.1.1", "14.0.1.1", "12.8.1.1"};
    const std::vector<const char*> b1 = {"14.4.190.0", "14.4.188.1", "14.2.0.0"};
    const struct {
        const char* what;
        uint32_t deviceId, revision;
        const char* running;
        uint32_t family;
        std::vector<const char*> images;
        const char* chosen[4];                     // by each of the modes, in their order
        PortOutcome outcome = OUTCOME_NOT_NEEDED;  // of a mode that chooses nothing
    } cases[] = {
        // clang-format off
        {"at the middle", 0xF400, 0, "14.0.1.1", 65, steps, {"14.2.1.1", "14.2.1.1", "12.8.1.1", "14.2.1.1"}},
        {"at the highest", 0xF400, 0, "14.2.1.1", 65, steps, {none, "14.2.1.1", "14.0.1.1", "14.2.1.1"}},
        {"above all", 0xF400, 0, "14.4.1.1", 65, steps, {none, none, "14.2.1.1", "14.2.1.1"}},
        {"below all", 0xF400, 0, "12.8.1.1", 65, steps, {"14.2.1.1", "14.2.1.1", none, "14.2.1.1"}},
        {"numbers, not texts", 0xF400, 0, "14.4.9.1", 65, {"14.4.88.1"}, {"14.4.88.1", "14.4.88.1", none, "14.4.88.1"}},
        {"major 3 counts as 2", 0xF400, 0, "2.9.0.0", 65, {"3.0.0.0"}, {none, none, "3.0.0.0", "3.0.0.0"}},
        {"other family", 0xF400, 0, "1.0.0.0", 66, b1, {none, none, none, none}, NO_IMAGE},
        {"B1, fit and older", 0xF500, 0x11, "14.4.188.1", 66, b1, {"14.4.190.0", "14.4.190.0", none, "14.4.190.0"}},
        {"B1, fit ones only", 0xF500, 0x11, "14.4.190.0", 66, b1, {none, "14.4.190.0", "14.4.188.1", "14.4.190.0"}},
        {"B1, older only", 0xF500, 0x11, "14.0.0.0", 66, {"14.4.188.0"}, {none, none, none, none}, NO_IMAGE},
        {"above B1", 0xF500, 0x12, "14.0.0.0", 66, b1, {none, none, none, none}, NO_IMAGE},
        {"below B1", 0xF500, 0x10, "14.4.188.1", 66, b1, {"14.4.190.0", "14.4.190.0", "14.2.0.0", "14.4.190.0"}},
        {"no second revision", 0xF600, 0x11, "14.4.190.0", 67, {"14.2.0.0"}, {none, none, "14.2.0.0", "14.2.0.0"}},
        // clang-format on
    };
    runOptions.preview = runOptions.verbose = 1;
    runOptions.autoSelect = 1;
    for (const auto& c : cases) {
        for (const char* name : {"0", "1", "2"}) {
            removeFile((std::string(name) + ".grp").c_str());
        }
        for (size_t i = 0; i < c.images.size(); i++) {
            write(std::to_string(i) + ".grp", grpFile(c.family, c.images[i]));
        }
        for (size_t m = 0; m < 4; m++) {
            SCOPED_TRACE(std::string(c.what) + ", " + modes[m].name);
            setMode(modes[m].flag);
            freeHbaList();
            HbaRecord* hba = addPort(c.deviceId, c.running);
            hba->fwImage.asicRevisionId = c.revision;
            ASSERT_EQ(discoverAutoFirmware(), 0);
            processHbaAuto(hba);
            bool chosen = c.chosen[m][0] != '\0';
            const bool rowHasIt =
                std::string(hba->downloadRow).find("New=" + std::string(c.chosen[m]) + ",") != std::string::npos;
            EXPECT_EQ(rowHasIt, chosen) << "chosen must be '" << c.chosen[m] << "', the row is '" << hba->downloadRow
                                        << "'";
            EXPECT_EQ(shown(hba->fwDownloadStatus), shown(chosen ? OUTCOME_PREVIEW_SUCCEEDED : c.outcome));
            freeCLUImageList(gFirmwareImageList);
            gFirmwareImageList = nullptr;
        }
    }
}
