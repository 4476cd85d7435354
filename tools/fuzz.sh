#!/usr/bin/env bash
# Fuzzes the program: runs it on made inputs, and checks the rules that every run must keep.
# Usage: tools/fuzz.sh SECONDS [TARGET ...]   for each target, as many at a time as there are cores; without one, all
# An input that breaks a rule is left in build/fuzz/, and the inputs that are worth keeping are in build/fuzz/found/. To run
# one again: build/fuzz/bin/fuzz_TARGET FILE. Add fixed findings to the seeds.
set -euo pipefail
cd "$(dirname "$0")/.."

if ! [[ ${1:-} =~ ^[0-9]+$ ]]; then
    echo "Usage: tools/fuzz.sh SECONDS [TARGET ...]" >&2
    exit 2
fi
export seconds=$1
shift
targets=("$@")
[ $# -gt 0 ] || mapfile -t targets < <(basename -a tests/fuzz/seeds/*)

tools/setup.sh fuzz
mkdir -p build/fuzz
if ! { cmake --preset fuzz && cmake --build --preset fuzz --target "${targets[@]/#/fuzz_}"; } >build/fuzz/build.log 2>&1; then
    cat build/fuzz/build.log
    exit 1
fi

# Files of realistic size that are in the repository anyway.
mkdir -p build/fuzz/found/{adapters,listing,matrix}
cp simulator/adapters.sample.txt build/fuzz/found/adapters/
cp simulator/adapters.sample.txt build/fuzz/found/listing/
cp share/fwmatrix.sample.txt build/fuzz/found/matrix/

# Runs one target. Its output is shown only when it fails.
run_target() {
    local found=build/fuzz/found/$1
    mkdir -p "$found"
    if "build/fuzz/bin/fuzz_$1" -max_total_time="$seconds" -max_len=16384 -len_control=0 -timeout=20 -print_final_stats=1 \
        -artifact_prefix="build/fuzz/$1-" "$found" "tests/fuzz/seeds/$1" >"build/fuzz/$1.log" 2>&1; then
        echo "$1: good, $(sed -n 's/stat::number_of_executed_units: *//p' "build/fuzz/$1.log") inputs"
    else
        tail -n 40 "build/fuzz/$1.log"
        echo "$1: FAILED, see build/fuzz/$1.log"
        return 1
    fi
}
export -f run_target
printf '%s\n' "${targets[@]}" | xargs -P "$(nproc)" -I{} bash -c 'run_target {}'
