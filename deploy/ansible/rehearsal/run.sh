#!/usr/bin/env bash
# Rehearses the roll-out on twelve simulated servers: preview, check mode, update, a second update, and a batch that
# stops the rest. Needs ansible-core and xsltproc.
# Usage: run.sh [BIN-DIRECTORY [DIRECTORY]]      default: build/native/bin and build/rehearsal
# DIRECTORY is made anew. Each step leaves STEP.log, STEP.ended (changed, ok or failed for each server) and STEP.calls
# (what the adapter utilities were asked so far); the update leaves reports/, fleet.xml and fleet.html, the other steps
# leave them in STEP/.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
bin=$(realpath "${1:-$here/../../../build/native/bin}")
directory=$(realpath -m "${2:-$here/../../../build/rehearsal}")
sample=$here/../../../simulator/adapters.sample.txt
old=14.2.100.5
new=14.4.473.14

server() {
    name=$1
    mkdir -p "$directory/servers/$name"
    adapters=$directory/servers/$name/adapters.txt
    printf '@calls calls.txt\n' >"$adapters"
}

# A board with two ports: model, PCI device ID, version, and how each of its downloads ends.
board() {
    local port
    boards=$((boards + 1))
    for port in 1 2; do
        {
            echo
            sed -n '/^HBA: 1$/,/^$/p' "$sample" | sed -e '/^@download/d' -e '/^$/d' -e "s/QVa5104/$1/" \
                -e "s/^\(HBA\): .*/\1: $((boards * 2 + port))/" \
                -e "s/^\(Port WWN\): .*/\1: 10:00:aa:bb:00:00:$boards:0$port/" \
                -e "s/^\(PCI Bus Number\): .*/\1: $boards/" \
                -e "s/^\(PCI Fun Number\): .*/\1: $((port - 1))/" \
                -e "s/^\(Device ID\): .*/\1: $2/" \
                -e "s/^\(Serial Number\): .*/\1: B$boards/" \
                -e "s/^\(FW Version\): .*/\1: $3/"
        } >>"$adapters"
        if [ "$port" -eq 1 ] && [ -n "${4:-}" ]; then
            printf '@download %s\n' "$4" "$4" "$4" "$4" >>"$adapters"
        fi
    done
}

set_up_servers() {
    boards=10
    local refusal='exit=92 reply="Error: not on this board"'
    server canary
    board QVa5104 E300 $old exit=96
    server current
    board QVa5104 E300 $new
    server refuses
    board QVa5104 E300 $old "$refusal"
    server old-system
    board QVa5104 E300 $old
    mkdir "$directory/servers/old-system/host"
    echo 6 >"$directory/servers/old-system/host/os-version"
    server reboot
    board QVa5104 E300 $old exit=80
    server waits
    board QVa5104 E300 $old exit=80
    server two-boards
    board QVa5104 E300 $old exit=80
    board QVa6102 F400 $old exit=96
    server half
    board QVa5104 E300 $old exit=80
    board QVa6102 F400 $old "$refusal"
    server auto
    board QVa6102 F400 $old exit=96
    server liar
    board QVa5104 E300 $old lie
    server twice
    board QVa5104 E300 $old exit=87
    server no-adapters
    # A forgotten file that /auto would take.
    mkdir "$directory/servers/auto/firmware"
    "$bin/mkgrp" --family 65 --version 14.9.999.9 "$directory/servers/auto/firmware/forgotten.grp.old"
}

set_up_firmware_set() {
    local set=$directory/firmware-set
    mkdir -p "$set/firmware" "$set/temp"
    cp "$bin/tarnlift.exe" "$bin/winhbcfg.exe" "$set/"
    "$bin/mkgrp" --family 64 --version $new "$set/firmware/a5104.grp"
    "$bin/mkgrp" --family 65 --version $new "$set/firmware/a6102.grp"
    printf '%s\n' 'QVa5104 a5104.grp' 'QVa6102 a6102.grp' >"$set/fwmatrix.txt"
    tar -C "$set" -cf "$set.tar" .
}

# A step: its name, the directory of its results, and what else the play is told. Servers may fail, the play must run.
step() {
    local name=$1 results=$2 code=0
    shift 2
    echo "== $name"
    ansible-playbook -i "$here/hosts.yml" "$here/../update-firmware.yml" -e "rehearsal=$directory" \
        -e "tarnlift_results=$results" "$@" >"$directory/$name.log" 2>&1 || code=$?
    (cd "$directory/servers" && grep -H . -- */calls.txt >"../$name.calls") || true
    awk '/ : ok=/ { print $1, (/ (failed|unreachable)=[1-9]/ ? "failed" : /changed=0/ ? "ok" : "changed") }' \
        "$directory/$name.log" | tee "$directory/$name.ended"
    if [ "$code" -ne 0 ] && [ "$code" -ne 2 ]; then
        cat "$directory/$name.log"
        exit "$code"
    fi
}

export ANSIBLE_CONFIG=$here/ansible.cfg LC_ALL=C.UTF-8 PYTHONDONTWRITEBYTECODE=1
if [ -e "$directory" ] && [ ! -d "$directory/servers" ]; then
    echo "$directory holds something else than a rehearsal." >&2
    exit 2
fi
rm -rf "$directory"
mkdir -p "$directory/servers"
set_up_servers
set_up_firmware_set
by_four=(-e tarnlift_batches=4 -e tarnlift_max_fail_percentage=50)
step preview "$directory/preview" "${by_four[@]}" -e tarnlift_preview_only=true
step check "$directory/check" "${by_four[@]}" --check --limit canary:current
step update "$directory" "${by_four[@]}"
step again "$directory/again" "${by_four[@]}"
step limit "$directory/limit" -e tarnlift_batches=2 --limit canary:refuses:reboot:auto
echo "The page of the update: $directory/fleet.html"
