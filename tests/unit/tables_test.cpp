// The tables that the program decides by.
#include <set>

#include "inventory/listing_parser.h"
#include "records/adapter_families.h"
#include "selection/fw_matrix.h"
#include "unit/fixture.h"

TEST(Tables, AFamilyIsFoundByEachOfItsNumbersAlone) {
    std::set<std::pair<std::string, uint32_t>> numbers;
    for (const AdapterFamily& family : adapterFamilies) {
        auto isItsOwn = [&](const char* kind, uint32_t number) {
            return number == 0 || numbers.insert({kind, number}).second;
        };
        EXPECT_TRUE(isItsOwn("type", family.imageType) && isItsOwn("signature", family.signature)) << family.name;
        EXPECT_EQ(familyOfImageType(family.imageType), &family);
        for (uint32_t id : family.deviceIds) {
            EXPECT_TRUE(isItsOwn("device", id)) << family.name;
            EXPECT_EQ(familyOfDevice(id), id == 0 ? nullptr : &family);
        }
        EXPECT_EQ(family.signature == 0, family.magicNumbers[0] == 0) << family.name;
        for (uint32_t number : family.magicNumbers) {
            EXPECT_TRUE(isItsOwn("magic number", number)) << family.name;
        }
    }
    EXPECT_EQ(familyOfSignature(0), nullptr);
    EXPECT_EQ(familyOfImageType(0), nullptr);
}

TEST(Tables, MatrixModelsAreOfKnownFamilies) {
    char shortCode[8];
    for (const FwMatrixModelEntry& entry : FwMatrixModelTable) {
        EXPECT_NE(familyOfDevice(entry.deviceId), nullptr) << entry.modelName;
    }
    EXPECT_EQ(lookupFwMatrixModel("", shortCode), 1);
    EXPECT_STREQ(shortCode, "XX");
}

TEST(Tables, TheDeviceIdDecidesLineAndModel) {
    const struct {
        uint32_t deviceId;
        int tambor, tamborT6, coral, coralPlus, coralPlusSSec;
    } devices[] = {
        {0xE200, 1, 0, 0, 0, 0}, {0xE208, 1, 0, 0, 0, 0}, {0xE300, 1, 1, 0, 0, 0}, {0xF400, 0, 0, 1, 0, 0},
        {0xF500, 0, 0, 1, 1, 0}, {0xF600, 0, 0, 1, 1, 1}, {0xF700, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0},
    };
    for (const auto& device : devices) {
        SCOPED_TRACE(testing::Message() << "device " << std::hex << device.deviceId);
        EXPECT_EQ(isTamborDevice(device.deviceId), device.tambor);
        EXPECT_EQ(isTamborT6Device(device.deviceId), device.tamborT6);
        EXPECT_EQ(isCoralDevice(device.deviceId), device.coral);
        EXPECT_EQ(isCoralPlusDevice(device.deviceId), device.coralPlus);
        EXPECT_EQ(isCoralPlusSSecDevice(device.deviceId), device.coralPlusSSec);
    }
}

TEST(Tables, PortsOfEachFamilyGetItsImageType) {
    for (const AdapterFamily& family : adapterFamilies) {
        for (uint32_t id : family.deviceIds) {
            HbaRecord hba = {};
            hba.deviceId = id;
            encodeAndUpdateFCVersion(&hba);
            EXPECT_EQ(hba.imageType, id == 0 ? 0U : family.imageType) << family.name;
        }
    }
}
