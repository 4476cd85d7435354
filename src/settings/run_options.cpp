#include "settings/run_options.h"

RunOptions runOptions;

bool isQueryOnly() {
    return runOptions.query && !runOptions.help && !isAutoOrDownloadRun();
}

bool isDownloadRun() {
    return runOptions.update || runOptions.downgrade || runOptions.rewrite || runOptions.forceFw;
}

bool isAutoOrDownloadRun() {
    return runOptions.autoSelect || isDownloadRun();
}
