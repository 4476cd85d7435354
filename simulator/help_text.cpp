#include "help_text.h"

#include "identity.h"
#include "script.h"

namespace simulator {

static constexpr std::string_view usage = "winhbcfg.exe - " SIMULATED_UTILITY_MARK R"(

Calls:
    winhbcfg.exe listattr           list the adapters, with the models' display names
    winhbcfg.exe listattr /c        list the adapters, with the models as they are stored
    winhbcfg.exe download n=PORT i="IMAGE"
                                    load a .grp image on the board of the port with this number
    winhbcfg.exe reboot             as if the machine had been restarted: activates firmware
                                    that waits for it ("Change Status" becomes 0)
    winhbcfg.exe /?                 this text (also: -h, --help, help)

The adapters are in the file adapters.txt beside the program. A download changes it, so the
next listing shows the new version. The file is always replaced as a whole.

adapters.txt:
    One block for each port. Its first line is 'HBA: NUMBER', an empty line ends it. The lines
    of a block are 'Key: value' and are listed unchanged, whatever the keys are. A download
    uses these keys:
        HBA                 the port's number (n=)
        Device ID           the family: E300, F400, F500, F600 (images of family 64 to 67)
        Serial Number, PCI Bus Number
                            ports that are equal in both are one board and share a download
        FW Version          set to the version in the image's header
        Change Status       set to 1 by a download with exit status 80
    The letters HBA must not be anywhere else in the listed lines: readers would see a port.
    A line that begins with # is a comment. A line that begins with @ is a script line.
    Neither is listed. Many keys are found as parts of a line, so keep this order: Model before
    VPD Model, Device ID before Sub Device ID, Vendor ID before Sub Vendor ID.
    What 'winhbcfg.exe listattr /c' of a real server printed can be used as it is: UTF-16 (of
    PowerShell's >) is understood, and other lines before the first block are not listed.

    HBA: 1
    Port WWN: 10:00:aa:bb:cc:dd:ee:01
    PCI Bus Number: 3B
    Model: QVa5104-M4
    @model QVa5104
    Device ID: E300
    Serial Number: AB12345678
    FW Version: 14.2.100.5
    @download exit=80

Without script lines a download of a matching image replies "NO Error" with exit status 0. Others
get an error text: 1 no such port, 70 image of another family, 105 image cannot be read, 106 no
known header, 107 shorter than a header. Unknown calls, a file that cannot be read or written,
and an invalid line in adapters.txt end with exit status 2.
)";

static constexpr std::string_view blockScripts = R"(
Script lines in a port's block:
    @model NAME         the model's name for a listing without /c
    @print TEXT         list TEXT unchanged (also before the first block)
    @download OPTIONS   the next download of this port. The lines are used in their order; a
                        used one becomes a comment. Without an option it is as without a
                        script. A reply without "NO Error" in it changes nothing; one with it
                        stores the version if the image has one. Options, separated by blanks:
)";

static constexpr std::string_view quoting =
    R"(    A TEXT with blanks needs quotation marks: reply="NO Error". In them \n \r \t \0 \\ \" mean
    line feed, carriage return, tab, NUL, backslash and quotation mark.
)";

static constexpr std::string_view headScripts = R"(
Script lines before the first block, for all calls:
    @calls FILE         append the arguments of each call, one line a call, to FILE beside the
                        program
    @listattr OPTIONS   every listing. Options:
)";

std::string composeHelp() {
    std::string help(usage);
    help.append(blockScripts).append(describeOptions(FOR_DOWNLOAD)).append(quoting);
    help.append(headScripts).append(describeOptions(FOR_LISTING));
    return help;
}

}  // namespace simulator
