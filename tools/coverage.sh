#!/usr/bin/env bash
# Prints the lines and branches of src/, simulator/ and fleet/ that the test suite reaches, file by file, and the lines that
# nothing reaches. Works in build/coverage.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/setup.sh test coverage
cmake -S . -B build/coverage -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS=--coverage >/dev/null
cmake --build build/coverage >/dev/null
find build/coverage -name '*.gcda' -delete
ctest --test-dir build/coverage -j "$(nproc)" | tail -4

# A branch is one outcome of a condition; branches that the compiler adds on a line without a condition are left out.
report=(gcovr --root . --filter src/ --filter simulator/ --filter fleet/ --exclude-throw-branches --exclude-unreachable-branches
    --exclude-directories '.*/CompilerIdCXX' --object-directory build/coverage)
"${report[@]}"
"${report[@]}" --branches
