// The adapter utility's listing, from text to records.
#include <algorithm>

#include "base/text.h"
#include "inventory/listing_parser.h"
#include "records/hba_list.h"
#include "records/port_outcome.h"
#include "records/run_counters.h"
#include "settings/run_options.h"
#include "unit/fixture.h"

struct Listing : RunTest {};

TEST_F(Listing, AValueIsTheWordAfterTheKeysColon) {
    const struct {
        const char *block, *key, *value;
        int result;
    } cases[] = {
        // clang-format off
        {"HBA: 3\nModel: X Y",     "Model",    "X",       0},
        {"HBA: 3\nModel:    X",    "Model",    "X",       0},
        {"Model: a,b",             "Model",    "a",       0},
        {"Port WWN: 10:00:a\n",    "Port WWN", "10:00:a", 0},
        {"Model (base name): X;Y", "Model",    "X",       0},
        {"Model:\nX",              "Model",    "N/A",     1},
        {"Model: \tX\r\n",         "Model",    "\tX",     0},
        {"Model X",                "Model",    "N/A",     1},
        {"HBA: 3\nModel X",        "Model",    "N/A",     1},
        {"Model X\nHBA: 3",        "Model",    "3",       0},
        {"",                       "Model",    "N/A",     1},
        {"VPD Model: 1\nModel: X", "Model",    "1",       0},
        {"Model: 123456789",       "Model",    "1234567", 0},
        // clang-format on
    };
    for (const auto& c : cases) {
        char value[8];
        EXPECT_EQ(getAttribute(c.block, c.key, value, sizeof value, ':'), c.result) << c.block;
        EXPECT_STREQ(value, c.value) << c.block;
    }
}

TEST_F(Listing, ABlockEndsTwoCharactersBeforeTheNext) {
    for (const auto& [text, flashParts] : Rows<const char*, const char*>{
             {"no adapters", ""},
             {"title\nHBA: 1\nFlash Part: AA\n\nHBA: 2\nFlash Part: BB", "AA BB "},
             {"HBA: 1\nFlash Part: AA\nHBA: 2\nFlash Part: BB", "A BB "},
             {"HBA: 1\nFlash Part: AA\n\n\n\nHBA: 2", "AA N/A "},
             {"my HBA list:\n\nHBA: 1\nFlash Part: AA", "N/A AA "},
             {"HBAHBAHBA", "N/A N/A N/A "},
         }) {
        freeHbaList();
        parseListing(text);
        std::string found;
        for (const HbaRecord* hba = gHbaList; hba != nullptr; hba = hba->next) {
            found += std::string(hba->flashPart) + " ";
        }
        EXPECT_EQ(found, flashParts) << text;
        EXPECT_EQ(gHbaCount, std::count(found.begin(), found.end(), ' ')) << text;
    }
}

TEST_F(Listing, ABlockFillsItsRecord) {
    parseListing(
        "HBA: 3\nPort WWN: 10:00:aa:bb:cc:dd:ee:01\nPCI Bus Number: 3B\nPCI Dev Number: 1F\nPCI Fun Number: 1\n"
        "Model: QVa5202-M2\nDevice ID: E300\nVendor ID: 1234\nSub Device ID: E311\nSub Vendor ID: 5678\n"
        "Multi Channel: 2\nSerial Number: ab12345678\nVPD Model: 7\nRevID: 1FF\nSFJ: -1\nChange Status: 0\n"
        "CSF: 0\nFlash Part: FP01\nFW Version: 3.4.473.14\nBoot Version: 14.4.a.1\nBoot Enabled: 1");
    const HbaRecord* hba = gHbaList;
    char record[512];
    formatText(record, sizeof record, "%d %s %s %s %s %s|%X %X %X|%X %X %X %X|%d %d %d|%X %d|%s %d %d|%s %d %d",
               hba->adapterNumber, hba->portWwn, hba->model, hba->fwMatrixType, hba->portType, hba->serialNumber,
               hba->busNumber, hba->devNumber, hba->funNumber, hba->deviceId, hba->vendorId, hba->subDeviceId,
               hba->subVendorId, hba->multiChannel, hba->vpdModel, hba->sfj, hba->fwImage.asicRevisionId,
               hba->imageType, hba->fwImage.decodedVersion, hba->fwImage.CNAMajorVer, hba->fwImage.extType,
               hba->bcVersion, hba->bootImage.CNABuildVer, hba->bootEnabled);
    EXPECT_STREQ(record,
                 "3 10:00:AA:BB:CC:DD:EE:01 QVa5202 QVa5202 FC AB12345678|3B 1F 1|E300 1234 E311 5678|2 7 -1|FF 64|"
                 "3.4.473.14 2 14|14.4.A.1 1 1");
    EXPECT_EQ(runCounters.knownHbaCount, 1);
}

