// The tables that the program decides by, walked as data.
#include <set>

#include "base/text.h"
#include "download/download_driver.h"
#include "download/download_status.h"
#include "inventory/adapter_families.h"
#include "selection/fw_matrix.h"
#include "unit/fixture.h"

TEST(Tables, EachOutcomeHasOneMessageThatSaysItsKind) {
    std::set<std::string> seen;
    for (const char* message : DownloadStatusMessages) {
        ASSERT_NE(message, nullptr);
        EXPECT_TRUE(seen.insert(message).second) << message;
        EXPECT_TRUE(std::string(message).starts_with("Download ") ||
                    std::string(message).starts_with("Adapter skipped. "))
            << message;
        EXPECT_TRUE(std::string(message).ends_with(".")) << message;
    }
    EXPECT_STREQ(DownloadStatusMessages[OUTCOME_UNKNOWN_FIRMWARE_VERSION],
                 "Adapter skipped. Unknown firmware version.");
    EXPECT_STREQ(DownloadStatusMessages[OUTCOME_INVALID_FILE_LENGTH], "Download failed. Invalid firmware file length.");
}

TEST(Tables, FamiliesAreKnownByEachOfTheirMarksAlone) {
    std::set<uint32_t> types;
    std::set<uint32_t> devices;
    std::set<uint32_t> signatures;
    std::set<uint32_t> magicNumbers;
    for (const AdapterFamily& family : adapterFamilies) {
        EXPECT_TRUE(types.insert(family.imageType).second) << family.name;
        EXPECT_EQ(familyOfImageType(family.imageType), &family);
        for (uint32_t id : family.deviceIds) {
            EXPECT_TRUE(id == 0 || devices.insert(id).second) << family.name;
            EXPECT_EQ(familyOfDevice(id), id == 0 ? nullptr : &family);
        }
        EXPECT_TRUE(family.signature == 0 || signatures.insert(family.signature).second) << family.name;
        EXPECT_EQ(family.signature == 0, family.magicNumbers[0] == 0) << family.name;
        for (uint32_t number : family.magicNumbers) {
            EXPECT_TRUE(number == 0 || magicNumbers.insert(number).second) << family.name;
        }
    }
    EXPECT_EQ(familyOfSignature(0), nullptr);
    EXPECT_EQ(familyOfImageType(0), nullptr);
}

TEST(Tables, MatrixModelsAreUniqueAndOfKnownFamilies) {
    std::set<std::string> names;
    for (const FwMatrixModelEntry& entry : FwMatrixModelTable) {
        std::string name = entry.modelName;
        upperCaseInPlace(name.data());
        EXPECT_TRUE(names.insert(name).second) << entry.modelName;
        EXPECT_NE(familyOfDevice(entry.deviceId), nullptr) << entry.modelName;
        char shortCode[8];
        EXPECT_EQ(lookupFwMatrixModel(name.c_str(), shortCode), 0);
        EXPECT_STREQ(shortCode, entry.shortCode);
    }
    char shortCode[8];
    EXPECT_EQ(lookupFwMatrixModel("", shortCode), 1);
    EXPECT_STREQ(shortCode, "XX");
}
