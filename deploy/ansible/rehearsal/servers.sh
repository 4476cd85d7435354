# The simulated servers of the rehearsal; run.sh reads this file. A server NAME is the directory servers/NAME/Tarnlift.

old=14.2.100.5
new=14.4.473.14
refusal='exit=92 reply="Error: not on this board"'
boards=10

# Begins a server. The boards that follow are its own.
server() {
    name=$1
    mkdir -p "$directory/servers/$name/Tarnlift"
    adapters=$directory/servers/$name/Tarnlift/adapters.txt
    printf '@calls calls.txt\n' >"$adapters"
}

# A board with two ports: model, PCI device ID, version, and how its downloads end.
board() {
    local port place
    boards=$((boards + 1))
    place=$(printf '%02x:%02x' $((boards / 256)) $((boards % 256)))
    for port in 1 2; do
        {
            echo
            sed -n '/^HBA: 1$/,/^$/p' "$sample" | sed -e '/^@download/d' -e '/^$/d' -e "s/QVa5104/$1/" \
                -e "s/^\(HBA\): .*/\1: $((boards * 2 + port))/" \
                -e "s/^\(Port WWN\): .*/\1: 10:00:aa:bb:00:$place:0$port/" \
                -e "s/^\(PCI Bus Number\): .*/\1: $((boards % 99))/" \
                -e "s/^\(PCI Fun Number\): .*/\1: $((port - 1))/" \
                -e "s/^\(Device ID\): .*/\1: $2/" \
                -e "s/^\(Serial Number\): .*/\1: B$boards/" \
                -e "s/^\(FW Version\): .*/\1: $3/"
        } >>"$adapters"
        if [ "$port" -eq 1 ] && [ -n "${4:-}" ]; then
            printf '@download %s\n' "$4" "$4" "$4" "$4" "$4" >>"$adapters"
        fi
    done
}

set_up_servers() {
    server canary
    board QVa5104 E300 $old
    server current
    board QVa5104 E300 $new
    server refuses
    board QVa5104 E300 $old "$refusal"
    server old-system
    board QVa5104 E300 $old
    mkdir "$directory/servers/old-system/Tarnlift/host"
    echo 6 >"$directory/servers/old-system/Tarnlift/host/os-version"
    server lost
    board QVa5104 E300 $old
    touch "$directory/servers/lost/lose-connection"
    server node1
    board QVa5104 E300 $old exit=80
    server node2
    board QVa5104 E300 $old exit=80
    server two-boards
    board QVa5104 E300 $old exit=80
    board QVa6102 F400 $old
    server half
    board QVa5104 E300 $old exit=80
    board QVa6102 F400 $old "$refusal"
    server auto
    board QVa6102 F400 $old
    mkdir "$directory/servers/auto/Tarnlift/firmware"
    "$bin/mkgrp" --family 65 --version 14.9.999.9 "$directory/servers/auto/Tarnlift/firmware/forgotten.grp.old"
    server liar
    board QVa5104 E300 $old lie
    server twin
    board QVa5104 E300 $old
    server waits
    board QVa5104 E300 $old exit=80
    server no-adapters
    server unlisted
    board QVa7100 F500 $old
    server intruder
    board QVa5104 E300 $old
    touch "$directory/servers/intruder/Tarnlift/version.dll"
    # The server was restarted at the start of an update: no output, and no return code.
    server cut-off
    board QVa5104 E300 $old
    mkdir "$directory/servers/cut-off/Tarnlift/run"
    touch "$directory/servers/cut-off/protected"
    server gone
    touch "$directory/servers/gone/down"
    server killed
    board QVa5104 E300 $old delay=6000
}

# Servers for a rehearsal of many, and their inventory: each needs an update, every fifth then waits for a reboot, and
# every tenth refuses. Each reboots if it waits, and each has the next one as its partner.
set_up_many() {
    local number
    sed -n '/^  vars:/,$p' "$here/hosts.yml" | sed '1i tarnlift:' >"$directory/hosts.yml"
    printf '    tarnlift_reboot: true\n  hosts:\n' >>"$directory/hosts.yml"
    for number in $(seq "$1"); do
        server "server$number"
        echo "    server$number: {tarnlift_partners: pair$((number / 2))}" >>"$directory/hosts.yml"
        case $number in
        *0) board QVa5104 E300 $old "$refusal" ;;
        *5) board QVa5104 E300 $old exit=80 ;;
        *) board QVa5104 E300 $old ;;
        esac
    done
}

set_up_firmware_set() {
    local set=$directory/firmware-set
    mkdir -p "$set/firmware"
    cp "$bin/tarnlift.exe" "$bin/winhbcfg.exe" "$set/"
    "$bin/mkgrp" --family 64 --version $new "$set/firmware/a5104.grp"
    "$bin/mkgrp" --family 65 --version $new "$set/firmware/a6102.grp"
    printf '%s\n' 'QVa5104 a5104.grp' 'QVa6102 a6102.grp' >"$set/fwmatrix.txt"
}
