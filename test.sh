#!/usr/bin/env bash
# Builds everything and runs every test: first under AddressSanitizer and UndefinedBehaviorSanitizer, then on the
# release programs. Ends with ctest's summary.
set -euo pipefail
cd "$(dirname "$0")"

tools/setup.sh test
tools/check-style.sh
for preset in sanitize native; do
    echo "== $preset"
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset"
    ctest --preset "$preset" -j "$(nproc)"
done
