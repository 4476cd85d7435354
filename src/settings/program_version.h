// The version, for the program and for its version resource alike: hence macros, which the resource compiler reads.
#pragma once

#define TARNLIFT_VERSION_MAJOR 14
#define TARNLIFT_VERSION_MINOR 4
#define TARNLIFT_VERSION_RELEASE 473
#define TARNLIFT_VERSION_BUILD 14
