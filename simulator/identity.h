// How the simulated utility is told from the real one, which has the same file name, without starting either: only its
// file holds this text. A macro, so that it can be a part of the help: a text of its own might be compiled away.
#pragma once

#define SIMULATED_UTILITY_MARK "an adapter utility for rehearsals: its adapters are a text file"
