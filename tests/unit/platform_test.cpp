// The Linux side of the seam, as scripts rely on it.
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>

#include <fcntl.h>
#include <unistd.h>

#include "base/text.h"
#include "images/grp_reader.h"
#include "platform/file_exists.h"
#include "platform/platform.h"
#include "run/paths.h"
#include "selection/fw_matrix.h"
#include "settings/working_paths.h"
#include "unit/fixture.h"

namespace fs = std::filesystem;

// The calls of the system that can be made to fail: number failAt from now on, with `failure` as its error.
static int failAt, calls, failure;

static bool fails() {
    bool failing = failAt != 0 && ++calls == failAt;
    errno = failing ? failure : errno;
    return failing;
}

// Each takes and gives words of the machine.
#define CAN_FAIL(name, failed)                                                                                         \
    extern "C" long __real_##name(long, long, long, long);                                                             \
    extern "C" long __wrap_##name(long a, long b, long c, long d) {                                                    \
        return fails() ? (failed) : __real_##name(a, b, c, d);                                                         \
    }
// clang-format off
CAN_FAIL(malloc, 0) CAN_FAIL(calloc, 0) CAN_FAIL(realloc, 0) CAN_FAIL(strdup, 0) CAN_FAIL(fopen, 0) CAN_FAIL(fread, 0)
CAN_FAIL(fseek, -1) CAN_FAIL(opendir, 0) CAN_FAIL(readdir, 0) CAN_FAIL(stat, -1) CAN_FAIL(open, -1) CAN_FAIL(readlink, -1)
CAN_FAIL(getcwd, 0) CAN_FAIL(waitpid, -1) CAN_FAIL(clock_gettime, -1) CAN_FAIL(localtime_r, 0);
// clang-format on

static std::string content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

struct Platform : RunTest {
    Platform() {
        setenv("TARNLIFT_HOST", (directory + "/host").c_str(), 1);
    }
};

TEST_F(Platform, CommandLinesAreReadAsTheInterpreterDoes) {
    write("echo.sh", "#!/bin/sh\nfor a in \"$@\"; do printf '[%s]\\n' \"$a\"; done\nexit 7\n");
    write("die.sh", "#!/bin/sh\nkill -9 $$\n");
    write("plain", "no program");
    for (const char* name : {"echo.sh", "die.sh", "plain"}) {
        fs::permissions(name, fs::perms::owner_all);
    }
    for (const auto& [line, result, output] : Rows<const char*, int, const char*>{
             {"\"\".\\echo.sh\" listattr /c > out\"", 7, "[listattr]\n[/c]\n"},
             {"\"\".\\echo.sh\" download n=1 i=\"a b\\c.grp\" > out\"", 7, "[download]\n[n=1]\n[i=a b\\c.grp]\n"},
             {"\"\".\\echo.sh\" a > out dir\\temp.txt\"", 7, "[a]\n[dir\\temp.txt]\n"},
             {"\"\".\\echo.sh\" \"a > b\"  c>out d > e\"", 7, "[a > b]\n[c]\n[d]\n[>]\n[e]\n"},
             {"\"\".\\die.sh\" x > out\"", 137, ""},
             {"\"\".\\gone\" x > out\"", 1, ""},
             {"\"\".\\plain\" x > out\"", 1, ""},
             {"\"\".\\echo.sh\" x > no\\such\\out\"", 1, "untouched"},
         }) {
        write("out", "untouched");
        testing::internal::CaptureStderr();
        EXPECT_EQ(runCommand(line), result) << line;
        testing::internal::GetCapturedStderr();
        EXPECT_EQ(content("out"), output) << line;
    }
}

// The names that a search finds, directories with a slash.
static std::string searched(const char* pattern) {
    std::string found;
    DirectoryEntry entry;
    DirectorySearch* search = openDirectorySearch(pattern, &entry);
    for (bool more = search != nullptr; more; more = nextDirectoryEntry(search, &entry)) {
        found += std::string(entry.name) + (entry.isDirectory && entry.name[0] != '.' ? "/ " : " ");
    }
    if (search != nullptr) {
        closeDirectorySearch(search);
    }
    return found;
}

