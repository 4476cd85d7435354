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

static int isDeviceOf(uint32_t deviceId, AdapterKind first, AdapterKind last) {
    const AdapterFamily* family = familyOfDevice(deviceId);
    return family != nullptr && family->kind >= first && family->kind <= last ? 1 : 0;
}

int isTamborDevice(uint32_t deviceId) {
    return isDeviceOf(deviceId, KIND_TAMBOR, KIND_TAMBOR_T6);
}

int isTamborT6Device(uint32_t deviceId) {
    return isDeviceOf(deviceId, KIND_TAMBOR_T6, KIND_TAMBOR_T6);
}

int isCoralDevice(uint32_t deviceId) {
    return isDeviceOf(deviceId, KIND_CORAL, KIND_CORAL_PLUS_S_SEC);
}

int isCoralPlusDevice(uint32_t deviceId) {
    return isDeviceOf(deviceId, KIND_CORAL_PLUS, KIND_CORAL_PLUS_S_SEC);
}

int isCoralPlusSSecDevice(uint32_t deviceId) {
    return isDeviceOf(deviceId, KIND_CORAL_PLUS_S_SEC, KIND_CORAL_PLUS_S_SEC);
}
