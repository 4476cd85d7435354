#include "base/text.h"
#include "unit/fixture.h"

TEST(Text, ReadsNumbersAsA32BitUnsignedLong) {
    for (const auto& [text, base, found, value] : Rows<const char*, int, int, uint32_t>{
             // clang-format off
        {"0",                          10, 1, 0},
        {"473",                        10, 1, 473},
        {"12x9",                       10, 1, 12},
        {"x",                          10, 0, 0},
        {"",                           10, 0, 0},
        {"N/A",                        16, 0, 0},
        {"\t 7",                       10, 1, 7},
        {"+7",                         10, 1, 7},
        {"-1",                         10, 1, 4294967295},
        {"- 1",                        10, 0, 0},
        {"--1",                        10, 0, 0},
        {"4294967295",                 10, 1, 4294967295},
        {"4294967296",                 10, 1, 4294967295},
        {"-4294967296",                10, 1, 4294967295},
        {"99999999999999999999999999", 10, 1, 4294967295},
        {"3B",                         16, 1, 0x3B},
        {"0xf500",                     16, 1, 0xF500},
        {"0x",                         16, 1, 0},
        {"f500",                       10, 0, 0},
             // clang-format on
         }) {
        uint32_t read = 0;
        EXPECT_EQ(readUnsigned(text, base, &read), found) << text;
        EXPECT_EQ(read, value) << text;
    }
}

TEST(Text, OnlyLettersHaveTwoCases) {
    char text[] = "a-z{`@";
    upperCaseInPlace(text);
    stripChar(text, '-');
    EXPECT_STREQ(text, "AZ{`@");
    cutAfterLastBackslash(text);
    EXPECT_STREQ(text, "");
}

TEST(Text, NothingIsWrittenPastTheEndOfABuffer) {
    for (size_t size = 1; size <= 6; size++) {
        char out[8] = "#######";
        EXPECT_EQ(formatText(out, size, "%s", "abcd"), size > 4 ? 1 : 0) << size;
        EXPECT_EQ(out, std::string("abcd").substr(0, size - 1)) << size;
        copyText(out, size, "");
        appendText(out, size, "xy");
        appendText(out, size, "z12345");
        EXPECT_EQ(out, std::string("xyz12345").substr(0, size - 1)) << size;
        EXPECT_EQ(out[size], '#') << size;
    }
}
