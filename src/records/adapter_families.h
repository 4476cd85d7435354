// The adapter families, and how ports and .grp images are assigned to them. A new family is a new row here;
// the predicates on a device ID read the rows.
#pragma once

#include <cstddef>
#include <cstdint>

// In the order of the two lines and, within a line, of the models: a later model has all that the earlier ones have.
enum AdapterKind { KIND_TAMBOR, KIND_TAMBOR_T6, KIND_CORAL, KIND_CORAL_PLUS, KIND_CORAL_PLUS_S_SEC };

// The image type of each family. The order is that of the images in the catalogue.
enum ImageType : uint32_t {
    GRP_IMAGE = 32,
    GRP_T6_IMAGE = 64,
    GRP_CORAL_IMAGE = 65,
    GRP_CORAL_PLUS_IMAGE = 66,
    GRP_CORAL_PLUS_S_SEC_IMAGE = 67,
};

// A second ASIC revision of a family, which refuses older firmware.
struct NewerAsic {
    uint32_t revision;          // the lowest RevID of such a port; 0 = the family has no second revision
    uint32_t lowestVersion[4];  // of the firmware that runs on it
};

struct AdapterFamily {
    ImageType imageType;
    const char* name;  // in dumps
    AdapterKind kind;
    uint32_t deviceIds[2];     // PCI device IDs of its ports; 0 = unused
    uint16_t signature;        // of its .grp images; 0 = the family has no images
    uint32_t magicNumbers[2];  // of its .grp images; 0 = unused. The trace of a bad header knows only the first
    NewerAsic newerAsic;
};

// In the order in which an image header is tried against them.
inline constexpr AdapterFamily adapterFamilies[] = {
    {.imageType = GRP_CORAL_PLUS_S_SEC_IMAGE,
     .name = "GRP_CORAL_PLUS_S_SEC_IMAGE",
     .kind = KIND_CORAL_PLUS_S_SEC,
     .deviceIds = {0xF600},
     .signature = 0xF7A6,
     .magicNumbers = {0xFEAA0040, 0xFEAA0030},
     .newerAsic = {}},
    {.imageType = GRP_CORAL_PLUS_IMAGE,
     .name = "GRP_CORAL_PLUS_IMAGE",
     .kind = KIND_CORAL_PLUS,
     .deviceIds = {0xF500},
     .signature = 0xF7A5,
     .magicNumbers = {0xFEAA0020, 0xFEAA0010},
     .newerAsic = {.revision = 0x11, .lowestVersion = {14, 4, 188, 1}}},
    {.imageType = GRP_CORAL_IMAGE,
     .name = "GRP_CORAL_IMAGE",
     .kind = KIND_CORAL,
     .deviceIds = {0xF400},
     .signature = 0xF7A4,
     .magicNumbers = {0xFEAA0005},
     .newerAsic = {}},
    {.imageType = GRP_T6_IMAGE,
     .name = "GRP_T6_IMAGE",
     .kind = KIND_TAMBOR_T6,
     .deviceIds = {0xE300},
     .signature = 0xF70C,
     .magicNumbers = {0xFEAA0003},
     .newerAsic = {}},
    {.imageType = GRP_IMAGE,
     .name = "GRP_IMAGE",
     .kind = KIND_TAMBOR,
     .deviceIds = {0xE200, 0xE208},
     .signature = 0,
     .magicNumbers = {},
     .newerAsic = {}},
};

// Return null when there is no such family; 0 belongs to none.
const AdapterFamily* familyOfDevice(uint32_t deviceId);
const AdapterFamily* familyOfImageType(uint32_t imageType);
const AdapterFamily* familyOfSignature(uint32_t signature);

// Return 1 or 0. A later model counts as the earlier ones of its line, too.
int isTamborDevice(uint32_t deviceId);
int isTamborT6Device(uint32_t deviceId);
int isCoralDevice(uint32_t deviceId);
int isCoralPlusDevice(uint32_t deviceId);
int isCoralPlusSSecDevice(uint32_t deviceId);
