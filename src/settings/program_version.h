// The program's version. Macros, because the resource compiler reads this file, too.
#pragma once

#define TARNLIFT_VERSION_MAJOR 14
#define TARNLIFT_VERSION_MINOR 4
#define TARNLIFT_VERSION_RELEASE 473
#define TARNLIFT_VERSION_BUILD 14
