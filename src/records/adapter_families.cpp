#include "records/adapter_families.h"

const AdapterFamily* familyOfDevice(uint32_t deviceId) {
    for (const AdapterFamily& family : adapterFamilies) {
        for (uint32_t id : family.deviceIds) {
            if (id != 0 && id == deviceId) {
                return &family;
            }
        }
    }
    return nullptr;
}

const AdapterFamily* familyOfImageType(uint32_t imageType) {
    for (const AdapterFamily& family : adapterFamilies) {
        if (family.imageType == imageType) {
            return &family;
        }
    }
    return nullptr;
}

const AdapterFamily* familyOfSignature(uint32_t signature) {
    for (const AdapterFamily& family : adapterFamilies) {
        if (family.signature != 0 && family.signature == signature) {
            return &family;
        }
    }
    return nullptr;
}