TEST_F(Listing, VersionsAndStatusFollowTheirRules) {
    for (const auto& [lines, state] : Rows<const char*, std::string>{
             {"Boot Enabled: 1", "0.0.0.0|N/A|N/A|0|0"},
             {"FW Version: n/a\nBoot Version: nonexyz\nBoot Enabled: 1", "0.0.0.0|NONE|N/A|0|0"},
             {"FW Version: none\nBoot Version: 1.2.3.4b\nBoot Enabled: 1", "NONE|1.2.3.4B|N/A|1|0"},
             {"FW Version: xN/Ax\nBoot Version: -n/a-\nBoot Enabled: 1", "0.0.0.0|-N/A-|N/A|0|0"},
             {"SFJ: 4294967295\nCSF: -1\nChange Status: 1", "0.0.0.0|N/A|N/A|0|-1"},
             {"SFJ: 1\nCSF: 1\nChange Status: 0", "0.0.0.0|N/A|" + std::string(ACTIVATED_TEXT) + "|0|1"},
             {"CSF: 1\nChange Status: 1", "0.0.0.0|N/A|" + std::string(REBOOT_TO_ACTIVATE_TEXT) + "|0|0"},
             {"CSF: 0\nChange Status: 2", "0.0.0.0|N/A|" + std::string(REBOOT_TO_ACTIVATE_TEXT) + "|0|0"},
             {"CSF: 99999999999\nChange Status: 2", "0.0.0.0|N/A|N/A|0|0"}}) {
        freeHbaList();
        parseListing((std::string("HBA: 1\n") + lines).c_str());
        ASSERT_NE(gHbaList, nullptr);
        char found[512];
        formatText(found, sizeof found, "%s|%s|%s|%d|%d", gHbaList->fwVersion, gHbaList->bcVersion, gHbaList->fwStatus,
                   gHbaList->bootEnabled, gHbaList->sfj);
        EXPECT_EQ(found, state) << lines;
    }
}

TEST_F(Listing, LongValuesAreCutToTheirFields) {
    std::string text = "HBA: 1";
    for (const char* key :
         {"Port WWN", "Model", "Serial Number", "Flash Part", "FW Version", "Boot Version", "Device ID"}) {
        text += std::string("\n") + key + ": " + std::string(3000, '7');
    }
    parseListing(text.c_str());
    EXPECT_EQ(gHbaList->portWwn, std::string(31, '7'));
    EXPECT_EQ(gHbaList->model, std::string(79, '7'));
    EXPECT_EQ(gHbaList->fwMatrixType, std::string(31, '7'));
    EXPECT_EQ(gHbaList->serialNumber, std::string(255, '7'));
    EXPECT_EQ(gHbaList->flashPart, std::string(17, '7'));
    EXPECT_EQ(gHbaList->fwVersion, std::string(31, '7'));
    EXPECT_EQ(gHbaList->bcVersion, std::string(31, '7'));
}

TEST_F(Listing, VpdKeepsTheWholeModel) {
    runOptions.vpd = 1;
    parseListing("HBA: 1\nModel: X-Y-Z");
    EXPECT_EQ(std::string(gHbaList->model) + " " + gHbaList->fwMatrixType, "X-Y-Z X-Y-Z");
}

TEST_F(Listing, ARecordGoesToTheTailOrTheHead) {
    for (uint32_t append : {0, 1, 0, 1}) {
        allocHba(append);
    }
    std::string forth, back;
    for (const HbaRecord* hba = gHbaList; hba != nullptr; hba = hba->next) {
        forth += std::to_string(hba->adapterNumber);
        back = std::to_string(hba->prev == nullptr ? 0 : hba->prev->adapterNumber) + back;
    }
    EXPECT_EQ(forth + "/" + back, "3124/2130");
}

TEST_F(Listing, UnusablePortsAreKnownByWholeTexts) {
    for (const auto& [wwn, model, fwVersion, bcVersion, invalid] :
         Rows<const char*, const char*, const char*, const char*, int>{
             // clang-format off
        {"10:00",                   "M",             "1.2.3.4", "NONE", 0},
        {"00:00:00:00:00:00:00:00", "M",             "1",       "1",    1},
        {"N/A",                     "M",             "1",       "1",    1},
        {"NONE",                    "M",             "1",       "1",    1},
        {"10:00",                   "UNKNOWN_MODEL", "1",       "1",    1},
        {"10:00",                   "Unknown",       "1",       "1",    1},
        {"10:00",                   "Unknown2",      "1",       "1",    0},
        {"10:00",                   "unknown",       "1",       "1",    0},
        {"10:00",                   "M",             "N/A",     "1",    1},
        {"10:00",                   "M",             "1",       "N/A",  1},
        {"10:00",                   "M",             "NONE",    "1",    1},
        {"",                        "",              "",        "",     0},
             // clang-format on
         }) {
        HbaRecord hba = {};
        strcpy(hba.portWwn, wwn);
        strcpy(hba.model, model);
        strcpy(hba.fwVersion, fwVersion);
        strcpy(hba.bcVersion, bcVersion);
        EXPECT_EQ(isInvalidHba(&hba), invalid) << wwn << " " << model << " " << fwVersion;
    }
}
