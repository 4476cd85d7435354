#include "records/clu_image.h"

#include <cstdlib>
#include <cstring>

#include "base/text.h"
#include "output/output.h"
#include "records/adapter_families.h"

CLUImage* gFirmwareImageList = nullptr;

static constexpr int ORDER_UNKNOWN = 4;  // isGreaterCNAVersion, beside 1, 0 and -1

enum EncodingStatus { VERSION_ENCODED = 0, VERSION_NOT_ENCODED = 4 };

static constexpr uint32_t FC_IMAGE_TYPE = 1;  // known to the dump, given to nothing

// Reads digits up to the first other character; what does not fit gives the highest number.
static uint32_t readDigits(const char* text, size_t length) {
    uint64_t value = 0;
    for (size_t i = 0; i < length && text[i] >= '0' && text[i] <= '9' && value <= UINT32_MAX; i++) {
        value = 10 * value + static_cast<uint64_t>(text[i] - '0');
    }
    return value > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(value);
}

int encodeCNAVersion(uint32_t* major, uint32_t* minor, uint32_t* release, uint32_t* build, uint32_t bufSize,
                     const char* decodedVersion) {
    uint32_t* const numbers[] = {major, minor, release, build};
    if (major == nullptr || minor == nullptr || release == nullptr || build == nullptr || decodedVersion == nullptr ||
        bufSize == 0) {
        printDbg("[encodeCNAVersion] - Invalid arguments!\n");
        return VERSION_NOT_ENCODED;
    }
    if (decodedVersion[0] == '\0') {
        printDbg("[encodeCNAVersion] - pDecodedVersion is zero-length!\n");
        return VERSION_NOT_ENCODED;
    }
    for (uint32_t* number : numbers) {
        *number = 0;
    }
    const char* text = decodedVersion;
    size_t length = strlen(text);
    const char* end = text + (length < bufSize ? length : bufSize - 1);
    for (uint32_t* number : numbers) {
        while (text < end && *text == '.') {
            text++;
        }
        const char* piece = text;
        while (text < end && *text != '.') {
            text++;
        }
        if (piece == text) {
            return VERSION_NOT_ENCODED;
        }
        *number = readDigits(piece, static_cast<size_t>(text - piece));
        if (number == major && *major == 3) {
            *major = 2;
        }
    }
    return VERSION_ENCODED;
}

int isGreaterCNAVersion(const CLUImage* a, const CLUImage* b) {
    static constexpr uint32_t CLUImage::*const orderedBy[] = {&CLUImage::imageType, &CLUImage::CNAMajorVer,
                                                              &CLUImage::CNAMinorVer, &CLUImage::CNAReleaseVer,
                                                              &CLUImage::CNABuildVer};
    if (a == nullptr || b == nullptr) {
        printDbg("[isGreaterCNAVersion] - Invalid arguments!\n");
        return ORDER_UNKNOWN;
    }
    for (auto field : orderedBy) {
        if (a->*field != b->*field) {
            return a->*field > b->*field ? 1 : -1;
        }
    }
    return 0;
}

enum FieldOrder { FIELD_LOWER = 0, FIELD_HIGHER = 1, FIELD_EQUAL = 2 };

int compareVersionField(uint32_t curVersion, uint32_t testVersion) {
    if (curVersion < testVersion) {
        printDbg("curVersion < testVersion - Supported = FALSE\n");
        return FIELD_LOWER;
    }
    if (curVersion > testVersion) {
        printDbg("curVersion > testVersion - Supported = TRUE\n");
        return FIELD_HIGHER;
    }
    printDbg("curVersion == testVersion - Continue version test\n");
    return FIELD_EQUAL;
}

// One of the four numbers of a version beside the same number of the test version, with its names in the trace.
struct VersionPair {
    const char* title;
    const char* name;
    const char* testName;
    uint32_t number;
    uint32_t testNumber;
};

static void printVersionPairs(const VersionPair pairs[4]) {
    printDbg("\n[isEqualOrHigherThanTestVersion]\n");
    for (int i = 0; i < 4; i++) {
        printDbg("%-14s = %d\n", pairs[i].name, pairs[i].number);
    }
    printDbg("\n");
    for (int i = 0; i < 4; i++) {
        printDbg("%-14s = %d\n", pairs[i].testName, pairs[i].testNumber);
    }
    printDbg("\n");
}

