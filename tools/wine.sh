#!/usr/bin/env bash
# Runs a Windows program through Wine in a private prefix below build/, which is made on demand.
# Usage: tools/wine.sh PROGRAM [ARGUMENT ...]    runs it; Wine stays ready for the next one
#        tools/wine.sh --end                     ends Wine
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX="$top/build/wine"
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="mscoree,mshtml="  # offer no runtime or browser for download

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
# Wine stays, since each program would otherwise start all of it again, which takes ten times as long as the program. The
# server and its services keep the streams that they were started with, so they get none that somebody waits for.
if ! wineserver --kill=0 2>/dev/null; then
    wineserver --persistent </dev/null >/dev/null 2>&1
    wine cmd /c exit </dev/null >/dev/null 2>&1
fi
exec wine "$@"
