#!/usr/bin/env bash
# Prints which lines and branches of src/ and simulator/ the whole test suite runs through, file by file, and below it
# the lines that nothing reaches. Works in build/coverage.
set -euo pipefail
cd "$(dirname "$0")/.."

command -v gcovr >/dev/null || { apt-get update -qq && apt-get install -y -qq --no-install-recommends gcovr >/dev/null; }
tools/setup.sh test
cmake -S . -B build/coverage -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS=--coverage >/dev/null
cmake --build build/coverage >/dev/null
find build/coverage -name '*.gcda' -delete
ctest --test-dir build/coverage -j "$(nproc)" | tail -4

# Branches that only an exception could take are none here.
report=(gcovr --root . --filter src/ --filter simulator/ --exclude-throw-branches --object-directory build/coverage)
"${report[@]}"
"${report[@]}" --branches
