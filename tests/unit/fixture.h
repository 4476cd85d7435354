// The state of a run, for a test: all globals are reset, the current directory is the test's own, and console and trace go
// to files that can be read back.
#pragma once

#include <initializer_list>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "records/hba_record.h"

// The rows of a table whose columns are named in the loop over it.
template <class... Columns> using Rows = std::initializer_list<std::tuple<Columns...>>;

struct RunTest : testing::Test {
    RunTest();
    ~RunTest() override;

    // The text of printOut or printDbg since the last call.
    std::string out();
    std::string traces();

    // Writes a file in the test's directory, which firmwarePath and binPath name.
    static void write(const std::string& name, const std::string& content);

    // Adds a port to gHbaList.
    HbaRecord* addPort(uint32_t deviceId, const char* fwVersion, const char* serialNumber = "S1");

    std::string directory;
    long outTaken = 0;
    long tracesTaken = 0;
};

// An outcome with its message, for failures that can be read.
std::string shown(uint8_t outcome);

// The 140 bytes of a .grp header.
std::string grpHeader(uint32_t magicNumber, uint32_t signature, const std::string& buildString);

// A whole image file of a family (image type 64 to 67).
std::string grpFile(uint32_t imageType, const std::string& version);

CLUImage fileImage(uint32_t imageType, const std::string& version, uint32_t asicRevisionId = 0);
