#include "records/clu_image.h"

#include <cstdlib>
#include <cstring>

#include "base/text.h"
#include "output/output.h"
#include "output/trace_fields.h"
#include "records/adapter_families.h"
#include "records/fixed_words.h"

CLUImage* gFirmwareImageList = nullptr;

static constexpr uint32_t FC_IMAGE_TYPE = 1;  // named in dumps only; no image gets it

// Reads digits up to the first other character; a number that does not fit becomes the highest one.
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
        const char* component = text;
        while (text < end && *text != '.') {
            text++;
        }
        if (component == text) {
            return VERSION_NOT_ENCODED;
        }
        *number = readDigits(component, static_cast<size_t>(text - component));
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
        return IMAGE_ORDER_UNKNOWN;
    }
    for (auto field : orderedBy) {
        if (a->*field != b->*field) {
            return a->*field > b->*field ? IMAGE_ABOVE : IMAGE_BELOW;
        }
    }
    return IMAGE_EQUAL;
}

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

// One component of both versions, and its names in the trace.
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

CLUImage* insertCLUImage(CLUImage* image, CLUImage* head) {
    CLUImage* before = nullptr;
    CLUImage* after = head;
    while (after != nullptr && isGreaterCNAVersion(image, after) != IMAGE_ABOVE) {
        before = after;
        after = after->next;
    }
    image->prev = before;
    image->next = after;
    if (after != nullptr) {
        after->prev = image;
    }
    if (before == nullptr) {
        return image;
    }
    before->next = image;
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
    traceNumber("CNAMajorVer", major);
    traceNumber("CNAMinorVer", minor);
    traceNumber("CNAReleaseVer", release);
    traceNumber("CNABuildVer", build);
}

void printCLUImageType(uint32_t imageType) {
    const AdapterFamily* family = familyOfImageType(imageType);
    const char* otherName = imageType == FC_IMAGE_TYPE ? "FC_IMAGE" : WORD_NOT_AVAILABLE;
    traceNamedNumber("Image Type", imageType, family != nullptr ? family->name : otherName);
}

void printCLUImageExtType(uint32_t extType) {
    traceNamedNumber("extType", extType, extType == GRP_EXTENSION_TYPE ? "GRPext" : WORD_NOT_AVAILABLE);
}

void printCLUImage(const CLUImage* image) {
    if (image == nullptr) {
        printDbg("\n[printCLUImage] - Invalid argument!\n");
        return;
    }
    traceText("filename", image->filename);
    traceText("decodedVersion", image->decodedVersion);
    traceHex("asicRevisionId", image->asicRevisionId);
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
