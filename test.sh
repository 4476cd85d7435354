#!/usr/bin/env bash
# Builds everything and runs every test: under AddressSanitizer and UndefinedBehaviorSanitizer, on the Windows programs
# through Wine, a few seconds of each fuzz target, the readers of the sources, and last the release programs of this
# machine. Ends with ctest's summary.
set -euo pipefail
cd "$(dirname "$0")"

run_tests() {
    echo "== $1"
    cmake --preset "$1" >/dev/null
    cmake --build --preset "$1"
    ctest --preset "$1" -j "$(nproc)"
}

tools/setup.sh test
tools/check-style.sh
run_tests sanitize
if tools/setup.sh windows; then
    trap 'tools/wine.sh --end' EXIT
    tools/wine.sh cmd /c exit  # makes the prefix, before tests ask for it side by side
    run_tests windows
else
    echo "== windows: left out, since the cross compiler or Wine cannot be installed here"
fi
tools/fuzz.sh 3
cmake --preset native >/dev/null
tools/check-sources.sh
run_tests native
