// A machine of memory in the place of the platform. Each operation and each allocation can be made to fail.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <vector>

#define MUST(truth)                                                                                                    \
    (truth) ? void() : (fprintf(stderr, "%zu %s: %s\n", machine.failAt, machine.failed.c_str(), #truth), abort())

struct MemoryMachine {
    std::map<std::string, std::string> files;   // with "the listing" and "the console", which no switch can name
    std::vector<std::string> replies;           // to a download for the first port and so on, an exit status in front
    size_t failAt = 0;                          // the operation's number from 1, 0 for none
    bool failOnwards = false, running = false;  // whether all behind it fail too
    size_t operations = 0, listings = 0, downloads = 0, openFiles = 0;
    std::string switches, redirect, download, reply;  // the file behind the last ">"; of the port at work
    size_t port = 0, failedPort = 0;                  // the one at work, from 1, and the one at the first failure
    std::string failed;                               // the operation that failed first
    std::set<std::string> touched;                    // the files on which one failed
    std::vector<std::pair<std::string, std::string>> portEnds;  // the board of each port, and what became of the port
    std::map<std::string, int> boards;                          // 1 after a download, 2 when its reply was good
    bool fails(const char* operation, const char* path = "");
};
extern MemoryMachine machine;

// Its parts: the operation that fails (with a minus, all behind it too), switches, listing, table, settings, five images
// (a digit for the family, a version), replies. An old temp file looks like an answer.
MemoryMachine machineOf(const std::string& parts);
extern const char STANDARD[];  // the parts behind the switches, with ports, images and replies of all kinds

// Runs the whole program once on it, and aborts when something is broken that must hold for every run.
void judgedRun();
std::vector<std::string> split(const std::string& text, char separator);
