// When the utility must not run, and what is read of the temp file (Linux only, where a script can be the utility).
#include <cerrno>
#include <filesystem>

#include <unistd.h>

#include "base/text.h"
#include "inventory/utility_runner.h"
#include "settings/working_paths.h"
#include "unit/failing_calls.h"
#include "unit/fixture.h"

namespace fs = std::filesystem;

// A test in whose directory there is a utility that notes its calls in the file `called`.
struct UtilityRunner : RunTest {
    UtilityRunner() {
        write("winhbcfg.exe", "#!/bin/sh\necho call >>called\necho NO Error\n");
        fs::permissions("winhbcfg.exe", fs::perms(0755));
        fs::permissions(".", fs::perms::all);
    }

    // Runs the utility in both forms and returns what the two print on standard error. Neither must find an output.
    static std::string runRefused(const std::string& arguments) {
        char reply[UTILITY_OUTPUT_SIZE];
        uint16_t statuses[] = {0, 0};
        testing::internal::CaptureStderr();
        copyText(utilityOutput, sizeof utilityOutput, "NO Error");
        EXPECT_EQ(executeUtilityCommandToFile(arguments.c_str(), &statuses[0]), TEMP_FILE_NOT_OPENED);
        EXPECT_STREQ(utilityOutput, "") << "the reply of an earlier download is still there";
        EXPECT_EQ(executeUtilityCommand(arguments.c_str(), reply, &statuses[1]), TEMP_FILE_NOT_OPENED);
        EXPECT_STREQ(reply, "");
        EXPECT_EQ(statuses[0] + statuses[1], 2) << "each run has the status of a failed one";
        EXPECT_FALSE(fs::exists("called")) << "the utility was run";
        return testing::internal::GetCapturedStderr();
    }
};

static constexpr char NOT_RUN[] = "tarnlift.exe: the adapter utility was not run: ";

TEST_F(UtilityRunner, ACommandLineThatDoesNotFitIsNotRun) {
    const size_t room = 761 - strlen("\"\".\\winhbcfg.exe\"  > temp.txt\"");
    const std::string line = std::string(NOT_RUN) + "its command line is too long\n";
    EXPECT_EQ(runRefused(std::string(room + 1, 'a')), line + line);
    EXPECT_EQ(traces(), "") << "only standard error has this message";
    uint16_t status = 1;
    EXPECT_EQ(executeUtilityCommandToFile(std::string(room, 'a').c_str(), &status), TEMP_FILE_READ);
    EXPECT_TRUE(fs::exists("called")) << "the longest command line that fits was not run";
}

// An old temp file in a directory from which nothing can be removed. Ends the rights of root for its lifetime.
struct HeldTempFile {
    explicit HeldTempFile(fs::perms rightsOnFile) {
        fs::create_directory("held");
        RunTest::write("held/temp.txt", "NO Error");
        copyText(tempFilePath, sizeof tempFilePath, "held\\temp.txt");
        fs::permissions("held/temp.txt", rightsOnFile);
        fs::permissions("held", fs::perms(0555));
        if (user == 0) {
            EXPECT_EQ(seteuid(65534), 0);
        }
    }

    ~HeldTempFile() {
        EXPECT_EQ(seteuid(user), 0);
        fs::permissions("held", fs::perms::all);
    }

    const uid_t user = geteuid();
};

TEST_F(UtilityRunner, AnOldTempFileThatStaysIsNoAnswer) {
    HeldTempFile held(fs::perms(0444));
    const std::string line = std::string(NOT_RUN) + "the old file held\\temp.txt can be neither removed nor emptied\n";
    EXPECT_EQ(runRefused("x"), line + line);
    EXPECT_EQ(traces(), "") << "only standard error has this message";
}

TEST_F(UtilityRunner, AnOldTempFileThatIsEmptiedIsNoAnswer) {
    fs::remove("winhbcfg.exe");
    HeldTempFile held(fs::perms(0666));
    char reply[UTILITY_OUTPUT_SIZE];
    uint16_t status = 0;
    testing::internal::CaptureStderr();
    EXPECT_EQ(executeUtilityCommand("x", reply, &status), TEMP_FILE_READ);
    testing::internal::GetCapturedStderr();
    EXPECT_STREQ(reply, "");
}

TEST_F(UtilityRunner, ATempFileThatCannotBeReadToItsEndIsRefused) {
    const std::string listing(10000, 'x');
    for (bool counting : {true, false}) {
        write("temp.txt", listing);
        for (int call = 1;; call++) {
            uint32_t count = 10000;
            std::string buffer(count + 1, '\0');
            int result = TEMP_TEXT_READ;
            bool failed = runWithFailingCall(call, EIO, [&] {
                result =
                    counting ? getCharacterCountFromTempFile(&count) : getBufferDataFromTempFile(buffer.data(), count);
            });
            EXPECT_EQ(result, failed ? TEMP_TEXT_FAILED : TEMP_TEXT_READ) << "with call " << call << " failing";
            if (!failed) {
                break;
            }
        }
    }
}
