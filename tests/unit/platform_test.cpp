// The Linux side of the seam, as scripts rely on it.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/text.h"
#include "include/working_paths.h"
#include "platform/platform.h"
#include "unit/fixture.h"

namespace fs = std::filesystem;

static std::string content(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
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
    search == nullptr ? void() : closeDirectorySearch(search);
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

TEST_F(Platform, TheSystemVersionIsTheLeadingNumber) {
    EXPECT_EQ(systemMajorVersion(), 10U);
    fs::create_directories("host");
    for (auto [text, version] :
         {std::pair{"  11.0", 11U}, {"6.3", 6U}, {"", 0U}, {"x10", 0U}, {"-10", 0U}, {"99999999999", 4294967295U}}) {
        write("host/os-version", text);
        EXPECT_EQ(systemMajorVersion(), version) << text;
    }
}
