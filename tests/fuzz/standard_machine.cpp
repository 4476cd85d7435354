#include "fuzz/standard_machine.h"

// A port a line; a board's ports have the same serial number and bus.
static const char LISTING[] =
    R"(HBA:1,Model:A-x,Device ID:F600,Serial Number:s,FW Version:14.2.1.5,Port WWN:1<&",SFJ:0

HBA:2,Model:A,Device ID:F600,Serial Number:S,FW Version:1.2,Boot Version:1.2

HBA:3,Model:B,Device ID:F500,Serial Number:b,FW Version:14.3.1.1,RevID:11

HBA:4,Model:D,Device ID:1234,FW Version:1.2.3.4,CSF:0

HBA:5,Model:D,FW Version:NONE

HBA:6,Model:E<",Device ID:F400,FW Version:14.1

HBA:7,Model:B,Device ID:F500,Serial Number:c

HBA:8,Model:F,Device ID:E300,FW Version:14.1,PCI Bus Number:1
)";

static const char MATRIX[] =
    R"(//
A 0.grp
B 1.grp
D 0.grp x
QVa6200
E<" 8.grp
F 3.grp
)";

static const char SETTINGS[] =
    R"(FILLBYTE=0x10
REMOTE_HBA_WWPN 20:00:00:11:22:33:44:55
X
)";

std::string imageFile(size_t family, const std::string& version) {
    static const std::string magicAndSignature[] = {
        {"\xFE\xAA\x00\x40\xF7\xA6\x00\x00", 8},
        {"\xFE\xAA\x00\x20\xF7\xA5\x00\x00", 8},
        {"\xFE\xAA\x00\x05\xF7\xA4\x00\x00", 8},
        {"\xFE\xAA\x00\x03\xF7\x0C\x00\x00", 8},
    };
    return "...." + magicAndSignature[family % 4] + version + std::string(140, '\0');
}

MemoryMachine standardMachine() {
    MemoryMachine made;
    made.listing = LISTING;
    made.files = {
        {MATRIX_PATH, MATRIX},
        {SETTINGS_PATH, SETTINGS},
        {IMAGE_DIRECTORY + "0.grp", imageFile(0, "14.4.200.1")},
        {IMAGE_DIRECTORY + "1.grp", imageFile(1, "14.4.188.1")},
        {IMAGE_DIRECTORY + "2.grp", imageFile(2, "13.0.0.1")},
        {IMAGE_DIRECTORY + "3.grp", imageFile(3, "14.2.0.1")},
        {IMAGE_DIRECTORY + "4.grp", imageFile(1, "14.2.0.1")},
        {"C:\\tmp\\temp.txt", "HBA: 99\nModel: A\nDevice ID: E300\nNO Error\n"},  // old, and looks like a reply
    };
    std::string longReply;
    while (longReply.size() < 9000) {  // more than the program keeps of a reply
        longReply += "A line of a reply without a result.\n";
    }
    made.replies = {
        {80, "NO Error."}, {0, "NO Error."},  {92, "Error."}, {87, "NO Error."},
        {1, "Error."},     {96, "NO Error."}, {0, longReply},
    };
    return made;
}
