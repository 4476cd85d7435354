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
    wineboot --init </dev/null >/dev/null 2>&1
    wine winecfg -v win10 >/dev/null 2>&1
    wineserver --wait
    touch "$WINEPREFIX/ready"
fi
# Wine stays, since each program would otherwise start the whole of it anew, which takes ten times as long as the program.
# Its services keep the streams of whoever starts them, so that is not to be a program whose output somebody reads.
if ! wineserver --kill=0 2>/dev/null; then
    wineserver --persistent
    wine cmd /c exit </dev/null >/dev/null 2>&1
fi
exec wine "$@"
