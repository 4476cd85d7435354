#!/usr/bin/env bash
# Shows the work of an operator on simulated adapters in build/demo/, with the real programs: one server, then a fleet.
#   ./demo.sh              sets everything up from scratch and walks through it
#   ./demo.sh /q /xml      runs tarnlift.exe once on the demo server as it is, with these switches
# TARNLIFT_BIN and TARNLIFT_DEMO name other programs than those of the native build, and another directory.
set -euo pipefail
cd "$(dirname "$0")"

demo=$(realpath -m "${TARNLIFT_DEMO:-build/demo}")
machine=$demo/server
fleet=$demo/fleet
bin=$(realpath -m "${TARNLIFT_BIN:-build/native/bin}")

build() {
    tools/setup.sh build
    mkdir -p build
    [ -x "$bin/tarnfleet" ] || echo "Building the programs. That takes a minute or two; the log is build/demo-build.log."
    {
        cmake --preset native
        cmake --build --preset native --target tarnlift winhbcfg mkgrp tarnfleet
    } >build/demo-build.log 2>&1 || { cat build/demo-build.log; exit 1; }
}

make_image() {
    "$bin/mkgrp" --family "$1" --version "$2" "$machine/firmware/$3-$2.grp"
}

# Puts the program, the simulated utility, its adapters, the table and the firmware files in place.
set_up_machine() {
    rm -rf "$machine" "$fleet"
    mkdir -p "$machine/firmware" "$machine/temp"
    cp "$bin/tarnlift.exe" "$bin/winhbcfg.exe" "$machine/"
    cp simulator/adapters.sample.txt "$machine/adapters.txt"
    cp share/fwmatrix.sample.txt "$machine/fwmatrix.txt"
    make_image 64 14.2.100.5 a5104
    make_image 64 14.4.473.14 a5104
    make_image 65 14.0.210.3 a6102
    make_image 65 14.4.473.14 a6102
    make_image 66 14.2.300.7 a7100
    make_image 66 14.4.188.1 a7100
    make_image 66 14.4.473.14 a7100
}

# Runs the program on the demo server. TEMP is short and has no blank.
run() {
    (cd "$machine" && TARNLIFT_HOST=host TEMP=temp ./tarnlift.exe "$@")
}

# Scripts the result of the next download to the first port of a model.
script_download() {
    sed -i "0,/^@model $1\$/s//&\n@download $2/" "$machine/adapters.txt"
}

bold=''
plain=''
if [ -t 1 ] && [ -z "${NO_COLOR:-}" ]; then
    bold=$'\e[1m'
    plain=$'\e[0m'
fi

say() {
    printf '\n%s=== %s%s\n' "$bold" "$*" "$plain"
}

# Prints the first and the last lines of its input, without blank lines at its ends.
shorten() {
    awk -v first="$1" -v last="$2" '
        NF { end = NR; if (!start) start = NR }
        { line[NR] = $0 }
        END {
            hidden = end - start + 1 - first - last
            for (i = start; i <= end; i++) {
                if (hidden > 1 && i == start + first) {
                    printf "[... %d more lines ...]\n", hidden
                    i += hidden
                }
                if (i <= end) print line[i]
            }
        }'
}

# Runs the program on the demo server and shows the first and last lines of its output: show FIRST LAST SWITCH ...
show() {
    local first=$1 last=$2 code=0
    shift 2
    printf '\n> tarnlift.exe%s\n' "$(printf ' %s' "$@")"
    run "$@" >"$demo/output" || code=$?
    shorten "$first" "$last" <"$demo/output"
    printf '[return code %d]\n' "$code"
}

# The same, but shows only the lines with a text: show_lines TEXT SWITCH ...
show_lines() {
    local text=$1 code=0
    shift
    printf '\n> tarnlift.exe%s\n' "$(printf ' %s' "$@")"
    run "$@" >"$demo/output" || code=$?
    grep -F "$text" "$demo/output"
    printf '[return code %d]\n' "$code"
}

show_one_server() {
    say "The table says which firmware file is for which model: fwmatrix.txt"
    grep -v '^/' "$machine/fwmatrix.txt"
    say "What is installed?"
    show 2 1 /q
    say "What would an update do? Nothing is written."
    show 3 1 /p /update
    say "Update. One download serves all ports of a board."
    show 3 3 /update
    say "What is installed now? The first board waits for a reboot."
    show 1 1 /q
    say "A second update finds nothing to do. For a script the report is XML."
    show 8 3 /update /xml
}

