#!/usr/bin/env bash
# Rehearses the roll-out on simulated servers: the role's own tasks, with stand-ins for the modules of Windows.
# Usage: run.sh [--hosts N] [BIN-DIRECTORY [DIRECTORY]]
# Default: the programs that were built in the repository, or those of the unpacked archive; build/rehearsal there.
#
# Steps: a misspelled variable; check mode; the preview, which is the default; the update in batches, during which one
# connection is lost; a second update; a controller that is killed during a download, and the play that follows; a batch
# that stops the rest. With --hosts N: preview and update of N servers, with their times.
#
# DIRECTORY is made from scratch. Each step leaves in it STEP.log and STEP.ended: for each server changed, ok or failed,
# and the state by its reports.
# calls.txt names what the adapter utilities were asked to write or reboot, by step.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
many=0
if [ "${1:-}" = --hosts ]; then
    many=${2:?how many?}
    shift 2
fi
if [[ ${1:-} == -* ]]; then
    echo "Usage: run.sh [--hosts N] [BIN-DIRECTORY [DIRECTORY]]" >&2
    exit 2
fi
top=$(realpath "$here/../../..")
bin=$top/build/native/bin
sample=$top/simulator/adapters.sample.txt
if [ ! -e "$sample" ]; then
    bin="$top/rehearsal only - simulated adapters"
    sample=$bin/adapters.sample.txt
fi
bin=$(realpath "${1:-$bin}")
tarnfleet=$bin/tarnfleet
[ -e "$tarnfleet" ] || tarnfleet=$top/tarnfleet
directory=$(realpath -m "${2:-$top/build/rehearsal}")
. "$here/servers.sh"

# A step: its name, and what else the play is told. Servers may fail, the play must run.
step() {
    local name=$1 code=0
    shift
    echo "== $name"
    ansible-playbook "${told[@]}" "$@" >"$directory/$name.log" 2>&1 || code=$?
    awk '/ : ok=/ { print $1, (/ (failed|unreachable)=[1-9]/ ? "failed" : /changed=0/ ? "ok" : "changed") }' \
        "$directory/$name.log" | while read -r server outcome; do
        echo "$server $outcome $(state_of "$server")"
    done | tee "$directory/$name.ended"
    note_calls "$name"
    if [ $((code & ~6)) -ne 0 ]; then  # neither failed nor unreachable servers
        cat "$directory/$name.log"
        exit "$code"
    fi
}

# The state of a server by what the play kept of it, or "none".
state_of() {
    local kept=$directory/reports/$1
    local files=("$kept.xml")
    [ -e "$kept.xml" ] || { echo none && return; }
    [ ! -e "$kept.query.xml" ] || files+=("$kept.query.xml")
    [ ! -e "$kept.rebooted" ] || files+=(--rebooted)
    [ ! -e "$kept.code" ] || files+=(--code "$(cat "$kept.code")")
    { "$tarnfleet" check "${files[@]}" || true; } | sed 's/^{"state":"\([^"]*\)".*/\1/'
}

note_calls() {
    {
        echo "== $1"
        (cd "$directory/servers" && grep -sv '^listattr' -- */Tarnlift/calls.txt | sed 's|/Tarnlift/calls.txt:| |') || true
    } >>"$directory/calls.txt"
    find "$directory/servers" -name calls.txt -delete
}

# The play runs in a session of its own. All of it is killed as soon as the server downloads.
kill_during_download() {
    local server=$1 session
    echo "== killed"
    setsid ansible-playbook "${told[@]}" "${write[@]}" --limit "$server" >"$directory/killed.log" 2>&1 &
    session=$!
    until grep -q '^download' "$directory/servers/$server/Tarnlift/calls.txt" 2>/dev/null; do
        kill -0 "$session"
        sleep 0.1
    done
    kill -KILL -- "-$session"
    ls "$directory/servers/$server/Tarnlift/run" >"$directory/killed.left"
}

export ANSIBLE_CONFIG=$here/ansible.cfg LC_ALL=C.UTF-8 PYTHONDONTWRITEBYTECODE=1
if [ -e "$directory" ] && [ ! -d "$directory/servers" ]; then
    echo "$directory holds something else than a rehearsal." >&2
    exit 2
fi
rm -rf "$directory"
mkdir -p "$directory/servers"
set_up_firmware_set
told=(-i "$here/hosts.yml" "$here/../update-firmware.yml" -e "rehearsal='$directory'"
    -e "tarnlift_results='$directory'" -e "tarnlift_tarnfleet='$tarnfleet'")
write=(-e tarnlift_apply=true)
if [ "$many" -gt 0 ]; then
    set_up_many "$many"
    told[1]=$directory/hosts.yml
    time step preview -e tarnlift_batches=100% >/dev/null
    time step update "${write[@]}" -e tarnlift_max_fail_percentage=50 >/dev/null
else
    set_up_servers
    step misspelled -e tarnlift_aply=true --limit canary,current
    step preview -e tarnlift_batches=100% --limit canary,current,no-adapters,node1,unlisted,killed,cut-off
    step check "${write[@]}" --check --limit canary,current
    touch "$directory/servers/killed/down"
    step update "${write[@]}" -e tarnlift_batches=8 -e tarnlift_max_fail_percentage=100 \
        -e tarnlift_reboot_throttle=1 --limit 'tarnlift:!killed'
    step again "${write[@]}" -e tarnlift_batches=100% --limit canary,two-boards,refuses
    rm "$directory/servers/killed/down"
    kill_during_download killed
    step resumed "${write[@]}" --limit killed
    step stop "${write[@]}" -e tarnlift_batches=2 --limit canary,refuses,auto
fi
sed -n '/PLAY RECAP/,$p' "$directory/update.log" | grep -v -e ' : ok=' -e RECAP
