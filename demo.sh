#!/usr/bin/env bash
# Shows the operator's way on a demo machine in build/demo/: simulated adapters, real program.
#   ./demo.sh              sets the machine up anew and walks through it
#   ./demo.sh /q /xml      runs the program once on the machine as it is, with these switches
set -euo pipefail
cd "$(dirname "$0")"

tools/setup.sh build
mkdir -p build
{
    cmake --preset native
    cmake --build --preset native --target tarnlift winhbcfg mkgrp
} >build/demo-build.log 2>&1 || { cat build/demo-build.log; exit 1; }

bin=$PWD/build/native/bin
machine=$PWD/build/demo

# Puts the program, the simulated utility, its adapters, the table and the firmware files in place.
set_up_machine() {
    rm -rf "$machine"
    mkdir -p "$machine/firmware" "$machine/temp"
    cp "$bin/tarnlift.exe" "$bin/winhbcfg.exe" "$machine/"
    cp simulator/adapters.sample.txt "$machine/adapters.txt"
    make_image() { "$bin/mkgrp" --family "$1" --version "$2" "$machine/firmware/$3"; }
    make_image 64 14.2.100.5 a5104-14.2.100.5.grp
    make_image 64 14.4.473.14 a5104-14.4.473.14.grp
    make_image 65 14.0.210.3 a6102-14.0.210.3.grp
    make_image 65 14.4.473.14 a6102-14.4.473.14.grp
    make_image 66 14.2.300.7 a7100-14.2.300.7.grp
    make_image 66 14.4.188.1 a7100-14.4.188.1.grp
    make_image 66 14.4.473.14 a7100-14.4.473.14.grp
    cat >"$machine/fwmatrix.txt" <<'TABLE'
/ model   firmware file
QVa5104   a5104-14.4.473.14.grp
QVa6102   a6102-14.4.473.14.grp
QVa7100   a7100-14.4.473.14.grp
QVa7102   a7100-14.4.473.14.grp
TABLE
}

# Runs the program on the machine and returns its return code. TEMP is short and has no blank.
run() {
    (cd "$machine" && TARNLIFT_HOST=host TEMP=temp ./tarnlift.exe "$@")
}

# Scripts how the next download for the first port of a model ends.
script_download() {
    sed -i "0,/^@model $1\$/s//&\n@download $2/" "$machine/adapters.txt"
}

show() {
    local code=0
    printf '\n> tarnlift.exe%s\n' "$(printf ' %s' "$@")"
    run "$@" || code=$?
    printf '[return code %d]\n' "$code"
}

say() {
    printf '\n=== %s\n' "$*"
}

if [ $# -gt 0 ]; then
    [ -d "$machine" ] || set_up_machine
    run "$@"
    exit
fi

set_up_machine
say "The table of models and firmware files, fwmatrix.txt"
cat "$machine/fwmatrix.txt"

say "What is installed?"
show /q
say "What would an update do? Nothing is written."
show /p /update
say "Update, with the ports' rows and the progress. One download serves all ports of a board."
show /q /v /update
say "What is installed now? The first board waits for a reboot."
show /q
say "A second update finds nothing to do."
show /update
say "The same for a script."
show /update /xml

say "Without the table: /auto takes the images of the firmware directory, the highest of each family."
say "One version down. The board with the newer ASIC revision takes nothing older than 14.4.188.1 ..."
show /auto /downgrade
say "... and refuses to go further down, whatever lies in the directory."
show /auto /downgrade /q
say "Up to the highest again. The two-port board lies: it reports success, and nothing has changed."
script_download QVa6102 "lie"
show /auto /update
say "The next query shows what really happened ..."
show /q
say "... and the next update does what is left."
show /auto /update
say "Force the highest, although it is installed."
show /auto /ff
say "Which version is in a file?"
show "/iv=firmware\\a7100-14.4.188.1.grp"

say "The utility can fail, too: the four-port board refuses its next download."
script_download QVa5104 'exit=92 reply="Error: not on this board"'
show /ff
