// The Linux side of the seam, as scripts rely on it.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include "base/text.h"
#include "images/grp_reader.h"
#include "platform/file_exists.h"
#include "platform/platform.h"
#include "records/adapter_families.h"
#include "records/clu_image.h"
#include "run/paths.h"
#include "selection/fw_matrix.h"
#include "settings/working_paths.h"
#include "unit/failing_calls.h"
#include "unit/fixture.h"

namespace fs = std::filesystem;

static std::string content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

struct Platform : RunTest {
    static void writeScript(const char* name, const std::string& commands) {
        write(name, "#!/bin/sh\n" + commands);
        fs::permissions(name, fs::perms::owner_all);
    }

    // Runs a command line, its call number `failingCall` of the system failing, without its messages on standard error.
    // `failed` tells whether it made so many calls.
    static int runQuietly(const std::string& commandLine, int failingCall = 0, bool* failed = nullptr) {
        int result = 0;
        testing::internal::CaptureStderr();
        bool made = runWithFailingCall(failingCall, EINTR, [&] { result = runCommand(commandLine.c_str()); });
        testing::internal::GetCapturedStderr();
        if (failed != nullptr) {
            *failed = made;
        }
        return result;
    }
};

TEST_F(Platform, CommandLinesAreSplitAsTheInterpreterDoes) {
    writeScript("echo.sh", "for a in \"$@\"; do printf '[%s]\\n' \"$a\"; done\nexit 7\n");
    writeScript("die.sh", "kill -9 $$\n");
    write("plain", "no program");
    fs::permissions("plain", fs::perms::owner_all);
    const struct {
        const char* name;
        const char* line;
        int result;
        const char* output;
    } cases[] = {
        {"a listing", "\"\".\\echo.sh\" listattr /c > out\"", 7, "[listattr]\n[/c]\n"},
        {"a quoted path with a blank", "\"\".\\echo.sh\" n=1 i=\"a b\\c.grp\" > out\"", 7, "[n=1]\n[i=a b\\c.grp]\n"},
        {"a blank in the output file", "\"\".\\echo.sh\" a > out dir\\temp.txt\"", 7, "[a]\n[dir\\temp.txt]\n"},
        {"more than one >", "\"\".\\echo.sh\" \"a > b\"  c>out d > e\"", 7, "[a > b]\n[c]\n[d]\n[>]\n[e]\n"},
        {"a program that is killed", "\"\".\\die.sh\" x > out\"", 137, ""},
        {"no such program", "\"\".\\gone\" x > out\"", 1, ""},
        {"a file that is no program", "\"\".\\plain\" x > out\"", 1, ""},
        {"no such directory for the output", "\"\".\\echo.sh\" x > no\\such\\out\"", 1, "untouched"},
    };
    for (const auto& c : cases) {
        write("out", "untouched");
        EXPECT_EQ(runQuietly(c.line), c.result) << c.name;
        EXPECT_EQ(content("out"), c.output) << c.name;
    }
}

TEST_F(Platform, AProgramWhoseOutputCannotBeRedirectedIsNotStarted) {
    writeScript("program.sh", ": > started\necho reply\n");
    bool failed = true;
    for (int call = 1; failed; call++) {
        fs::remove("started");
        write("out", "");
        int result = runQuietly("\"\".\\program.sh\" x > out\"", call, &failed);
        const bool started = fs::exists("started");
        EXPECT_EQ(result, started ? 0 : 1) << "with call " << call << " failing";
        EXPECT_EQ(content("out"), started ? "reply\n" : "") << "with call " << call << " failing";
        EXPECT_TRUE(started || failed) << "no call failed, but the program was not started";
    }
}

