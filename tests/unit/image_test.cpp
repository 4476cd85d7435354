// Versions, .grp headers and the list of the firmware directory.
#include <array>
#include <filesystem>
#include <vector>

#include "images/clu_image.h"
#include "images/grp_reader.h"
#include "images/image_catalogue.h"
#include "unit/fixture.h"

using Numbers = std::array<uint32_t, 4>;

struct Images : RunTest {};

TEST_F(Images, VersionTextsBecomeFourNumbers) {
    const struct {
        const char* text;
        uint32_t bufSize;
        int status;
        Numbers numbers;
    } cases[] = {
        {"14.4.473.14", 64, 0, {14, 4, 473, 14}},
        {"3.0.1.2", 64, 0, {2, 0, 1, 2}},
        {"2.3.3.3", 64, 0, {2, 3, 3, 3}},
        {"12.6", 64, 4, {12, 6, 0, 0}},
        {"1..2.3.4", 64, 0, {1, 2, 3, 4}},
        {".1.2.3.4.", 64, 0, {1, 2, 3, 4}},
        {"1.2.3.4.5", 64, 0, {1, 2, 3, 4}},
        {"14b.x.-5.+6", 64, 0, {14, 0, 0, 0}},
        {"4294967296.1.2.99999999999999999999999", 64, 0, {4294967295, 1, 2, 4294967295}},
        {"NONE", 64, 4, {0, 0, 0, 0}},
        {"...", 64, 4, {0, 0, 0, 0}},
        {"", 64, 4, {9, 9, 9, 9}},
        {"1.2.3.456", 8, 0, {1, 2, 3, 4}},
    };
    for (const auto& c : cases) {
        Numbers n = {9, 9, 9, 9};
        EXPECT_EQ(encodeCNAVersion(&n[0], &n[1], &n[2], &n[3], c.bufSize, c.text), c.status) << c.text;
        EXPECT_EQ(n, c.numbers) << c.text;
    }
    Numbers n = {};
    EXPECT_EQ(encodeCNAVersion(&n[0], nullptr, &n[2], &n[3], 64, "1.2.3.4"), 4);
    EXPECT_EQ(traces(),
              "[encodeCNAVersion] - pDecodedVersion is zero-length!\n[encodeCNAVersion] - Invalid arguments!\n");
}

TEST_F(Images, FamilyOutweighsVersionAndNumbersAreNoText) {
    const struct {
        uint32_t familyA;
        const char* a;
        uint32_t familyB;
        const char* b;
        int order;
    } cases[] = {
        {65, "14.4.9.1", 65, "14.4.188.1", -1}, {65, "14.4.188.2", 65, "14.4.188.1", 1},
        {65, "2.0.1.2", 65, "3.0.1.2", 0},      {67, "1.0.0.0", 66, "99.0.0.0", 1},
        {64, "99.0.0.0", 65, "1.0.0.0", -1},    {66, "14.5.0.0", 66, "14.4.999.999", 1},
    };
    for (const auto& c : cases) {
        CLUImage a = fileImage(c.familyA, c.a);
        CLUImage b = fileImage(c.familyB, c.b);
        EXPECT_EQ(isGreaterCNAVersion(&a, &b), c.order) << c.a << " against " << c.b;
    }
    EXPECT_EQ(isGreaterCNAVersion(nullptr, nullptr), 4);
}

TEST_F(Images, TestVersionIsReachedFieldByField) {
    const struct {
        Numbers version;
        int result;
        const char* lastTrace;
    } cases[] = {
        {{14, 4, 188, 1}, 1, "Versions are equal. Status = 1\n\n"},
        {{14, 4, 188, 0}, 0, "Returning from Comparing Build Versions. Status = 0\n\n"},
        {{14, 4, 200, 0}, 1, "Returning from Comparing Release Versions. Status = 1\n\n"},
        {{14, 3, 999, 999}, 0, "Returning from Comparing Minor Versions. Status = 0\n\n"},
        {{15, 0, 0, 0}, 1, "Returning from Comparing Major Versions. Status = 1\n\n"},
    };
    for (const auto& c : cases) {
        const Numbers& v = c.version;
        EXPECT_EQ(isEqualOrHigherThanTestVersion(v[0], v[1], v[2], v[3], 14, 4, 188, 1), c.result) << c.lastTrace;
        EXPECT_TRUE(traces().ends_with(c.lastTrace)) << c.lastTrace;
    }
}

