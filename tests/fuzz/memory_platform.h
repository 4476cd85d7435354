// A machine in memory in place of the platform. Each operation and each allocation can be made to fail.
#pragma once

#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

// The console's texts are among the files, under names that no switch can give.
inline const std::string CONSOLE = "the console";
inline const std::string ERROR_CONSOLE = "the error console";
inline const std::string PROGRAM_DIRECTORY = "C:\\t\\";
inline const std::string MATRIX_PATH = PROGRAM_DIRECTORY + "fwmatrix.txt";
inline const std::string SETTINGS_PATH = PROGRAM_DIRECTORY + "RM.INI";
inline const std::string DIAGNOSTIC_LOG_PATH = PROGRAM_DIRECTORY + "vlmdbg.log";
inline const std::string IMAGE_DIRECTORY = PROGRAM_DIRECTORY + "firmware\\";

// How the adapter utility ends a download.
struct UtilityReply {
    int exitStatus;
    std::string text;
};

struct Download {
    size_t port;  // the port at work, from 1
    std::string command;
    std::string reply;  // empty when the utility could not run
};

struct MemoryMachine {
    // The machine as a run finds it.
    std::map<std::string, std::string> files;  // contents by path
    std::string listing;                       // the utility's reply to listattr
    std::vector<UtilityReply> replies;         // to a download for the first port, the second and so on, in turn

    // Operation number failAt, from 1, fails, and with failOnwards all after it. With 0 none fails.
    size_t failAt = 0;
    bool failOnwards = false;

    // What a run did.
    bool running = false;  // operations count only during a run
    size_t operations = 0;
    int listings = 0;
    std::vector<Download> downloads;
    std::map<FILE*, std::string> openFiles;  // their paths
    std::string tempFile;                    // where the utility's last output went
    size_t hiddenBytes = 0;                  // printed, but not on the console when the utility was started
    size_t portAtWork = 0;                   // from 1; 0 before the first port and after the last
    std::string firstFailure;                // the operation that failed first, with its path
    size_t portAtFirstFailure = 0;
    std::set<std::string> failedPaths;  // the files on which an operation failed

    // Counts an operation. Returns true when it must fail.
    bool fails(const std::string& operation, const std::string& path = "");
};

extern MemoryMachine machine;
