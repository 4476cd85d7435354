#!/usr/bin/env bash
# Measures what a run costs: time beside the least that it can cost, instructions, memory. Takes about four minutes,
# and ends with the tables, which it leaves in results.md of its directory, too.
# Usage: bench/run.sh [DIRECTORY]    works in DIRECTORY/bench/, which it makes anew; DIRECTORY is build/ if not named
set -euo pipefail
cd "$(dirname "$0")/.."

mkdir -p build
top=$(realpath "${1:-build}")/bench
results=$top/results

tools/setup.sh bench

rm -rf "$top"
mkdir -p "$results"
cmake --preset native >"$top/build.log"
cmake --build --preset native --target tarnlift >>"$top/build.log"
for program in floor utility; do
    gcc -O2 -Wall -Wextra -Werror -static "bench/$program.c" -o "$top/$program"
done
cp build/native/bin/tarnlift.exe "$top/"

export TARNLIFT_HOST=host TEMP=temp

# Measures one run. Program and floor take turns, so that a busy moment of the machine meets both.
# measure NAME GROWS SIZE CHILDREN ROUNDS RUNS SWITCH...
#   CHILDREN is `listing` for a run that only lists, or `downloads` for one that downloads to each board, too.
measure() {
    local name=$1 grows=$2 size=$3 children=$4 rounds=$5 runs=$6
    shift 6
    local machine=$top/$grows-$size result=$results/$name-$size downloads=0 round
    [ -d "$machine" ] || {
        python3 bench/machine.py "$machine" "$grows" "$size" >"$machine.boards"
        cp "$top/tarnlift.exe" "$machine/"
        cp "$top/utility" "$machine/winhbcfg.exe"
    }
    [ "$children" = listing ] || downloads=$(cat "$machine.boards")
    echo "$name $size: tarnlift.exe $*" >&2
    (
        cd "$machine"
        /usr/bin/time -o "$result.memory" -f %M ./tarnlift.exe "$@" >"$top/output"
        stat -c %s listing.txt >"$result.listing"
        local bytes
        bytes=$(stat -c %s "$top/output")
        for ((round = 0; round < rounds; round++)); do
            hyperfine -N -w 2 -r "$runs" --output="$top/output" --export-json "$result.time$round" \
                "./tarnlift.exe $*" "../floor ./winhbcfg.exe temp/floor.txt $downloads $bytes" &>"$result.hyperfine"
        done
        valgrind --tool=callgrind --callgrind-out-file="$result.callgrind" ./tarnlift.exe "$@" \
            >"$top/output" 2>"$result.valgrind"
    )
}

measure eight-query ports 8 listing 40 12 /q
measure eight-update ports 8 downloads 40 12 /update
measure eight-auto ports 8 downloads 40 12 /auto /update
for size in 10 100 1000 10000; do
    runs=$((size < 10000 ? 15 : 5))
    measure ports-query ports $size listing 3 $runs /q
    measure ports-preview ports $size listing 3 $runs /p /update
    measure ports-auto ports $size listing 3 $runs /auto /p /update
    measure images images $size listing 3 $runs /auto /p /update
    measure matrix lines $size listing 3 $runs /p /update
    measure listing bytes $((size * 1000)) listing 3 $runs /q
done
for size in 10 100 1000; do
    measure ports-update ports $size downloads 3 5 /update
done

python3 bench/report.py "$results" | tee "$top/results.md"
