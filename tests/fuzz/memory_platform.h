// A machine made of memory in the place of the platform. Each of its operations, and each allocation of the program, can
// be made to fail.
#pragma once

#include <map>
#include <string>
#include <vector>

struct MemoryMachine {
    std::map<std::string, std::string> files;          // with "listing", the utility's, and "stdout"
    std::vector<std::pair<int, std::string>> replies;  // to the downloads in turn, and from the start again
    size_t failAt = 0;                                 // the operation's number from 1, 0 for none
    bool failOnwards = false, running = false;         // whether all behind it fail too
    size_t operations = 0, listings = 0, downloads = 0, openFiles = 0;
    std::string lastReply, redirect;  // of the last download, empty when it did not start; the last file behind ">"
    bool redirectTouched = false;     // an operation on that file was made to fail
    bool fails(const std::string& path = "");
};

extern MemoryMachine machine;

// A machine with ports, images and replies of all kinds, and an old temp file that looks like an answer.
MemoryMachine standardMachine();
std::string imageFile(bool isB1Family, const std::string& version);

// Runs the whole program once on it, and aborts when something is broken that must hold for every run.
void judgedRun(std::vector<std::string> arguments);
std::vector<std::string> split(const std::string& text, char separator);