TEST_F(Platform, SignalsThatTheRunIgnoresAreTheChildsToHandle) {
    startPlatform();
    for (int number : {SIGPIPE, SIGXFSZ}) {
        raise(number);  // would end this test
        writeScript("raise.sh", "kill -" + std::to_string(number) + " $$\n");
        EXPECT_EQ(runQuietly("\"\".\\raise.sh\" x > out\""), 128 + number) << "the child ignores signal " << number;
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

TEST_F(Platform, SearchMatchesAsWindowsDoes) {
    fs::create_directory("searched");
    fs::current_path("searched");
    for (const char* name : {"a.grp", "B.GRP", "ab.grp", "a.b.grp", "noext", "b.grp"}) {
        write(name, "");
    }
    fs::create_directory("dir");
    fs::create_symlink("dir", "link");
    fs::create_symlink("gone", "dangling");
    const char all[] = ". .. a.b.grp a.grp ab.grp B.GRP b.grp dangling dir/ link/ noext ";
    const struct {
        const char* name;
        const char* pattern;
        const char* found;
    } cases[] = {
        {"everything", "*", all},
        {"a dot that a name need not have", "*.*", all},
        {"one character", "?.grp", "a.grp B.GRP b.grp "},
        {"? before a dot matches nothing, too", "a?.GRP", "a.grp ab.grp "},
        {"? in the extension", "a.?rp", "a.grp "},
        {"? after a dot that is missing", "noext.?", "noext "},
        {"no match", "*.txt", ""},
        {"* stops at the last dot", "*b.grp", "a.b.grp ab.grp B.GRP b.grp "},
        {"* at the end", "no*", "noext "},
        {"a name is looked up", "a.grp", "a.grp "},
        {"a name with its case", "A.grp", ""},
        {"a directory", "dir", "dir/ "},
        {"a link to a directory", "link", "link/ "},
        {"a trailing backslash", "dir\\", ""},
        {"a missing directory", "gone\\*", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(searched(c.pattern), c.found) << c.name;
    }
    EXPECT_EQ(fileExists("a.grp", ".\\"), 0);
    EXPECT_EQ(fileExists("a.grp", (".\\" + std::string(248, '\\')).c_str()), 1) << "a joined text that does not fit";
}

TEST_F(Platform, NamesThatNoFileOnWindowsCanHaveAreNeitherFoundNorOpened) {
    writeScript("program.sh", ": > started\n");
    fs::create_directory("searched");
    write("searched/good.grp", "");
    for (const std::string c : {"\"", "*", "<", ">", "?", "|", "\n", "\x1F"}) {
        const std::string name = "searched\\e" + c + "x.grp";
        write("searched/e" + c + "x.grp", "");
        EXPECT_EQ(fileExists(("e" + c + "x.grp").c_str(), "searched\\"), 1) << name;
        for (OpenMode mode : {OPEN_READ_TEXT, OPEN_READ_BINARY, OPEN_APPEND, OPEN_WRITE}) {
            EXPECT_EQ(openFile(name.c_str(), mode), nullptr) << name;
        }
        EXPECT_EQ(runQuietly("\"\".\\program.sh\" x > out" + c + "x\""), 1) << name;
    }
    write("searched/a:b.grp", "");
    write("searched/a\\b.grp", "");
    EXPECT_EQ(searched("searched\\*"), ". .. good.grp ");
    EXPECT_EQ(fileExists("a:b.grp", "searched\\"), 1);
    EXPECT_FALSE(fs::exists("started")) << "a program was started without its output file";
}

TEST_F(Platform, ARemovalTellsWhetherTheFileWasThere) {
    write("file", "");
    fs::create_directory("directory");
    const struct {
        const char* name;
        std::string path;
        bool absent;
    } cases[] = {
        {"no such file", "gone", true},
        {"no such directory", "gone\\file", true},
        {"a file in the place of the directory", "file\\temp.txt", true},
        {"no such drive", "r:\\temp.txt", true},
        {"a directory", "directory", false},
        {"a path that does not fit", std::string(5000, 'x'), false},
    };
    for (const auto& c : cases) {
        errno = 0;
        EXPECT_EQ(removeFile(c.path.c_str()), -1) << c.name;
        EXPECT_EQ(errno == ENOENT, c.absent) << c.name;
    }
    EXPECT_EQ(removeFile("file"), 0);
}

TEST_F(Platform, AKeyIsDeletedWithItsValuesButNotWithItsSubkeys) {
    const std::string key = "host/registry/HKEY_LOCAL_MACHINE/SOFTWARE/Probe";
    fs::create_directories(key + "/Subkey");
    write(key + "/value", "REG_SZ\ntext\n");
    EXPECT_NE(deleteRegistryKey("SOFTWARE\\Probe"), 0) << "a key with a subkey stays";
    EXPECT_TRUE(fs::exists(key + "/value")) << "and keeps its values";
    fs::remove(key + "/Subkey");
    EXPECT_EQ(deleteRegistryKey("SOFTWARE\\Probe"), 0);
    EXPECT_FALSE(fs::exists(key));
    EXPECT_NE(deleteRegistryKey("SOFTWARE\\Probe"), 0) << "there is no such key any more";
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
    EXPECT_EQ(readText(file, text, 2), 2U) << "the block ends between the two characters of a line end";
    EXPECT_EQ(std::string(text, readText(file, text, 2)), "\rb");
    fclose(file);
    EXPECT_EQ(openFile(".", OPEN_READ_TEXT), nullptr);
}

TEST_F(Platform, FullPathsAreMadeFromTheTextAlone) {
    std::string current = directory;
    std::replace(current.begin(), current.end(), '/', '\\');
    const struct {
        const char* name;
        const char* path;
        std::string full;
    } cases[] = {
        {"an empty name stays", "", ""},
        {"a name on a drive stays", "r:\\a\\..\\b", "r:\\a\\..\\b"},
        {"a relative name", "x.exe", current + "\\x.exe"},
        {"a relative name with . and ..", ".\\a/./b\\..\\\\x.exe", current + "\\a\\x.exe"},
        {".. above the root", "/usr/../../bin/.x", "\\bin\\.x"},
        {"nothing but ..", "/..", "\\"},
        {"a name that begins with ..", "/..x/ab/", "\\..x\\ab"},
    };
    for (const auto& c : cases) {
        char out[256];
        EXPECT_EQ(fullPath(c.path, out, sizeof out), c.full.size()) << c.name;
        EXPECT_EQ(out, c.full) << c.name;
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
    const struct {
        const char* name;
        std::function<bool()> succeeds;
    } operations[] = {
        {"search with a wildcard",
         [] {
             const std::string found = searched("?.grp");
             EXPECT_TRUE(found == "" || found == "a.grp b.grp ") << "half a directory: " << found;
             return found != "";
         }},
        {"search for a name", [] { return searched("host") == "host/ "; }},
        {"write a registry value",
         [] {
             RegistryKey* key = createRegistryKey("A\\B", REGISTRY_ALL);
             return setRegistryText(key, "T", "x") + closeRegistryKey(key) == 0;
         }},
        {"register an event source",
         [] {
             EventSource* source = registerEventSource("S");
             return source != nullptr && (deregisterEventSource(source), true);
         }},
        {"make paths", [&] { return fullPath("x", text, sizeof text) > 0 && programPath(text, sizeof text) > 0; }},
        {"read the clock", [&] { return localTime(&now) == 0; }},
        {"open the standard streams",
         [] {
             close(STDIN_FILENO);
             startPlatform();
             return fcntl(STDIN_FILENO, F_GETFD) >= 0;
         }},
        {"read an image", [&] { return verifyFwFile("a.grp", &image) == 0; }},
        {"search the table",
         [&] {
             verifyFWmatrixEntries();
             return getFwMatrixMatch(hba, text, text + MATRIX_TOKEN_SIZE) == 1;
         }},
        {"find the host directory beside the program",
         [] {
             setenv("TARNLIFT_HOST", "", 1);
             return systemMajorVersion() == 10 && openFile("R:\\no", OPEN_READ_TEXT) == nullptr;
         }},
    };
    fs::create_directory("host");
    for (const auto& operation : operations) {
        for (int error : {EINTR, EIO}) {
            bool good = false;
            for (int call = 1; runWithFailingCall(call, error, [&] { good = operation.succeeds(); }); call++) {
            }
            EXPECT_TRUE(good) << "no call fails any more, but this still does: " << operation.name;
        }
    }
}

TEST_F(Platform, AnImageThatCannotBeReadIsNoShortFile) {
    write("a.grp", grpFile(64, "1.2.3.4"));
    bool failed = true;
    for (int call = 1; failed; call++) {
        GrpHeader header = {};
        int status = RM_STATUS_OK;
        failed =
            runWithFailingCall(call, EIO, [&] { status = readGRPHeader(&header, "a.grp", familyOfImageType(64)); });
        EXPECT_EQ(status, failed ? RM_STATUS_ERROR_READING_RESOURCE : RM_STATUS_OK)
            << "with call " << call << " failing";
    }
}

TEST_F(Platform, ATerminalIsNoImageEvenIfAnImageIsTypedThere) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    if (terminal < 0 || unlockpt(terminal) != 0) {
        GTEST_SKIP() << "this machine has no terminals";
    }
    fs::create_symlink(ptsname(terminal), "terminal.grp");
    const std::string typed = grpHeader(0xFEAA0003, 0xF70C0000, "1.2.3.4") + "\n";
    termios settings = {};
    tcgetattr(terminal, &settings);
    cfmakeraw(&settings);
    tcsetattr(terminal, TCSANOW, &settings);
    ASSERT_EQ(::write(terminal, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
    GrpHeader header = {};
    EXPECT_EQ(readGRPHeader(&header, "terminal.grp", familyOfImageType(64)), RM_STATUS_ERROR_READING_RESOURCE);
    close(terminal);
}

TEST_F(Platform, PathsThatAreTooLongAndLinesWithoutACommandAreRefused) {
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
    EXPECT_EQ(systemMajorVersion(), 10U) << "without the file";
    fs::create_directories("host");
    for (const auto& [text, version] : Rows<const char*, uint32_t>{
             {"  11.0", 11},
             {"6.3", 6},
             {"", 0},
             {"x10", 0},
             {"-10", 0},
             {"99999999999", 4294967295},
         }) {
        write("host/os-version", text);
        EXPECT_EQ(systemMajorVersion(), version) << text;
    }
}
