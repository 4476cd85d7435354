#!/usr/bin/env bash
# Prints which lines and branches of src/ and simulator/ the whole test suite runs through, file by file, and below it
# the lines that nothing reaches. Works in build/coverage.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/setup.sh test
tools/setup.sh coverage
# Everything without exceptions, as the programs are built: else the branches to their landing pads would count, and
# those of a source that is compiled for two of the tests would not be the same ones.
cmake -S . -B build/coverage -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS="--coverage -fno-exceptions" >/dev/null
cmake --build build/coverage >/dev/null
find build/coverage -name '*.gcda' -delete
ctest --test-dir build/coverage -j "$(nproc)" | tail -4

# The whole suite counts: unit tests, end-to-end tests, and the runs on a machine that fails. A branch is a way that a
# condition can go; what the compiler adds on a line without a condition is left out.
report=(gcovr --root . --filter src/ --filter simulator/ --exclude-throw-branches --exclude-unreachable-branches
    --exclude-directories '.*/CompilerIdCXX' --object-directory build/coverage)
"${report[@]}"
"${report[@]}" --branches
