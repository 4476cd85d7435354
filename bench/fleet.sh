#!/usr/bin/env bash
# Measures what tarnfleet costs on fleets of growing size: time and memory of status, csv and page, and time of plan. Takes
# about two minutes.
# Usage: bench/fleet.sh [DIRECTORY]    works in DIRECTORY/bench-fleet/, which it makes anew; build/ if not named
set -euo pipefail
cd "$(dirname "$0")/.."

mkdir -p build
top=$(realpath "${1:-build}")/bench-fleet
sizes="1250 2500 5000 10000"

tools/setup.sh bench
rm -rf "$top"
mkdir -p "$top"
cmake --preset native >"$top/build.log"
cmake --build --preset native --target tarnfleet tarnlift winhbcfg >>"$top/build.log"
for size in $sizes; do
    python3 bench/made_fleet.py "$top/$size" "$size"
done

# Prints the row of one command: least and median seconds and largest memory at each size, and how the time grows from
# the smallest fleet to the largest (1 is linear).
measure() {
    local name=$1 size row="| \`$1\`" first="" seconds=""
    shift
    for size in $sizes; do
        # status ends with another code than 0 when servers have failed.
        hyperfine --shell=none --ignore-failure --warmup 1 --runs 10 --export-csv "$top/result.csv" \
            "build/native/bin/tarnfleet $name $top/$size $*" >/dev/null 2>&1
        /usr/bin/time --quiet --format %M --output "$top/memory" \
            build/native/bin/tarnfleet "$name" "$top/$size" "$@" >/dev/null || [ $? -le 2 ]
        read -r seconds median < <(awk -F, 'NR == 2 { print $7, $4 }' "$top/result.csv")
        first=${first:-$seconds}
        row+=$(printf ' | %.2f s (%.2f), %d MB' "$seconds" "$median" $(($(cat "$top/memory") / 1000)))
    done
    local growth
    growth=$(awk -v a="$first" -v b="$seconds" 'BEGIN { printf "%.2f", log(b / a) / log(10000 / 1250) }')
    echo "$row | $growth |"
}

echo "| Command | 1,250 servers | 2,500 | 5,000 | 10,000 | Exponent |"
echo "|---|---|---|---|---|---|"
measure status
measure csv
measure page -o "$top/fleet.html"
echo
rows=$(build/native/bin/tarnfleet csv "$top/5000" | tail -n +2 | wc -l)
build/native/bin/tarnfleet page "$top/5000" -o "$top/fleet.html"
echo "The 5,000 servers have $rows ports; their page has $(($(stat -c %s "$top/fleet.html") / 1000)) kB."

# plan: listings of servers with 8 ports each, and a machine whose table and firmware they need.
python3 bench/machine.py "$top/machine" ports 8 >"$top/boards"
printf '\n| Listings | Least | Median | Processor time |\n|---|---|---|---|\n'
for size in 125 250 500 1000 2000; do
    mkdir "$top/listings-$size"
    for ((server = 0; server < size; server++)); do
        cp "$top/machine/listing.txt" "$top/listings-$size/server$server.txt"
    done
    hyperfine --shell=none --warmup 1 --runs 5 --export-csv "$top/result.csv" "build/native/bin/tarnfleet plan \
        $top/listings-$size -o $top/plan-$size -- /update /id=$top/machine /fmd=$top/machine" >/dev/null 2>&1
    awk -F, -v size="$size" 'NR == 2 { printf "| %d | %.2f s | %.2f s | %.2f s |\n", size, $7, $4, $5 + $6 }' "$top/result.csv"
done
