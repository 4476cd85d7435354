// A machine with ports, images and replies of all kinds, on which every decision of the program has something to decide.
#pragma once

#include "fuzz/memory_platform.h"

// An image file: the header of the family (0 is the newest) with the version's text.
std::string imageFile(size_t family, const std::string& version);

MemoryMachine standardMachine();
