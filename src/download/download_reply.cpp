#include "download/download_reply.h"

#include <iterator>

// The ANY_EXIT_STATUS row matches every other exit status and must be the last row of its half.
static constexpr ReplyMeaning replyMeanings[] = {
    {true, 80, BOARD_REBOOT_REQUIRED, OUTCOME_REBOOT_REQUIRED, nullptr},
    {true, 87, BOARD_DOWNLOAD_TWICE, OUTCOME_DOWNLOAD_TWICE, &RunCounters::twiceCount},
    {true, 96, BOARD_ACTIVATED, OUTCOME_ACTIVATED, &RunCounters::boardNoRebootCount},
    {true, ANY_EXIT_STATUS, BOARD_DOWNLOADED, OUTCOME_SUCCEEDED, &RunCounters::boardNoRebootCount},
    {false, 89, BOARD_FAILED, OUTCOME_NO_SIGNATURE, &RunCounters::boardFailCount},
    {false, 90, BOARD_FAILED, OUTCOME_INVALID_SIGNATURE, &RunCounters::boardFailCount},
    {false, 92, BOARD_FAILED, OUTCOME_NOT_FOR_BOARD_MODEL, &RunCounters::boardFailCount},
    {false, 98, BOARD_FAILED, OUTCOME_PROHIBITED, &RunCounters::boardFailCount},
    {false, 70, BOARD_FAILED, OUTCOME_INCOMPATIBLE_IMAGE, &RunCounters::boardFailCount},
    {false, 103, BOARD_FAILED, OUTCOME_INCOMPATIBLE_FLASH_PART, &RunCounters::boardFailCount},
    {false, 104, BOARD_FAILED, OUTCOME_WRONG_ASIC_VERSION, &RunCounters::boardFailCount},
    {false, 105, BOARD_FAILED, OUTCOME_INCOMPATIBLE_OBJECT_GENERAL, &RunCounters::boardFailCount},
    {false, 106, BOARD_FAILED, OUTCOME_INCOMPATIBLE_OBJECT, &RunCounters::boardFailCount},
    {false, 107, BOARD_FAILED, OUTCOME_INVALID_FILE_LENGTH, &RunCounters::boardFailCount},
    {false, ANY_EXIT_STATUS, BOARD_FAILED, OUTCOME_FAILED, &RunCounters::boardFailCount},
};

const ReplyMeaning& meaningOfReply(bool noError, int exitStatus) {
    for (const ReplyMeaning& row : replyMeanings) {
        if (row.noError == noError && (row.exitStatus == exitStatus || row.exitStatus == ANY_EXIT_STATUS)) {
            return row;
        }
    }
    return replyMeanings[std::size(replyMeanings) - 1];
}
static_assert(!replyMeanings[std::size(replyMeanings) - 1].noError &&
                  replyMeanings[std::size(replyMeanings) - 1].exitStatus == ANY_EXIT_STATUS,
              "the last row is a failure of any kind");

bool isNamedFailure(uint8_t outcome) {
    for (const ReplyMeaning& row : replyMeanings) {
        if (!row.noError && row.exitStatus != ANY_EXIT_STATUS && row.outcome == outcome) {
            return true;
        }
    }
    return false;
}

// The last row matches every other result.
static constexpr InheritedResult inheritedResults[] = {
    {BOARD_DOWNLOADED, OUTCOME_SUCCEEDED, true},
    {BOARD_REBOOT_REQUIRED, OUTCOME_REBOOT_REQUIRED, true},
    {BOARD_DOWNLOAD_TWICE, OUTCOME_DOWNLOAD_TWICE, true},
    {BOARD_ACTIVATED, OUTCOME_ACTIVATED, true},
    {BOARD_FAILED, OUTCOME_FAILED, false},
};

const InheritedResult& inheritedResult(uint32_t downloadStat) {
    for (const InheritedResult& row : inheritedResults) {
        if (row.boardResult == downloadStat) {
            return row;
        }
    }
    return inheritedResults[std::size(inheritedResults) - 1];
}
static_assert(!inheritedResults[std::size(inheritedResults) - 1].succeeded, "an unknown result is a failure");
