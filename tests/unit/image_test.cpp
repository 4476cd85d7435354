// Versions, .grp headers and the list of the firmware directory.
#include <array>
#include <filesystem>
#include <vector>

#include "images/grp_reader.h"
#include "images/image_catalogue.h"
#include "images/version_rules.h"
#include "records/clu_image.h"
#include "unit/fixture.h"

using Numbers = std::array<uint32_t, 4>;

struct Images : RunTest {};

TEST_F(Images, VersionTextsBecomeFourNumbers) {
    for (const auto& [text, bufSize, status, numbers] : Rows<const char*, uint32_t, int, Numbers>{
             // clang-format off
        {"14.4.473.14",                            64, 0, {14, 4, 473, 14}},
        {"3.0.1.2",                                64, 0, {2, 0, 1, 2}},
        {"2.3.3.3",                                64, 0, {2, 3, 3, 3}},
        {"12.6",                                   64, 4, {12, 6, 0, 0}},
        {"1..2.3.4",                               64, 0, {1, 2, 3, 4}},
        {".1.2.3.4.",                              64, 0, {1, 2, 3, 4}},
        {"1.2.3.4.5",                              64, 0, {1, 2, 3, 4}},
        {"14b.x.-5.+6",                            64, 0, {14, 0, 0, 0}},
        {"NONE",                                   64, 4, {0, 0, 0, 0}},
        {"4294967296.1.2.99999999999999999999999", 64, 0, {4294967295, 1, 2, 4294967295}},
        {"...",                                    64, 4, {0, 0, 0, 0}},
        {"",                                       64, 4, {9, 9, 9, 9}},
        {"1.2.3.456",                              8,  0, {1, 2, 3, 4}},
             // clang-format on
         }) {
        Numbers n = {9, 9, 9, 9};
        EXPECT_EQ(encodeCNAVersion(&n[0], &n[1], &n[2], &n[3], bufSize, text), status) << text;
        EXPECT_EQ(n, numbers) << text;
    }
    EXPECT_EQ(traces(), "[encodeCNAVersion] - pDecodedVersion is zero-length!\n");
}

TEST_F(Images, ANullArgumentIsRefused) {
    uint32_t n = 9;
    CLUImage image = fileImage(64, "1.2.3.4");
    for (int missing = 0; missing < 6; missing++) {
        uint32_t* numbers[] = {&n, &n, &n, &n, &n, &n};
        numbers[missing] = nullptr;
        EXPECT_EQ(encodeCNAVersion(numbers[0], numbers[1], numbers[2], numbers[3], numbers[4] == nullptr ? 0 : 64,
                                   numbers[5] == nullptr ? nullptr : "1.2.3.4"),
                  4);
        EXPECT_EQ(traces(), "[encodeCNAVersion] - Invalid arguments!\n");
    }
    for (auto [a, b, path, number] :
         {std::tuple{&image, (CLUImage*)nullptr, "a.grp", (uint32_t*)nullptr}, {nullptr, &image, nullptr, &n}}) {
        for (int status : {isGreaterCNAVersion(a, b), isUpdateNeededCNA(a, b, 1), verifyFwFile(path, b),
                           getGRPBuildVersion(path, b), isValidFileExtension(path, number, IMAGE_CLASS_SELECTION)}) {
            EXPECT_EQ(status, 4);
        }
        EXPECT_EQ(makeFileNameList(path, number, IMAGE_CLASS_SELECTION), nullptr);
    }
    EXPECT_EQ(getFirstB1FwMatch(nullptr, &image), nullptr);
    printCLUImage(nullptr);
    image.extType = 0;
    EXPECT_EQ(verifyFwFile("a.bin", &image), RM_STATUS_NO_FIRMWARE_NAME);
    EXPECT_EQ(image.imageType, 0U);
    EXPECT_TRUE(traces().ends_with("\n[printCLUImage] - Invalid argument!\n"));
    EXPECT_EQ(getGRPBuildVersion("a.bin", &image), RM_STATUS_ERROR_INCOMP_IMAGE);
}

