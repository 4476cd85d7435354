#include "platform/platform.h"
#include "run/cleanup.h"
#include "run/port.h"
#include "run/run.h"

int main(int argc, char** argv) {
    startPlatform();
    int returnCode = prepareRun(argv);
    if (returnCode == RETURN_SUCCEEDED) {
        returnCode = runTarnlift(argc, argv, processPort);
        cleanup();
    }
    return returnCode;
}
