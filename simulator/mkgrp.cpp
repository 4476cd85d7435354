// mkgrp: makes .grp image files for rehearsals and tests, good ones and broken ones.

#include <cstdio>
#include <cstring>

#include "grp_format.h"
#include "text.h"

using namespace simulator;

namespace {

constexpr int EXIT_TROUBLE = 2;
constexpr uint32_t LARGEST_IMAGE = 1024 * 1024 * 1024;
constexpr size_t LONG_VERSION_SIZE = 70;
constexpr std::string_view VERSION_CHARACTERS = "0123456789.";

// An image before it is written.
struct Image {
    const GrpFamily* family;
    GrpHeader header;
    ByteOrder order;
    size_t size;  // of the whole file
};

// One way to break an image that was good.
struct Damage {
    std::string_view name;
    const char* meaning;
    void (*apply)(Image& image);
};

// What the command line asks for.
struct Request {
    const GrpFamily* family = nullptr;
    std::string_view version;
    uint32_t size = 4096;
    bool alternateMagic = false;
    const Damage* damage = nullptr;
    const char* file = nullptr;
};

// A switch; its reader gets the value, or nothing for a switch without one. False: the value is wrong.
struct Switch {
    std::string_view name;
    bool takesValue;
    bool (*read)(std::string_view value, Request& request);
};

}  // namespace

static void fillBuildString(Image& image, std::string_view start) {
    std::string text(start);
    text += " for all ports of family " + std::to_string(image.family->number);
    text.resize(GRP_BUILD_STRING_SIZE - 1);
    memcpy(image.header.buildString, text.c_str(), GRP_BUILD_STRING_SIZE);
}

static constexpr Damage damages[] = {
    {"short", "139 bytes, one less than a header", [](Image& image) { image.size = GRP_HEADER_SIZE - 1; }},
    {"empty", "no bytes at all", [](Image& image) { image.size = 0; }},
    {"magic", "a magic number of no family", [](Image& image) { image.header.magic = 0xFEAA00FF; }},
    {"signature", "a signature of no family", [](Image& image) { image.header.signature = 0xF7FF0001; }},
    {"mixed", "the signature of the next family after the magic number of this one",
     [](Image& image) { image.header.signature = uint32_t{nextFamily(*image.family).signature} << 16 | 1; }},
    {"swapped", "the three words in little-endian order", [](Image& image) { image.order = ByteOrder::LITTLE; }},
    {"no-end", "a build string of 128 characters without a NUL",
     [](Image& image) {
         for (char& character : image.header.buildString) {
             character = character == 0 ? 'x' : character;
         }
     }},
    {"long-version", "a version of 70 digits and dots",
     [](Image& image) { fillBuildString(image, std::string(LONG_VERSION_SIZE - 2, '1').append(".1")); }},
    {"no-version", "a build string that starts with a letter",
     [](Image& image) { fillBuildString(image, "build 14.4.473.14"); }},
};

static bool readFamily(std::string_view value, Request& request) {
    request.family = findFamilyByNumber(readNumber(value, 10, UINT32_MAX).value_or(0));
    return request.family != nullptr;
}

static bool readVersion(std::string_view value, Request& request) {
    request.version = value;
    return !value.empty() && value.size() < GRP_BUILD_STRING_SIZE &&
           value.find_first_not_of(VERSION_CHARACTERS) == std::string_view::npos;
}

static bool readSize(std::string_view value, Request& request) {
    request.size = readNumber(value, 10, LARGEST_IMAGE).value_or(0);
    return request.size >= GRP_HEADER_SIZE;
}

static bool readAlternate(std::string_view /*value*/, Request& request) {
    request.alternateMagic = true;
    return true;
}

static bool readDamage(std::string_view value, Request& request) {
    for (const Damage& damage : damages) {
        if (damage.name == value) {
            request.damage = &damage;
        }
    }
    return request.damage != nullptr;
}

static constexpr Switch switches[] = {
    {"--family", true, readFamily},        {"--version", true, readVersion}, {"--size", true, readSize},
    {"--magic-alt", false, readAlternate}, {"--broken", true, readDamage},
};

static constexpr std::string_view helpWords[] = {"/?", "-h", "--help", "--list-broken"};