int isEqualOrHigherThanTestVersion(uint32_t majorVer, uint32_t minorVer, uint32_t releaseVer, uint32_t buildVer,
                                   uint32_t testMajorVer, uint32_t testMinorVer, uint32_t testReleaseVer,
                                   uint32_t testBuildVer) {
    const VersionPair pairs[] = {
        {"Major", "majorVer", "testMajorVer", majorVer, testMajorVer},
        {"Minor", "minorVer", "testMinorVer", minorVer, testMinorVer},
        {"Release", "releaseVer", "testReleaseVer", releaseVer, testReleaseVer},
        {"Build", "buildVer", "testBuildVer", buildVer, testBuildVer},
    };
    printVersionPairs(pairs);
    bool equal = true;
    for (const VersionPair& pair : pairs) {
        equal = equal && pair.number == pair.testNumber;
    }
    if (equal) {
        printDbg("Versions are equal. Status = %d\n\n", 1);
        return 1;
    }
    int status = FIELD_EQUAL;
    for (const VersionPair& pair : pairs) {
        printDbg("\nComparing %s Versions - %s = %d, %s = %d\n", pair.title, pair.name, pair.number, pair.testName,
                 pair.testNumber);
        status = compareVersionField(pair.number, pair.testNumber);
        if (status != FIELD_EQUAL) {
            printDbg("Returning from Comparing %s Versions. Status = %d\n\n", pair.title, status);
            break;
        }
    }
    return status;
}

// Merges two sorted lists. Of equal images those of `first` come first.
static CLUImage* mergeCLUImageLists(CLUImage* first, CLUImage* second) {
    CLUImage* head = nullptr;
    CLUImage** end = &head;
    while (first != nullptr && second != nullptr) {
        CLUImage** next = isGreaterCNAVersion(second, first) == 1 ? &second : &first;
        *end = *next;
        end = &(*next)->next;
        *next = *end;
    }
    *end = first != nullptr ? first : second;
    return head;
}

CLUImage* sortCLUImageList(CLUImage* head) {
    static constexpr size_t MOST_RUNS = 32;
    CLUImage* runs[MOST_RUNS] = {};  // runs[i] is a sorted list of 2 to the power of i images, or empty
    while (head != nullptr) {
        CLUImage* run = head;
        head = head->next;
        run->next = nullptr;
        size_t i = 0;
        for (; i < MOST_RUNS - 1 && runs[i] != nullptr; i++) {
            run = mergeCLUImageLists(runs[i], run);
            runs[i] = nullptr;
        }
        runs[i] = mergeCLUImageLists(runs[i], run);
    }
    for (CLUImage* run : runs) {
        head = mergeCLUImageLists(run, head);
    }
    CLUImage* before = nullptr;
    for (CLUImage* image = head; image != nullptr; image = image->next) {
        image->prev = before;
        before = image;
    }
    return head;
}

void freeCLUImageList(CLUImage* head) {
    while (head != nullptr) {
        CLUImage* next = head->next;
        free(head);
        head = next;
    }
}

void printCLUImageVersion(uint32_t major, uint32_t minor, uint32_t release, uint32_t build) {
    printDbg("%-20s : %d\n", "CNAMajorVer", major);
    printDbg("%-20s : %d\n", "CNAMinorVer", minor);
    printDbg("%-20s : %d\n", "CNAReleaseVer", release);
    printDbg("%-20s : %d\n", "CNABuildVer", build);
}

void printCLUImageType(uint32_t imageType) {
    const AdapterFamily* family = familyOfImageType(imageType);
    const char* name = family != nullptr ? family->name : imageType == FC_IMAGE_TYPE ? "FC_IMAGE" : "N/A";
    printDbg("%-20s : %d (%s)\n", "Image Type", imageType, name);
}

void printCLUImageExtType(uint32_t extType) {
    printDbg("%-20s : %d (%s)\n", "extType", extType, extType == GRP_EXTENSION_TYPE ? "GRPext" : "N/A");
}

void printCLUImage(const CLUImage* image) {
    if (image == nullptr) {
        printDbg("\n[printCLUImage] - Invalid argument!\n");
        return;
    }
    printDbg("%-20s : %s\n", "filename", image->filename);
    printDbg("%-20s : %s\n", "decodedVersion", image->decodedVersion);
    printDbg("%-20s : %X\n", "asicRevisionId", image->asicRevisionId);
    printCLUImageVersion(image->CNAMajorVer, image->CNAMinorVer, image->CNAReleaseVer, image->CNABuildVer);
    printCLUImageType(image->imageType);
    printCLUImageExtType(image->extType);
}

void printCLUImageList(const CLUImage* head) {
    if (head == nullptr) {
        printDbg("\n[printCLUImageList] - The image list is null!\n");
        return;
    }
    for (const CLUImage* image = head; image != nullptr; image = image->next) {
        printCLUImage(image);
        printDbg("\n");
    }
}
