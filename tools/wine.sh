#!/usr/bin/env bash
# Runs a Windows program through Wine in a private prefix, which the build folder holds and which is made on demand.
# Usage: tools/wine.sh PROGRAM [ARGUMENT ...]
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX="$top/build/wine"
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="mscoree,mshtml="        # no runtime or browser to be offered for download
if [ ! -d "$WINEPREFIX" ]; then
    mkdir -p "$top/build"
    wineboot --init >/dev/null 2>&1
    wine winecfg -v win10 >/dev/null 2>&1
    wineserver --wait
fi
exec wine "$@"