static constexpr char usage[] = R"(mkgrp - makes a .grp image file

Usage: mkgrp --family NUMBER --version VERSION [SWITCHES] FILE

    --family NUMBER     64, 65, 66 or 67: adapters with device ID E300, F400, F500 or F600
    --version VERSION   digits and dots, such as 14.4.473.14
    --size BYTES        size of the file, at least 140; 4096 without it
    --magic-alt         the family's second magic number; only 66 and 67 have one
    --broken KIND       break the image in one way
    --list-broken       this text (also: --help, -h)

The same command line makes the same file, byte for byte. Exit status: 0, or 2 after an error.
Kinds of --broken:
)";

static int printHelp() {
    fputs(usage, stdout);
    for (const Damage& damage : damages) {
        printf("    %-20s%s\n", damage.name.data(), damage.meaning);
    }
    return fflush(stdout) == 0 ? 0 : EXIT_TROUBLE;
}

static int fail(const char* problem, const char* subject) {
    fprintf(stderr, "mkgrp: %s%s ('mkgrp --help' shows the usage)\n", problem, subject);
    return EXIT_TROUBLE;
}

static const Switch* findSwitch(std::string_view name) {
    for (const Switch& row : switches) {
        if (row.name == name) {
            return &row;
        }
    }
    return nullptr;
}

static int readArguments(int count, char** arguments, Request& request) {
    for (int i = 1; i < count; i++) {
        const char* argument = arguments[i];
        if (!std::string_view(argument).starts_with("--")) {
            if (request.file != nullptr) {
                return fail("there is more than one file: ", argument);
            }
            request.file = argument;
            continue;
        }
        const Switch* row = findSwitch(argument);
        if (row == nullptr) {
            return fail("unknown switch ", argument);
        }
        if (row->takesValue && ++i == count) {
            return fail("missing value after ", argument);
        }
        if (!row->read(row->takesValue ? arguments[i] : "", request)) {
            return fail("the value does not fit ", argument);
        }
    }
    return 0;
}

static int checkRequest(const Request& request) {
    if (request.family == nullptr || request.version.empty() || request.file == nullptr) {
        return fail("a family, a version and a file are needed", "");
    }
    if (request.alternateMagic && request.family->secondMagic == 0) {
        return fail("this family has no second magic number", "");
    }
    return 0;
}

static Image makeImage(const Request& request) {
    const GrpFamily& family = *request.family;
    Image image = {};
    image.family = &family;
    image.size = request.size;
    image.order = ByteOrder::BIG;
    image.header.firstWord = request.size;
    image.header.magic = request.alternateMagic ? family.secondMagic : family.magic;
    image.header.signature = uint32_t{family.signature} << 16 | 1;
    fillBuildString(image, request.version);
    if (request.damage != nullptr) {
        request.damage->apply(image);
    }
    return image;
}

// The body is a fixed pattern, so that the same command line makes the same file.
static bool writeImage(const Image& image, FILE* file) {
    unsigned char bytes[GRP_HEADER_SIZE];
    encodeGrpHeader(image.header, image.order, bytes);
    size_t headerPart = image.size < sizeof bytes ? image.size : sizeof bytes;
    if (fwrite(bytes, 1, headerPart, file) != headerPart) {
        return false;
    }
    for (size_t at = headerPart; at < image.size; at++) {
        if (putc(static_cast<int>((at * 31 + image.family->number) & 0xFF), file) == EOF) {
            return false;
        }
    }
    return true;
}

static int saveImage(const Image& image, const char* path) {
    FILE* file = fopen(path, "wb");
    if (file == nullptr) {
        return fail("the file cannot be created: ", path);
    }
    bool written = writeImage(image, file);
    bool closed = fclose(file) == 0;
    return written && closed ? 0 : fail("the file cannot be written: ", path);
}

int main(int count, char** arguments) {
    for (std::string_view word : helpWords) {
        if (count == 2 && arguments[1] == word) {
            return printHelp();
        }
    }
    Request request;
    if (int status = readArguments(count, arguments, request)) {
        return status;
    }
    if (int status = checkRequest(request)) {
        return status;
    }
    return saveImage(makeImage(request), request.file);
}