TEST_F(Images, AHeaderIsTriedAgainstEachFamilyAndTheTraceNamesWhatIsWrong) {
    const struct {
        uint32_t magicNumber, signature;
        std::string buildString;
        uint32_t imageType;  // 0 for an image that is refused
        std::string version, wrong;
    } cases[] = {
        // clang-format off
        {0xFEAA0003, 0xF70C0000, "14.0.1.2",               64, "14.0.1.2",           ""},
        {0xFEAA0010, 0xF7A51234, "14.4.1",                 66, "14.4.1",             ""},
        {0xFEAA0005, 0xF7A4FFFF, "14.0.1.2 for all ports", 65, "14.0.1.2",           ""},
        {0xFEAA0030, 0xF7A60000, "v14",                    67, "",                   ""},
        {0xFEAA0020, 0xF7A50000, "14.4.188.1",             66, "14.4.188.1",         ""},
        {0xFEAA0040, 0xF7A50000, "1.2",                    0,  "0.0.0.0",            ""},
        {0xFEAA0040, 0xF7A60000, std::string(63, '1'),     67, std::string(63, '1'), ""},
        {0xFEAA0040, 0xF7A60000, std::string(64, '1'),     0,  "",                   "version decode bad"},
        {0xFEAA0040, 0xF7A60000, std::string(127, 'x'),    67, "",                   ""},
        {0xFEAA0040, 0xF7A60000, std::string(128, '1'),    0,  "",                   "version decode bad"},
        // The trace does not know the second magic number of a family.
        {0xFEAA0030, 0xF70C0000, "1.2.3.4",                0,  "0.0.0.0",            "magic number bad"},
        {0xFEAA0099, 0xF7A50000, "1.2.3.4",                0,  "0.0.0.0",            "magic number bad"},
        {0xFEAA0003, 0xF7990000, "1.2.3.4",                0,  "0.0.0.0",            "signature bad"},
        {0x0300AAFE, 0x00000CF7, "1.2.3.4",                0,  "0.0.0.0",            "magic number bad signature bad"},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << c.magicNumber << "/" << c.signature << " " << c.buildString);
        write("a.grp", grpHeader(c.magicNumber, c.signature, c.buildString));
        CLUImage image = {};
        image.extType = GRP_EXTENSION_TYPE;
        EXPECT_EQ(verifyFwFile("a.grp", &image), c.imageType == 0);
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
    const struct {
        std::string name;
        uint32_t imageType;
        const char* version;
        uint32_t asicRevisionId;
        bool listed = true;
    } files[] = {
        // clang-format off
        {"h.grp",      67, "14.4.188.1", 0},
        {"m.grp",      66, "15.0.0.0",   0x11},
        {"l.grp",      66, "14.4.200.0", 0x11},
        {"g.grp",      66, "14.4.188.1", 0x11},
        {"f.grp",      66, "14.4.188.0", 0},
        {"k.grp",      66, "14.3.999.9", 0},
        {"b.grp",      65, "14.2.1.1",   0},
        {"c.GRP",      65, "14.1.1.1",   0},
        {"d.grp.bak",  65, "14.1.1.1",   0},
        {"a.grp",      65, "14.0.1.1",   0},
        {name63,       64, "1.0.0.0",    0},
        {"e.Grp",      65, "15.0.0.0",   0, false},
        {"n" + name63, 64, "2.0.0.0",    0, false},
        // clang-format on
    };
    for (const auto& file : files) {
        write(file.name, grpFile(file.imageType, file.version));
    }
    write("bad.grp", "no header");
    std::filesystem::create_directory("i.grp");
    uint32_t status = 99;
    gFirmwareImageList = makeFileNameList(".\\", &status, IMAGE_CLASS_SELECTION);
    EXPECT_EQ(status, 0U);
    const CLUImage* image = gFirmwareImageList;
    for (const auto& file : files) {
        if (file.listed) {
            ASSERT_NE(image, nullptr) << file.name;
            EXPECT_EQ(image->filename, file.name);
            EXPECT_EQ(image->asicRevisionId, file.asicRevisionId) << file.name;
            EXPECT_TRUE(image->next == nullptr || image->next->prev == image);
            image = image->next;
        }
    }
    EXPECT_EQ(image, nullptr);
    const std::string trace = traces();
    for (const char* step : {"Major Versions. Status = 1", "Minor Versions. Status = 0", "Release Versions. Status = 1",
                             "Build Versions. Status = 0", "Versions are equal. Status = 1"}) {
        EXPECT_NE(trace.find(step + std::string("\n\n")), std::string::npos) << step;
    }
}

TEST_F(Images, InsertedImagesAreInDescendingOrderAndEqualOnesInOrderOfInsertion) {
    for (size_t count : {0, 1, 2, 3, 64, 1000}) {
        std::vector<CLUImage> images(count);
        CLUImage* head = nullptr;
        for (size_t i = 0; i < count; i++) {
            images[i] = fileImage(static_cast<uint32_t>(64 + i * 7 % 3), std::to_string(i * 31 % 17) + ".0.0.0");
            images[i].extType = static_cast<uint32_t>(i);  // the number of its insertion
            head = insertCLUImage(&images[i], head);
        }
        size_t found = 0;
        const CLUImage* before = nullptr;
        for (const CLUImage* image = head; image != nullptr; image = image->next, found++) {
            EXPECT_EQ(image->prev, before) << found << " of " << count;
            int order = before == nullptr ? IMAGE_ABOVE : isGreaterCNAVersion(before, image);
            bool inOrder = order == IMAGE_ABOVE || (order == IMAGE_EQUAL && before->extType < image->extType);
            EXPECT_TRUE(inOrder) << found << " of " << count;
            before = image;
        }
        EXPECT_EQ(found, count);
    }
}

TEST_F(Images, DirectoriesThatCannotBeReadHaveAStatus) {
    std::filesystem::create_directory("empty");
    const struct {
        std::string directory;
        uint32_t status;
        const char* trace;
    } cases[] = {
        {"empty\\", CATALOGUE_EMPTY, ""},
        {"gone\\", CATALOGUE_NO_DIRECTORY, ""},
        {std::string(218, 'd') + "\\", CATALOGUE_NO_DIRECTORY, ""},
        {"", 99, "Directory path is null!"},
        {"empty", 0, "Directory path does not include trailing \\"},
        {std::string(219, 'd') + "\\", 0, "Directory path is too long!"},
    };
    for (const auto& c : cases) {
        uint32_t status = 99;
        EXPECT_EQ(makeFileNameList(c.directory.c_str(), &status, 0), nullptr);
        EXPECT_EQ(status, c.status) << c.directory;
        EXPECT_EQ(traces(), *c.trace == '\0' ? "" : "\n[makeFileNameList] - " + std::string(c.trace) + "\n");
        CLUImage image = {};
        const std::string fault = *c.trace == '\0' ? "Skipping invalid file = a.bin" : c.trace;
        EXPECT_EQ(initFileImage(&image, c.directory.c_str(), "a.bin", 0), 1);
        EXPECT_NE(traces().find("[initFileImage] - " + fault), std::string::npos);
    }
}