TEST_F(Platform, SearchMatchesAsTheFileSystemOfItsWorldDoes) {
    fs::create_directory("searched");
    fs::current_path("searched");
    for (const char* name : {"a.grp", "B.GRP", "ab.grp", "a.b.grp", "noext", "b.grp"}) {
        write(name, "");
    }
    fs::create_directory("dir");
    fs::create_symlink("dir", "link");
    fs::create_symlink("gone", "dangling");
    for (const auto& [pattern, found] : Rows<const char*, const char*>{
             // clang-format off
        {"*", ". .. a.b.grp a.grp ab.grp B.GRP b.grp dangling dir/ link/ noext "}, {"?.grp", "a.grp B.GRP b.grp "},
        {"*.*", ". .. a.b.grp a.grp ab.grp B.GRP b.grp dangling dir/ link/ noext "}, {"a?.GRP", "a.grp ab.grp "}, {"*.txt", ""},
        {"*b.grp", "a.b.grp ab.grp B.GRP b.grp "}, {"no*", "noext "}, {"a.grp", "a.grp "}, {"A.grp", ""},
        {"dir", "dir/ "}, {"dir\\", ""}, {"gone\\*", ""}, {"a.?rp", "a.grp "}, {"noext.?", "noext "}, {"link", "link/ "},
             // clang-format on
         }) {
        EXPECT_EQ(searched(pattern), found) << pattern;
    }
    EXPECT_EQ(fileExists("a.grp", ".\\"), 0);
    EXPECT_EQ(fileExists("a.grp", (".\\" + std::string(248, '\\')).c_str()), 1) << "a joined text that does not fit";
}

TEST_F(Platform, TextReadsCarriageReturnLineFeedAsOneCharacter) {
    write("text", std::string("a\r\n\rb\r\r\n\0c\r", 11));
    FILE* file = openFile("text", OPEN_READ_TEXT);
    char text[32];
    EXPECT_EQ(std::string(text, readText(file, text, sizeof text)), std::string("a\n\rb\r\n\0c\r", 9));
    rewind(file);
    for (const char* line : {"a\n", "\rb\r", "\n", ""}) {
        EXPECT_TRUE(readTextLine(file, text, 4));
        EXPECT_STREQ(text, line);
    }
    EXPECT_FALSE(readTextLine(file, text, 4));
    rewind(file);
    EXPECT_EQ(readText(file, text, 2), 2U) << "the line end lies on both sides of a block's end";
    EXPECT_EQ(std::string(text, readText(file, text, 2)), "\rb");
    fclose(file);
    EXPECT_EQ(openFile(".", OPEN_READ_TEXT), nullptr);
}

TEST_F(Platform, FullPathsAreMadeFromTheTextAlone) {
    std::string current = directory;
    std::replace(current.begin(), current.end(), '/', '\\');
    for (const auto& [name, path] : {std::pair<const char*, std::string>{"", ""},
                                     {"r:\\a\\..\\b", "r:\\a\\..\\b"},
                                     {"x.exe", current + "\\x.exe"},
                                     {".\\a/./b\\..\\\\x.exe", current + "\\a\\x.exe"},
                                     {"/usr/../../bin/.x", "\\bin\\.x"},
                                     {"/..", "\\"},
                                     {"/..x/ab/", "\\..x\\ab"}}) {
        char out[256];
        EXPECT_EQ(fullPath(name, out, sizeof out), path.size()) << name;
        EXPECT_EQ(out, path);
    }
    char cut[5];
    EXPECT_EQ(fullPath("/usr/bin", cut, sizeof cut), 4U);
    EXPECT_STREQ(cut, "\\usr");
}

TEST_F(Platform, EventsAreLinesOfJson) {
    const char* strings[] = {"quote \" back \\ bell \a", "\xC3\xA4 \xFF"};
    EventSource* source = registerEventSource("S");
    EXPECT_EQ(reportEvent(source, EVENT_TYPE_ERROR, 0xC0000A09, strings, 2), 0);
    deregisterEventSource(source);
    EXPECT_EQ(content("host/eventlog.jsonl"),
              "{\"source\": \"S\", \"type\": 1, \"category\": 0, \"id\": \"0xC0000A09\", \"strings\": "
              "[\"quote \\\" back \\\\ bell \\u0007\", \"\xC3\xA4 \\ufffd\"]}\n");
}

