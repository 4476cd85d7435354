// The program's version. Macros, because the resource compiler reads this file, too.
#pragma once

#define TARNLIFT_VERSION_MAJOR 14
#define TARNLIFT_VERSION_MINOR 4
#define TARNLIFT_VERSION_RELEASE 473
#define TARNLIFT_VERSION_BUILD 14

#define TARNLIFT_QUOTED(x) #x
#define TARNLIFT_JOINED(a, b, c, d)                                                                                    \
    TARNLIFT_QUOTED(a) "." TARNLIFT_QUOTED(b) "." TARNLIFT_QUOTED(c) "." TARNLIFT_QUOTED(d)
#define TARNLIFT_VERSION_TEXT                                                                                          \
    TARNLIFT_JOINED(TARNLIFT_VERSION_MAJOR, TARNLIFT_VERSION_MINOR, TARNLIFT_VERSION_RELEASE, TARNLIFT_VERSION_BUILD)
#define TARNLIFT_VERSION_NUMBERS                                                                                       \
    TARNLIFT_VERSION_MAJOR, TARNLIFT_VERSION_MINOR, TARNLIFT_VERSION_RELEASE, TARNLIFT_VERSION_BUILD
