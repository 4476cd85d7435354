#include "unit/fixture.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "base/text.h"
#include "inventory/listing_parser.h"
#include "output/output.h"
#include "platform/platform.h"
#include "records/adapter_families.h"
#include "records/clu_image.h"
#include "records/hba_list.h"
#include "records/port_outcome.h"
#include "run/cleanup.h"
#include "settings/run_options.h"
#include "settings/working_paths.h"

namespace fs = std::filesystem;

RunTest::RunTest() {
    // A directory of its own for each test; the process number keeps runs at the same time apart.
    static int count = 0;
    std::string name = "tarnlift-unit-" + std::to_string(processNumber()) + "-" + std::to_string(count++);
    directory = (fs::temp_directory_path() / name).string();
    fs::create_directories(directory);
    fs::current_path(directory);
#ifndef _WIN32
    setenv("TARNLIFT_HOST", (directory + "/host").c_str(), 1);  // registry and events of this test
#endif
    initGlobals();
    runOptions.silent = 1;
    logFile = fopen("out.test", "w+b");
    dbgFile = fopen("traces.test", "w+b");
    copyText(binPath, sizeof binPath, ".\\");
    copyText(firmwarePath, sizeof firmwarePath, ".\\");
    copyText(tempFilePath, sizeof tempFilePath, "temp.txt");
}

RunTest::~RunTest() {
    cleanup();
    fs::current_path(fs::path(directory).parent_path());
    fs::remove_all(directory);
}

// Returns what was written to the file after position `taken`, which becomes its end.
static std::string newText(FILE* file, long& taken) {
    std::string text(static_cast<size_t>(ftell(file) - taken), '\0');
    fseek(file, taken, SEEK_SET);
    text.resize(fread(text.data(), 1, text.size(), file));
    fseek(file, 0, SEEK_END);
    taken = ftell(file);
    return text;
}

std::string RunTest::out() {
    return newText(logFile, outTaken);
}

std::string RunTest::traces() {
    return newText(dbgFile, tracesTaken);
}

void RunTest::write(const std::string& name, const std::string& content) {
    std::ofstream(name, std::ios::binary) << content;
}

HbaRecord* RunTest::addPort(uint32_t deviceId, const char* fwVersion, const char* serialNumber) {
    HbaRecord* hba = allocHba(1);
    hba->deviceId = deviceId;
    copyText(hba->fwVersion, sizeof hba->fwVersion, fwVersion);
    copyText(hba->serialNumber, sizeof hba->serialNumber, serialNumber);
    markHbaKnown();
    encodeAndUpdateFCVersion(hba);
    traces();
    return hba;
}

std::string shown(uint8_t outcome) {
    const char* message = outcome < OUTCOME_COUNT ? DownloadStatusMessages[outcome] : nullptr;
    return std::to_string(outcome) + " " + (message == nullptr ? "(no message)" : message);
}

std::string grpHeader(uint32_t magicNumber, uint32_t signature, const std::string& buildString) {
    std::string header(4, '\x55');
    for (uint32_t word : {magicNumber, signature}) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            header += static_cast<char>(word >> shift & 0xFF);
        }
    }
    header += buildString;
    header.resize(140, '\0');
    return header;
}

std::string grpFile(uint32_t imageType, const std::string& version) {
    const AdapterFamily* family = familyOfImageType(imageType);
    uint32_t signature = static_cast<uint32_t>(family->signature) << 16 | 0x0102;
    return grpHeader(family->magicNumbers[0], signature, version + " body");
}

CLUImage fileImage(uint32_t imageType, const std::string& version, uint32_t asicRevisionId) {
    CLUImage image = {};
    image.imageType = imageType;
    image.asicRevisionId = asicRevisionId;
    copyText(image.decodedVersion, sizeof image.decodedVersion, version.c_str());
    copyText(image.filename, sizeof image.filename, (version + ".grp").c_str());
    encodeCNAVersion(&image.CNAMajorVer, &image.CNAMinorVer, &image.CNAReleaseVer, &image.CNABuildVer,
                     DECODED_VERSION_SIZE, image.decodedVersion);
    return image;
}
