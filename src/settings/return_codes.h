// Every value that the process can return. Scripts test these; codes 10 to 18 do not exist.
#pragma once

enum ReturnCode {
    RETURN_SUCCEEDED = 0,     // all done, help printed, or image version shown
    RETURN_NOT_REQUIRED = 1,  // no port needed a download
    RETURN_ALL_FAILED = 2,    // also: switch combination refused, or fwmatrix.txt not found
    RETURN_SOME_FAILED = 3,
    RETURN_COMMAND_LINE = 4,  // bad switch, or application paths not found
    RETURN_NO_ADAPTERS = 5,
    RETURN_NO_FIRMWARE_DIRECTORY = 6,
    RETURN_NO_COMPATIBLE_FIRMWARE = 7,
    RETURN_NO_PRIVILEGES = 8,
    RETURN_OLD_SYSTEM = 9,
    RETURN_IMAGE_VERSION = 19,  // the file of /iv is not a firmware file, or its version cannot be read
};
