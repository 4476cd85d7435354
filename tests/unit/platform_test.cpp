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
    const struct {
        const char* line;
        int result;
        const char* output;
    } cases[] = {
        {"\"\".\\echo.sh\" listattr /c > out\"", 7, "[listattr]\n[/c]\n"},
        {"\"\".\\echo.sh\" download n=1 i=\"a b\\c.grp\" > out\"", 7, "[download]\n[n=1]\n[i=a b\\c.grp]\n"},
        {"\"\".\\echo.sh\" a > out dir\\temp.txt\"", 7, "[a]\n[dir\\temp.txt]\n"},
        {"\"\".\\echo.sh\" \"a > b\"  c>out d > e\"", 7, "[a > b]\n[c]\n[d]\n[>]\n[e]\n"},
        {"\"\".\\die.sh\" x > out\"", 137, ""},
        {"\"\".\\gone\" x > out\"", 1, ""},
        {"\"\".\\plain\" x > out\"", 1, ""},
        {"\"\".\\echo.sh\" x > no\\such\\out\"", 1, "untouched"},
    };
    for (const auto& c : cases) {
        write("out", "untouched");
        testing::internal::CaptureStderr();
        EXPECT_EQ(runCommand(c.line), c.result) << c.line;
        testing::internal::GetCapturedStderr();
        EXPECT_EQ(content("out"), c.output) << c.line;
    }
}

TEST_F(Platform, SearchMatchesAsTheFileSystemOfItsWorldDoes) {
    fs::create_directory("searched");
    fs::current_path("searched");
    for (const char* name : {"a.grp", "B.GRP", "ab.grp", "a.b.grp", "noext", "b.grp"}) {
        write(name, "");
    }
    fs::create_directory("dir");
    const struct {
        const char* pattern;
        const char* found;
    } cases[] = {
        {"*", ". .. a.b.grp a.grp ab.grp B.GRP b.grp dir/ noext "},
        {"*.*", ". .. a.b.grp a.grp ab.grp B.GRP b.grp dir/ noext "},
        {"?.grp", "a.grp B.GRP b.grp "},
        {"a?.GRP", "a.grp ab.grp "},
        {"*b.grp", "a.b.grp ab.grp B.GRP b.grp "},
        {"no*", "noext "},
        {"*.txt", ""},
        {"a.grp", "a.grp "},
        {"A.grp", ""},
        {"dir", "dir/ "},
        {"dir\\", ""},
        {"gone\\*", ""},
    };
    for (const auto& c : cases) {
        std::string found;
        DirectoryEntry entry;
        DirectorySearch* search = openDirectorySearch(c.pattern, &entry);
        if (search != nullptr) {
            do {
                bool dots = entry.name[0] == '.';
                found += std::string(entry.name) + (entry.isDirectory && !dots ? "/ " : " ");
            } while (nextDirectoryEntry(search, &entry));
            closeDirectorySearch(search);
        }
        EXPECT_EQ(found, c.found) << c.pattern;
    }
    EXPECT_EQ(fileExists("a.grp", ".\\"), 0);
    EXPECT_EQ(fileExists("a.grp", (".\\" + std::string(248, '\\')).c_str()), 1) << "a joined text that does not fit";
}

TEST_F(Platform, TextReadsCarriageReturnLineFeedAsOneCharacter) {
    write("text", std::string("a\r\n\rb\r\r\n", 8) + std::string("\0c\r", 3));
    FILE* file = openFile("text", OPEN_READ_TEXT);
    char text[32];
    size_t length = readText(file, text, sizeof text);
    EXPECT_EQ(std::string(text, length), std::string("a\n\rb\r\n\0c\r", 9));
    rewind(file);
    std::string lines;
    for (char line[4]; readTextLine(file, line, sizeof line);) {
        lines += std::string(line) + "|";
    }
    EXPECT_EQ(lines, "a\n|\rb\r|\n||");
    fclose(file);
    EXPECT_EQ(openFile(".", OPEN_READ_TEXT), nullptr);
}

TEST_F(Platform, FullPathsAreMadeFromTheTextAlone) {
    std::string current = directory;
    std::replace(current.begin(), current.end(), '/', '\\');
    const struct {
        const char* name;
        std::string path;
    } cases[] = {
        {"", ""},
        {"r:\\a\\..\\b", "r:\\a\\..\\b"},
        {"x.exe", current + "\\x.exe"},
        {".\\a/./b\\..\\\\x.exe", current + "\\a\\x.exe"},
        {"/usr/../../bin/x", "\\bin\\x"},
        {"/..", "\\"},
    };
    for (const auto& c : cases) {
        char path[256];
        EXPECT_EQ(fullPath(c.name, path, sizeof path), c.path.size()) << c.name;
        EXPECT_EQ(path, c.path);
    }
    char cut[5];
    EXPECT_EQ(fullPath("/usr/bin", cut, sizeof cut), 4U);
    EXPECT_STREQ(cut, "\\usr");
}

TEST_F(Platform, DrivesAndKeysAndEventsLieBelowTheHostDirectory) {
    FILE* file = openFile("R:\\temp.txt", OPEN_WRITE);
    ASSERT_NE(file, nullptr);
    fclose(file);
    EXPECT_TRUE(fs::exists("host/drives/r/temp.txt"));
    EXPECT_EQ(openFile("z:\\no\\such.txt", OPEN_APPEND), nullptr);

    RegistryKey* key = createRegistryKey("SOFTWARE\\A B", REGISTRY_ALL);
    EXPECT_EQ(setRegistryText(key, "Text", "c:\\x"), 0);
    EXPECT_EQ(setRegistryNumber(key, "A Number", 4294967295U), 0);
    EXPECT_EQ(closeRegistryKey(key), 0);
    EXPECT_EQ(content("host/registry/HKEY_LOCAL_MACHINE/SOFTWARE/A B/Text"), "REG_SZ\nc:\\x\n");
    EXPECT_EQ(content("host/registry/HKEY_LOCAL_MACHINE/SOFTWARE/A B/A Number"), "REG_DWORD\n4294967295\n");
    write("host/registry/HKEY_LOCAL_MACHINE/BLOCKED", "");
    EXPECT_EQ(createRegistryKey("BLOCKED\\A", REGISTRY_ALL), nullptr);
    EXPECT_NE(setRegistryText(nullptr, "Text", ""), 0);

    const char* strings[] = {"quote \" back \\ bell \a", "\xC3\xA4 \xFF"};
    EventSource* source = registerEventSource("S");
    ASSERT_NE(source, nullptr);
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
