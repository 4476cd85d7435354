// Fails each operation of each run once, and once with all behind it.
#include "fuzz/memory_platform.h"

int main() {
    const char* runs = "/h,/q,/q /xml /vpd,/iv=C:\\t\\firmware\\0.grp,/update,/update /xml,/ff /q /v,/auto /rewrite /p,"
                       "/update /v /xv /log=run.log,/p /rewrite /xml,/downgrade /xv,/auto /update /xml,/auto /q,"
                       "/auto /downgrade /v /xv,/auto /ff /l=run.log /xml /s";
    for (const std::string& run : split(runs, ',')) {
        for (size_t i = 2; i < 4 || machine.operations >= i / 2 - 1; i++) {
            machine = standardMachine();
            machine.failAt = i / 2;
            machine.failOnwards = i % 2 != 0;
            judgedRun(split(run, ' '));
        }
    }
}