TEST_F(Platform, ACallThatFailsFailsItsOperationWhole) {
    HbaRecord* hba = addPort(0xE300, "1.0.0.0");
    copyText(hba->fwMatrixType, sizeof hba->fwMatrixType, "QVa5202");
    write("a.grp", grpFile(64, "1.2.3.4"));
    write("b.grp", "");
    write("fwmatrix.txt", "QVa5202 a.grp\n");
    gFwMatrixFile = openFile("fwmatrix.txt", OPEN_READ_TEXT);
    CLUImage image = fileImage(64, "");
    image.extType = GRP_EXTENSION_TYPE;
    char text[256];
    LocalTime now;
    const std::function<bool()> operations[] = {
        [] {
            const std::string found = searched("?.grp");
            EXPECT_TRUE(found == "" || found == "a.grp b.grp ") << "half a directory: " << found;
            return found != "";
        },
        [] { return searched("host") == "host/ "; },
        [] {
            RegistryKey* key = createRegistryKey("A\\B", REGISTRY_ALL);
            return setRegistryText(key, "T", "x") + closeRegistryKey(key) == 0;
        },
        [] {
            EventSource* source = registerEventSource("S");
            return source != nullptr && (deregisterEventSource(source), true);
        },
        [] { return runCommand("\"\"/bin/true\" > echoed\"") == 0; },
        [&] { return fullPath("x", text, sizeof text) > 0 && programPath(text, sizeof text) > 0; },
        [&] { return localTime(&now) == 0; },
        [] {
            close(STDIN_FILENO);
            startPlatform();
            return fcntl(STDIN_FILENO, F_GETFD) >= 0;
        },
        [&] { return verifyFwFile("a.grp", &image) == 0; },
        [&] {
            verifyFWmatrixEntries();
            return getFwMatrixMatch(hba, text, text + MATRIX_TOKEN_SIZE) == 1;
        },
        [] {
            setenv("TARNLIFT_HOST", "", 1);  // the one beside the program
            return systemMajorVersion() == 10 && openFile("R:\\no", OPEN_READ_TEXT) == nullptr;
        },
    };
    fs::create_directory("host");
    for (const auto& operation : operations) {
        for (int error : {EINTR, EIO}) {
            bool good = false;
            for (failAt = 0, failure = error; failAt == 0 || calls >= failAt;) {
                failAt++;
                calls = 0;
                good = operation();
            }
            failAt = 0;
            EXPECT_TRUE(good) << &operation - operations;
        }
    }
}

TEST_F(Platform, WhatIsTooLongOrNoCommandIsRefused) {
    const std::string name(4100, 'x');
    DirectoryEntry entry;
    char out[8];
    for (const std::string& path : {name, "r:\\" + name}) {
        EXPECT_EQ(openFile(path.c_str(), OPEN_WRITE), nullptr);
        EXPECT_EQ(removeFile(path.c_str()), -1);
        EXPECT_EQ(openDirectorySearch(path.c_str(), &entry), nullptr);
        EXPECT_EQ(createRegistryKey(path.c_str(), REGISTRY_ALL), nullptr);
        EXPECT_EQ(deleteRegistryKey(path.c_str()), 1);
    }
    EXPECT_EQ(fullPath(name.c_str(), out, sizeof out), 0U);
    for (const std::string& line : {std::string(), std::string("x"), std::string("\"x"), "\"\"x\" " + name + "\""}) {
        EXPECT_EQ(runCommand(line.c_str()), 1) << line;
    }
    setenv("TARNLIFT_HOST", name.c_str(), 1);
    EXPECT_EQ(openFile("r:\\x", OPEN_WRITE), nullptr);
    EXPECT_EQ(registerEventSource("S"), nullptr);
    char* argv[] = {nullptr};
    EXPECT_EQ(setupApplicationPaths(argv), 1);
}

TEST_F(Platform, TheSystemVersionIsTheLeadingNumber) {
    EXPECT_EQ(systemMajorVersion(), 10U);
    fs::create_directories("host");
    for (auto [text, version] :
         {std::pair{"  11.0", 11U}, {"6.3", 6U}, {"", 0U}, {"x10", 0U}, {"-10", 0U}, {"99999999999", 4294967295U}}) {
        write("host/os-version", text);
        EXPECT_EQ(systemMajorVersion(), version) << text;
    }
}