show_without_the_table() {
    say "Without the table: /auto chooses from the files of the firmware directory. One version down:"
    show_lines "Image=a7100" /auto /downgrade
    say "QVa7100 has the newer ASIC revision. It gets nothing older than 14.4.188.1, although there is an older file."
    show_lines "HBA=QVa7100" /auto /downgrade /q
    say "Up to the highest again. The two-port board lies: it reports success and changes nothing."
    script_download QVa6102 "lie"
    show_lines "Image=a6102" /auto /update
    say "The next query shows what is really installed ..."
    show_lines "HBA=QVa6102" /q
    say "... and the next update does what is left."
    show 3 1 /auto /update
    say "Force the highest, although it is installed."
    show 3 1 /auto /ff
    say "Which version is in a file?"
    show 1 0 "/iv=firmware\\a7100-14.4.473.14.grp"
    say "The utility can fail, too: the four-port board refuses its next download."
    script_download QVa5104 'exit=92 reply="Error: not on this board"'
    show 3 1 /ff
}

# Makes a server of the fleet from blocks of the sample: make_server NAME "BLOCK ..."
make_server() {
    local server=$fleet/servers/$1 number
    mkdir -p "$server/temp" "$fleet/listings"
    cp -r "$bin/tarnlift.exe" "$bin/winhbcfg.exe" "$machine/fwmatrix.txt" "$machine/firmware" "$server/"
    for number in $2; do
        awk -v RS= -v ORS='\n\n' -v number="$number" '$0 ~ "(^|\n)HBA: " number "\n"' simulator/adapters.sample.txt
    done >"$server/adapters.txt"
    "$server/winhbcfg.exe" listattr /c >"$fleet/listings/$1.txt"
}

# Scripts the result of the next download on a server of the fleet, whatever the sample says.
script_server() {
    sed -i -e '/^@download/d' -e "s/^@model .*/&\n@download $2/" "$fleet/servers/$1/adapters.txt"
}

set_up_fleet() {
    make_server app01 "5 6"
    make_server app02 "8 9 10"
    make_server db01 "5 6 10"
    make_server db02 "1 2 3 4"
    make_server web01 "8 9"
    make_server web02 "7"
    mkdir "$fleet/rollout"
    cp -r "$machine/fwmatrix.txt" "$machine/firmware" "$fleet/rollout/"
    script_server app01 "lie"
    script_server app02 'exit=92 reply="Error: not on this board"'
    printf '%s\n' app01 app02 db01 db02 db03 web01 web02 >"$fleet/servers.txt"
}

# Updates a server of the fleet and queries it, and leaves what tarnfleet reads.
roll_out_to() {
    local reports=$fleet/reports code=0
    mkdir -p "$reports"
    cd "$fleet/servers/$1"
    export TARNLIFT_HOST=host TEMP=temp
    ./tarnlift.exe /update /xml >"$reports/$1.xml" || code=$?
    echo "$code" >"$reports/$1.code"
    ./tarnlift.exe /q /xml >"$reports/$1.query.xml"
}

# Runs tarnfleet. A return code other than 0 is its answer, not a fault of the demo.
tarnfleet() {
    local code=0
    printf '\n> tarnfleet%s\n' "$(printf ' %s' "$@")"
    (cd "$fleet" && "$bin/tarnfleet" "$@") || code=$?
    printf '[return code %d]\n' "$code"
}

show_a_fleet() {
    local server
    set_up_fleet
    say "Many servers. What would an update of the fleet do? A saved listing of each server is enough."
    tarnfleet plan listings -o plan -- /update /fmd=rollout /id=rollout
    tarnfleet status plan
    say "The roll-out. app01 lies, app02 refuses, db03 never reports."
    for server in "$fleet"/servers/*; do
        (roll_out_to "${server##*/}")
    done
    say "How did it go? The worst is on top."
    tarnfleet status reports --servers servers.txt
    say "The same as a page for a browser."
    tarnfleet page reports --servers servers.txt -o fleet.html
    echo "The page is $fleet/fleet.html"
}

show_what_to_try_next() {
    say "Try next"
    cat <<END
./demo.sh /q /v                     the demo server, with any switches of tarnlift.exe
build/demo/server/adapters.txt      edit its adapters; build/demo/server/winhbcfg.exe /? explains the lines
build/demo/fleet/fleet.html         open it in a browser
docs/operator-guide.md              read how to go from the first query to the roll-out on many servers
END
}

[ -n "${TARNLIFT_BIN:-}" ] || build
if [ $# -gt 0 ]; then
    [ -d "$machine" ] || set_up_machine
    run "$@"
    exit
fi
set_up_machine
show_one_server
show_without_the_table
show_a_fleet
show_what_to_try_next
