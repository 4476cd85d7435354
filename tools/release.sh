#!/usr/bin/env bash
# Makes the release archive build/tarnlift-VERSION-windows-x64.zip of the Windows programs. Built twice from one commit
# it has the same bytes: every time in it is that of the commit.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/setup.sh windows
number() { sed -nE "s/^#define TARNLIFT_VERSION_$1 ([0-9]+)$/\1/p" src/settings/program_version.h; }
name="tarnlift-$(number MAJOR).$(number MINOR).$(number RELEASE).$(number BUILD)-windows-x64"
staging=build/release
archive="$PWD/build/$name.zip"

cmake --preset windows >build/release.log
cmake --build --preset windows --target tarnlift winhbcfg mkgrp >>build/release.log
rm -rf "$staging" "$archive"
# The simulated utility has the real one's name, so it lies where nobody takes it for it.
rehearsal="$staging/$name/rehearsal only - simulated adapters"
mkdir -p "$rehearsal"
cp build/windows/bin/tarnlift.exe README.md CHANGELOG.md "$staging/$name/"
git archive HEAD docs share deploy/ansible | tar -x -C "$staging/$name"
cp build/windows/bin/winhbcfg.exe build/windows/bin/mkgrp.exe simulator/adapters.sample.txt "$rehearsal/"
# Text for an editor of the system that it is for.
find "$staging" -regextype posix-extended -regex '.*\.(txt|md|cmd|ps1)' -exec sed -i 's/\r\?$/\r/' {} +

find "$staging" -exec touch -d "@$(git log -1 --format=%ct)" {} +
(cd "$staging" && find "$name" -type f | LC_ALL=C sort | TZ=UTC zip -q -X -9 "$archive" -@)
sha256sum "build/$name.zip"
