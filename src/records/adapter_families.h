// The adapter families: how a port is known for one, and how a .grp image is.
#pragma once

#include <cstddef>
#include <cstdint>

struct AdapterFamily {
    uint32_t imageType;        // never 0
    const char* name;          // in dumps
    uint32_t deviceIds[2];     // PCI device IDs of its ports; 0 fills up
    uint16_t signature;        // of its .grp images; 0 for a family without images
    uint32_t magicNumbers[2];  // of its .grp images; 0 fills up. The trace of a bad header knows the first only
};

// In the order in which an image header is tried against them.
inline constexpr AdapterFamily adapterFamilies[] = {
    {67, "GRP_CORAL_PLUS_S_SEC_IMAGE", {0xF600, 0}, 0xF7A6, {0xFEAA0040, 0xFEAA0030}},
    {66, "GRP_CORAL_PLUS_IMAGE", {0xF500, 0}, 0xF7A5, {0xFEAA0020, 0xFEAA0010}},
    {65, "GRP_CORAL_IMAGE", {0xF400, 0}, 0xF7A4, {0xFEAA0005, 0}},
    {64, "GRP_T6_IMAGE", {0xE300, 0}, 0xF70C, {0xFEAA0003, 0}},
    {32, "GRP_IMAGE", {0xE200, 0xE208}, 0, {0, 0}},
};

// The image type of the family that came in a second ASIC revision, B1, and what marks that revision.
inline constexpr uint32_t B1_FAMILY_IMAGE_TYPE = 66;
inline constexpr uint32_t B1_DEVICE_ID = 0xF500;
inline constexpr uint32_t B1_ASIC_REVISION = 0x11;

// Return null when there is no such family; 0 belongs to none.
const AdapterFamily* familyOfDevice(uint32_t deviceId);
const AdapterFamily* familyOfImageType(uint32_t imageType);
const AdapterFamily* familyOfSignature(uint32_t signature);
