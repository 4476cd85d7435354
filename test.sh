#!/usr/bin/env bash
# Builds everything and runs every test.
# Usage: ./test.sh              all stages, side by side; ends with ctest's summary
#        ./test.sh STAGE ...    only these
# With several stages, the output of each is in build/test-logs/STAGE.log.
set -euo pipefail
cd "$(dirname "$0")"
logs=build/test-logs
mkdir -p "$logs"

# The longest first. To add a stage, write stage_NAME and put its name here. The stage named first is shown last.
stages=(native windows sources sanitize release fuzz style)

# The release programs of this machine.
stage_native() {
    tools/setup.sh test
    build native
    ctest --preset native -j "$(nproc)"
}

# The same under AddressSanitizer and UndefinedBehaviorSanitizer.
stage_sanitize() {
    tools/setup.sh test
    build sanitize
    ctest --preset sanitize -j "$(nproc)"
}

# The Windows programs, through Wine.
stage_windows() {
    if ! tools/setup.sh windows; then
        echo "Left out: the cross compiler or Wine cannot be installed here."
        return
    fi
    trap 'tools/wine.sh --end' EXIT
    tools/wine.sh cmd /c exit >/dev/null &  # makes Wine's directories during the build
    local wine=$!
    build windows
    wait "$wine"
    ctest --preset windows -j "$(nproc)"
}

# The release archives, made from two clones, and the programs in them.
stage_release() {
    if ! tools/setup.sh windows release; then
        echo "Left out: the cross compiler, Wine or osslsigncode cannot be installed here."
        return
    fi
    python3 -B tests/release/release.py
}

# A few seconds of each fuzz target.
stage_fuzz() {
    tools/setup.sh fuzz
    tools/fuzz.sh 3
}

# The sources as read by other programs.
stage_sources() {
    tools/setup.sh test
    tools/check-sources.sh
}

# The form of the sources.
stage_style() {
    tools/setup.sh test
    tools/check-style.sh
}

# Builds a preset. The compiler's output is shown only when it fails.
build() {
    local log=$logs/$1-build.log
    if ! { cmake --preset "$1" && cmake --build --preset "$1" -j "$(nproc)"; } >"$log" 2>&1; then
        cat "$log"
        return 1
    fi
}

for name in "$@"; do
    if [[ " ${stages[*]} " != *" $name "* ]]; then
        echo "test.sh: no stage '$name'; the stages are: ${stages[*]}" >&2
        exit 2
    fi
done

if [ $# -eq 1 ]; then
    "stage_$1"
    echo "== $1: passed in $SECONDS s"
    exit
fi

# Several stages: each is a run of this script. One more than there are cores runs at a time, since the tests of the
# Windows programs and of the roll-out mostly wait.
[ $# -eq 0 ] || stages=("$@")
tools/setup.sh test fuzz windows release || tools/setup.sh test fuzz
declare -A stage_of=() started=() heading=()
failed=()

# Waits for the next stage to end.
reap() {
    local pid status=0
    wait -n -p pid || status=$?
    local name=${stage_of[$pid]}
    unset "stage_of[$pid]"
    local seconds=$((SECONDS - started[$name]))
    if [ $status -eq 0 ]; then
        heading[$name]="== $name: passed in $seconds s"
    else
        heading[$name]="== $name: FAILED after $seconds s"
        failed+=("$name")
    fi
    [ "$name" = "${stages[0]}" ] || show "$name"
}

# Prints a stage's log without what only tells that it is still at work.
show() {
    echo "${heading[$1]}"
    sed -E '/^(==|      Start) /d' "$logs/$1.log"
}

for name in "${stages[@]}"; do
    [ ${#stage_of[@]} -le "$(nproc)" ] || reap
    started[$name]=$SECONDS
    "$0" "$name" </dev/null >"$logs/$name.log" 2>&1 &
    stage_of[$!]=$name
done
while [ ${#stage_of[@]} -gt 0 ]; do
    reap
done

echo "== all: $SECONDS s"
for name in "${stages[@]:1}"; do
    echo "${heading[$name]}"
done
show "${stages[0]}"
if [ ${#failed[@]} -gt 0 ]; then
    echo "FAILED: ${failed[*]}"
    exit 1
fi
