// Runs the adapter utility, the only way to the adapters, with its output redirected to the temp file.
#pragma once

#include <cstddef>
#include <cstdint>

inline constexpr size_t UTILITY_OUTPUT_SIZE = 5120;

// The reply of the last download; empty after a listing.
extern char utilityOutput[UTILITY_OUTPUT_SIZE];

// Results of the two runs: whether the temp file could be opened afterwards.
enum TempFileStatus { TEMP_FILE_READ = 0, TEMP_FILE_NOT_OPENED = 1 };

// Results of the two readers.
enum TempFileReading { TEMP_TEXT_READ = 0, TEMP_TEXT_FAILED = 4 };

// Runs the utility with `args` and copies its reply to `outBuf`, which has UTILITY_OUTPUT_SIZE bytes: as many whole lines
// as fit, without the last character. Removes the temp file. `returnStatus` gets the low 16 bits of the exit code. When
// the command line does not fit, or an old temp file can neither be removed nor emptied, the utility is not run, and one
// line on standard error tells why; the result is that of a failed run with an empty reply.
int executeUtilityCommand(const char* args, char* outBuf, uint16_t* returnStatus);

// The same for a long text, which stays in the temp file. The caller reads it by the two operations below and removes
// the file.
int executeUtilityCommandToFile(const char* args, uint16_t* returnStatus);

// Counts the characters of the temp file. Fails when there are none, or when it cannot be read to its end; `count` does
// not change when it cannot be opened.
int getCharacterCountFromTempFile(uint32_t* count);

// Reads the temp file into `buffer`, which has `count` + 1 bytes, all 0; the last character is overwritten by the NUL.
// Fails when it cannot be read to its end.
int getBufferDataFromTempFile(char* buffer, uint32_t count);
