#!/usr/bin/env bash
# Runs a Windows program through Wine in a private prefix, which the build folder holds and which is made on demand.
# Usage: tools/wine.sh PROGRAM [ARGUMENT ...]    runs it; Wine stays ready for the next one
#        tools/wine.sh --end                     ends Wine
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX="$top/build/wine"
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="mscoree,mshtml="  # no runtime or browser to be offered for download

if [ "$1" = --end ]; then
    wineserver --kill || true
    exit 0
fi
if [ ! -e "$WINEPREFIX/ready" ]; then
    rm -rf "$WINEPREFIX"
    mkdir -p "$WINEPREFIX"
    wineboot --init >/dev/null 2>&1
    wine winecfg -v win10 >/dev/null 2>&1
    wineserver --wait
    touch "$WINEPREFIX/ready"
fi
# Without it each program would start the whole of Wine anew, which takes ten times as long as the program.
wineserver --persistent 2>/dev/null || true
exec wine "$@"
