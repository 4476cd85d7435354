// The whole run: one pass, from the test of the system to the return code.
#pragma once

#include "records/hba_record.h"
#include "settings/return_codes.h"

// What is done with one port. The program passes processPort, the fuzz targets a function that watches processPort.
using PortWork = void (*)(HbaRecord* hba);

// Clears the state of the run, checks the system and the rights, and finds the program's paths. Returns RETURN_SUCCEEDED,
// or the code to end with after a message; then there is nothing to run and nothing to clean up.
ReturnCode prepareRun(char** argv);

// Parses the switches, lists the ports, works on each and reports. Returns the program's return code. The caller calls
// cleanup() afterwards.
int runTarnlift(int argc, char** argv, PortWork workOnPort);
