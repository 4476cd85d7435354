#include "grp_format.h"

#include <cstring>
#include <string_view>

namespace simulator {

// clang-format off
static constexpr GrpFamily families[] = {
    {.number = 64, .deviceId = 0xE300, .signature = 0xF70C, .magic = 0xFEAA0003, .secondMagic = 0},
    {.number = 65, .deviceId = 0xF400, .signature = 0xF7A4, .magic = 0xFEAA0005, .secondMagic = 0},
    {.number = 66, .deviceId = 0xF500, .signature = 0xF7A5, .magic = 0xFEAA0020, .secondMagic = 0xFEAA0010},
    {.number = 67, .deviceId = 0xF600, .signature = 0xF7A6, .magic = 0xFEAA0040, .secondMagic = 0xFEAA0030},
};
// clang-format on

static constexpr size_t WORD_SIZE = 4;
static constexpr size_t BUILD_STRING_OFFSET = 3 * WORD_SIZE;
static_assert(BUILD_STRING_OFFSET + GRP_BUILD_STRING_SIZE == GRP_HEADER_SIZE);

const GrpFamily* findFamilyByNumber(unsigned number) {
    for (const GrpFamily& family : families) {
        if (family.number == number) {
            return &family;
        }
    }
    return nullptr;
}

static bool isHeaderOf(const GrpHeader& header, const GrpFamily& family) {
    if (header.signature >> 16 != family.signature) {
        return false;
    }
    return header.magic == family.magic || (family.secondMagic != 0 && header.magic == family.secondMagic);
}

const GrpFamily* findFamilyByHeader(const GrpHeader& header) {
    for (const GrpFamily& family : families) {
        if (isHeaderOf(header, family)) {
            return &family;
        }
    }
    return nullptr;
}

const GrpFamily& nextFamily(const GrpFamily& family) {
    const GrpFamily* next = findFamilyByNumber(family.number + 1);
    return next != nullptr ? *next : families[0];
}

static void putWord(uint32_t word, ByteOrder order, unsigned char* bytes) {
    for (size_t i = 0; i < WORD_SIZE; i++) {
        size_t place = order == ByteOrder::BIG ? WORD_SIZE - 1 - i : i;
        bytes[place] = static_cast<unsigned char>(word >> (8 * i) & 0xFF);
    }
}

static uint32_t getWord(const unsigned char* bytes) {
    uint32_t word = 0;
    for (size_t i = 0; i < WORD_SIZE; i++) {
        word = word << 8 | bytes[i];
    }
    return word;
}

void encodeGrpHeader(const GrpHeader& header, ByteOrder order, unsigned char (&bytes)[GRP_HEADER_SIZE]) {
    putWord(header.firstWord, order, bytes);
    putWord(header.magic, order, bytes + WORD_SIZE);
    putWord(header.signature, order, bytes + 2 * WORD_SIZE);
    memcpy(bytes + BUILD_STRING_OFFSET, header.buildString, GRP_BUILD_STRING_SIZE);
}

void decodeGrpHeader(const unsigned char (&bytes)[GRP_HEADER_SIZE], GrpHeader& header) {
    header.firstWord = getWord(bytes);
    header.magic = getWord(bytes + WORD_SIZE);
    header.signature = getWord(bytes + 2 * WORD_SIZE);
    memcpy(header.buildString, bytes + BUILD_STRING_OFFSET, GRP_BUILD_STRING_SIZE);
}

std::optional<std::string> versionOfHeader(const GrpHeader& header) {
    if (memchr(header.buildString, 0, GRP_BUILD_STRING_SIZE) == nullptr) {
        return std::nullopt;
    }
    std::string_view text(header.buildString);
    return std::string(text.substr(0, text.find_first_not_of("0123456789.")));
}

}  // namespace simulator
