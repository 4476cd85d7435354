#include "run/help.h"

#include "output/output.h"
#include "run/switches.h"
#include "settings/program_names.h"
#include "settings/run_options.h"
#include "settings/working_paths.h"

static constexpr int ENTRIES_IN_A_ROW = 5;  // the first row holds one more

static const char* const usageEntries[] = {
    "[/auto]",
    "[/downgrade]",
    "[/e]",
    "[/f]",
    "[/ff]",
    "[/fmd=<fwmatrix_dir>]",
    "[/g]",
    "[/help]",
    "[/id=<image_dir>]",
    "[/iv=<image_file>]",
    "[/log=<logfile>]",
    "[/q]",
    "[/p]",
    "[/ramdrive=<drv>[:]]",
    "[/rewrite]",
    "[/s]",
    "[/update]",
    "[/v]",
    "[/vpd]",
    "[/xml]",
    "[/?]",
};

// The description of the switches, around the one line that depends on the run. Each line begins with its line feed.
static constexpr char descriptionBeforeRamDrive[] =
    "\n                "
    "\n    /auto       Auto - Instructs Tarnlift to ignore the fwmatrix.txt file,"
    "\n                automatically discover HBAs, and to perform additional"
    "\n                operations using the firmware directory."
    "\n                "
    "\n                This switch requires the use of Velmar-defined firmware"
    "\n                files in the firmware directory."
    "\n                "
    "\n    /downgrade  Downgrade - For each installed HBA, the current"
    "\n                firmware version is compared to a version defined in fwmatrix.txt."
    "\n                If the downgrade version in fwmatrix.txt is lower than the"
    "\n                installed version then the downgrade version is"
    "\n                is downloaded to the HBA."
    "\n                "
    "\n                When this switch is used with /auto, the fwmatrix.txt"
    "\n                configuration file is ignored. The user must place the desired"
    "\n                downgrade firmware image in the firmware directory."
    "\n                The downgrade firmware version is then compared to the installed version."
    "\n                If the downgrade version is lower than the installed version,"
    "\n                then the downgrade version is downloaded to the HBA."
    "\n                If multiple downgrade versions are found, the next-previous downgrade"
    "\n                version will be downloaded to the HBA."
    "\n                "
    "\n    /e          Rewrite - This switch is equivalent to /rewrite."
    "\n                "
    "\n    /f          Force Fw - Equivalent to using /ff."
    "\n                "
    "\n    /ff         Force Fw - For each installed HBA, force a"
    "\n                download of the firmware specified in the fwmatrix.txt file."
    "\n                "
    "\n                When this switch is used with /auto, the fwmatrix.txt"
    "\n                configuration file is ignored. The user must place the desired"
    "\n                firmware image in the firmware directory. If multiple firmware"
    "\n                versions are found for an HBA, the highest available firmware"
    "\n                version will be downloaded to the HBA."
    "\n                "
    "\n    /fmd=<fwmatrix_dir> Base directory where the fwmatrix.txt file is located."
    "\n                "
    "\n    /g          Downgrade - Equivalent to using /downgrade."
    "\n                "
    "\n    /h or /?    Help - Display this help message."
    "\n                "
    "\n    /log=<logfile> Log - Append the output of this utility to the specified text file."
    "\n                "
    "\n    /id=<image_dir> Image Directory - Base directory where the firmware directory is located."
    "\n                "
    "\n    /iv=<image_file> Image Version - Display the firmware file's version."
    "\n                "
    "\n    /p          Preview Download - For each installed HBA, "
    "\n                perform a download preview using the firmware"
    "\n                specified in the fwmatrix.txt file."
    "\n                "
    "\n                When this switch is used with /auto, the fwmatrix.txt"
    "\n                configuration file is ignored. The firmware directory"
    "\n                will be used to perform the download preview."
    "\n                "
    "\n                This switch must be used with additional operational switches."
    "\n                "
    "\n    /q          Query - Display the model, WWN, PCI ID, VID, SSID, SVID,"
    "\n                firmware version, boot code version, and Flash Part of each installed HBA."
    "\n                "
    "\n                When this switch is used with a download switch, an additional"
    "\n                field called \"Supported Firmware\" will be displayed."
    "\n                This field signifies the firmware image that Tarnlift will"
    "\n                attempt to download."
    "\n                "
    "\n    /ramdrive=<drive letter>[:] - Specify drive for creating temporary and log";

static constexpr char descriptionAfterRamDrive[] =
    "\n            "
    "\n    /rewrite    Rewrite - For each installed HBA, the current firmware version"
    "\n                is compared to a version defined in fwmatrix.txt."
    "\n                If the rewrite version is higher than or equal to the"
    "\n                installed version then rewrite version is downloaded to the HBA."
    "\n                "
    "\n                When this switch is used with /auto, the fwmatrix.txt"
    "\n                configuration file is ignored. The user must place the desired"
    "\n                rewrite firmware image in the firmware directory."
    "\n                The rewrite firmware version is then compared to the installed version."
    "\n                If the installed version is less than or equal to the rewrite version,"
    "\n                then the rewrite version is downloaded to the HBA."
    "\n                If multiple rewrite versions are found, the highest available version will be"
    "\n                downloaded to the HBA."
    "\n                "
    "\n    /s          Silent - Mute all output to stdout."
    "\n                "
    "\n    /update     Update - For each installed HBA, the current firmware version"
    "\n                is compared to a version defined in fwmatrix.txt."
    "\n                If the update version in fwmatrix.txt is higher"
    "\n                than the installed version then the update version"
    "\n                is downloaded to the HBA."
    "\n                "
    "\n                When this switch is used with /auto, the fwmatrix.txt"
    "\n                configuration file is ignored. The user must place the desired"
    "\n                update firmware image in the firmware directory."
    "\n                The update firmware version is then compared to the installed version."
    "\n                If the update version is higher than the installed version, then"
    "\n                the update version is downloaded to the HBA."
    "\n                If multiple update versions are found, the"
    "\n                highest available version will be downloaded to the HBA."
    "\n                "
    "\n    /v          Verbose - Display progress messages."
    "\n                "
    "\n    /vpd        VPD Model Name - Display VPD model name for each supported"
    "\n                HBA. This switch must be used with additional operational"
    "\n                switches."
    "\n                "
    "\n    /xml        XML Output - Display output in XML format."
    "\n                "
    "\n\n";

static void printUsage() {
    printOut("\n%s ", appName);
    int index = 0;
    for (const char* entry : usageEntries) {
        printOut("%s ", entry);
        if (index > 0 && index % ENTRIES_IN_A_ROW == 0) {
            printOut("\n%4s", "");
        }
        index++;
    }
}

void printHelp() {
    if (runOptions.ramDriveLetter == '\0') {  // the parse stopped before it set the default
        setDefaultRamDrive();
    }
    printOut("\n%s v%s - Velmar Firmware Update Utility\n", offlineAppName, versionString);
    printUsage();
    printOut("%s", descriptionBeforeRamDrive);
    printOut("\n                files. Default is drive %c:.", runOptions.ramDriveLetter);
    printOut("%s", descriptionAfterRamDrive);
}
