#include "settings/operation_words.h"

#include "settings/run_options.h"

struct OperationRow {
    int RunOptions::*flag;
    OperationWords words;
};

static constexpr OperationRow operations[] = {
    {&RunOptions::update, {"update", "updates", "Firmware update is not required."}},
    {&RunOptions::rewrite, {"rewrite", "rewrites", "Firmware rewrite is not required."}},
    {&RunOptions::downgrade, {"downgrade", "downgrades", "Firmware downgrade is not required."}},
    {&RunOptions::forceFw, {nullptr, "firmware downloads", "Download is not required."}},
};
static constexpr OperationWords noOperation = {nullptr, "unknown operation", "Download is not required."};

const OperationWords& selectedOperation() {
    for (const OperationRow& row : operations) {
        if (runOptions.*row.flag) {
            return row.words;
        }
    }
    return noOperation;
}
