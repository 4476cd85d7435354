#include "records/run_counters.h"

RunCounters runCounters;
