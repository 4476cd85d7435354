#!/usr/bin/env bash
# Feeds the program what nobody would send it, and looks at what every run must keep to.
# Usage: tools/fuzz.sh SECONDS [TARGET]   for each target, two at a time; all directories of tests/fuzz/seeds without one
# An input that breaks something is left in build/fuzz/, as are the inputs that were found to be worth keeping. To look
# at one again: build/fuzz/bin/fuzz_TARGET FILE. One that has been mended belongs into the seeds.
set -euo pipefail
cd "$(dirname "$0")/.."

export seconds=${1:?how many seconds for each target?}
mapfile -t targets < <(basename -a tests/fuzz/seeds/"${2:-}"*)

tools/setup.sh fuzz
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target "${targets[@]/#/fuzz_}"

# Runs one target. Its words are shown only when it fails.
run_target() {
    local found=build/fuzz/found/$1
    mkdir -p "$found"
    if "build/fuzz/bin/fuzz_$1" -max_total_time="$seconds" -max_len=4096 -timeout=20 -print_final_stats=1 \
        -artifact_prefix="build/fuzz/$1-" "$found" "tests/fuzz/seeds/$1" >"build/fuzz/$1.log" 2>&1; then
        echo "$1: good, $(sed -n 's/stat::number_of_executed_units: *//p' "build/fuzz/$1.log") inputs"
    else
        tail -n 40 "build/fuzz/$1.log"
        echo "$1: FAILED, see build/fuzz/$1.log"
        return 1
    fi
}
export -f run_target
printf '%s\n' "${targets[@]}" | xargs -P 2 -I{} bash -c 'run_target {}'