TEST_F(Images, HeadersAreTriedFamilyByFamilyAndTracedByWhatIsWrong) {
    const struct {
        uint32_t magicNumber, signature;
        std::string buildString;
        int status;
        uint32_t imageType;
        std::string version;
        std::string wrong;
    } cases[] = {
        {0xFEAA0003, 0xF70C0000, "14.0.1.2", 0, 64, "14.0.1.2", ""},
        {0xFEAA0005, 0xF7A4FFFF, "14.0.1.2 for all ports", 0, 65, "14.0.1.2", ""},
        {0xFEAA0010, 0xF7A51234, "14.4.188.1", 0, 66, "14.4.188.1", ""},
        {0xFEAA0020, 0xF7A50000, "14.4.188", 0, 66, "14.4.188", ""},
        {0xFEAA0030, 0xF7A60000, "v14", 0, 67, "", ""},
        {0xFEAA0040, 0xF7A60000, std::string(63, '1'), 0, 67, std::string(63, '1'), ""},
        {0xFEAA0040, 0xF7A60000, std::string(64, '1'), 1, 0, "", "version decode bad"},
        {0xFEAA0040, 0xF7A60000, std::string(127, 'x'), 0, 67, "", ""},
        {0xFEAA0040, 0xF7A60000, std::string(128, '1'), 1, 0, "", "version decode bad"},
        {0xFEAA0040, 0xF7A50000, "1.2.3.4", 1, 0, "0.0.0.0", ""},
        // The second magic number of a family is not known to the trace.
        {0xFEAA0030, 0xF70C0000, "1.2.3.4", 1, 0, "0.0.0.0", "magic number bad"},
        {0xFEAA0099, 0xF7A50000, "1.2.3.4", 1, 0, "0.0.0.0", "magic number bad"},
        {0xFEAA0003, 0xF7990000, "1.2.3.4", 1, 0, "0.0.0.0", "signature bad"},
        {0x0300AAFE, 0x00000CF7, "1.2.3.4", 1, 0, "0.0.0.0", "magic number bad signature bad"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << c.magicNumber << "/" << c.signature << " " << c.buildString);
        write("a.grp", grpHeader(c.magicNumber, c.signature, c.buildString));
        CLUImage image = {};
        image.extType = GRP_EXTENSION_TYPE;
        EXPECT_EQ(verifyFwFile("a.grp", &image), c.status);
        EXPECT_EQ(image.imageType, c.imageType);
        EXPECT_EQ(image.decodedVersion, c.version);
        std::string trace = traces();
        for (const char* wrong : {"magic number bad", "signature bad", "version decode bad"}) {
            EXPECT_EQ(trace.find(wrong) == std::string::npos, c.wrong.find(wrong) == std::string::npos) << trace;
        }
    }
}

TEST_F(Images, DirectoryBecomesASortedList) {
    const std::string name63 = std::string(59, 'n') + ".grp";
    write("a.grp", grpFile(65, "14.0.1.1"));
    write("b.grp", grpFile(65, "14.2.1.1"));
    write("c.GRP", grpFile(65, "14.1.1.1"));
    write("d.grp.bak", grpFile(65, "14.1.1.1"));
    write("e.Grp", grpFile(65, "15.0.0.0"));
    write("f.grp", grpFile(66, "14.4.188.0"));
    write("g.grp", grpFile(66, "14.4.188.1"));
    write("h.grp", grpFile(67, "14.4.188.1"));
    write("bad.grp", "no header");
    write(name63, grpFile(64, "1.0.0.0"));
    write("n" + name63, grpFile(64, "2.0.0.0"));
    std::filesystem::create_directory("i.grp");
    uint32_t status = 99;
    gFirmwareImageList = makeFileNameList(".\\", &status, IMAGE_CLASS_SELECTION);
    const struct {
        std::string name;
        uint32_t asicRevisionId;
    } expected[] = {{"h.grp", 0}, {"g.grp", 0x11},  {"f.grp", 0}, {"b.grp", 0},
                    {"c.GRP", 0}, {"d.grp.bak", 0}, {"a.grp", 0}, {name63, 0}};
    EXPECT_EQ(status, 0U);
    const CLUImage* image = gFirmwareImageList;
    const CLUImage* before = nullptr;
    for (const auto& e : expected) {
        ASSERT_NE(image, nullptr) << e.name;
        EXPECT_EQ(image->filename, e.name);
        EXPECT_EQ(image->asicRevisionId, e.asicRevisionId) << e.name;
        EXPECT_EQ(image->prev, before);
        before = image;
        image = image->next;
    }
    EXPECT_EQ(image, nullptr);
}

TEST_F(Images, SortingKeepsTheOrderOfEqualImages) {
    for (size_t count : {0, 1, 2, 3, 7, 64, 1000}) {
        std::vector<CLUImage> images;
        for (size_t i = 0; i < count; i++) {
            images.push_back(fileImage(static_cast<uint32_t>(64 + i * 7 % 3), std::to_string(i * 31 % 17) + ".0.0.0"));
            images.back().extType = static_cast<uint32_t>(i);  // the place in which it came
        }
        for (size_t i = 0; i + 1 < count; i++) {
            images[i].next = &images[i + 1];
        }
        CLUImage* head = sortCLUImageList(count == 0 ? nullptr : images.data());
        size_t found = 0;
        for (const CLUImage* image = head; image != nullptr; image = image->next, found++) {
            const CLUImage* before = image->prev;
            int order = before == nullptr ? 1 : isGreaterCNAVersion(before, image);
            EXPECT_TRUE(order == 1 || (order == 0 && before->extType < image->extType)) << found << " of " << count;
        }
        EXPECT_EQ(found, count);
    }
}

TEST_F(Images, DirectoriesThatCannotBeReadHaveAStatus) {
    std::filesystem::create_directory("empty");
    const struct {
        std::string directory;
        uint32_t status;
        std::string trace;
    } cases[] = {
        {"empty\\", CATALOGUE_EMPTY, ""},
        {"gone\\", CATALOGUE_NO_DIRECTORY, ""},
        {"", 99, "\n[makeFileNameList] - Directory path is null!\n"},
        {"empty", 0, "\n[makeFileNameList] - Directory path does not include trailing \\\n"},
        {std::string(219, 'd') + "\\", 0, "\n[makeFileNameList] - Directory path is too long!\n"},
        {std::string(218, 'd') + "\\", CATALOGUE_NO_DIRECTORY, ""},
    };
    for (const auto& c : cases) {
        uint32_t status = 99;
        EXPECT_EQ(makeFileNameList(c.directory.c_str(), &status, 0), nullptr);
        EXPECT_EQ(status, c.status) << c.directory;
        EXPECT_EQ(traces(), c.trace);
    }
}
