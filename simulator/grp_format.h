// The header of a .grp firmware image: its layout in the file, and the identifiers of each adapter family.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace simulator {

constexpr size_t GRP_HEADER_SIZE = 140;
constexpr size_t GRP_BUILD_STRING_SIZE = 128;

// An adapter family and the identifiers in the headers of its images.
struct GrpFamily {
    unsigned number;       // 64 to 67
    uint32_t deviceId;     // of the adapters that accept these images
    uint16_t signature;    // top 16 bits of the header's signature word
    uint32_t magic;        // the magic number of new images
    uint32_t secondMagic;  // a second one that is accepted as well, 0 if there is none
};

struct GrpHeader {
    uint32_t firstWord;
    uint32_t magic;
    uint32_t signature;
    char buildString[GRP_BUILD_STRING_SIZE];  // starts with the version; ends with a NUL unless it is broken
};

enum class ByteOrder { BIG, LITTLE };

// The family with this number, null if there is none.
const GrpFamily* findFamilyByNumber(unsigned number);

// The family whose magic number and signature the header holds, null if there is none.
const GrpFamily* findFamilyByHeader(const GrpHeader& header);

// The family with the next number; after the last family the first one.
const GrpFamily& nextFamily(const GrpFamily& family);

// Encodes the header as in a file. A good file has its words in big-endian order.
void encodeGrpHeader(const GrpHeader& header, ByteOrder order, unsigned char (&bytes)[GRP_HEADER_SIZE]);

// Decodes a header from the first bytes of a file.
void decodeGrpHeader(const unsigned char (&bytes)[GRP_HEADER_SIZE], GrpHeader& header);

// The digits and dots at the start of the build string, which may be none. No value when the build string
// fills its field without a NUL.
std::optional<std::string> versionOfHeader(const GrpHeader& header);

}  // namespace simulator
