#!/usr/bin/env bash
# Makes a release of the commit HEAD in build/release/:
#
#   tarnlift-VERSION-windows-x64.zip      the programs for Windows, the tools to rehearse with, and the documents
#   tarnfleet-VERSION-linux-x86_64.tar.gz tarnfleet for a Linux controller, with what its plans need, and the documents
#   ARCHIVE.cdx.json                      for each archive what is linked into its programs (CycloneDX)
#   SHA256SUMS                            the checksums of all of them
#
# One commit gives the same bytes each time, in every directory, for every user, umask, time zone and locale, as long as
# the compilers are the same.
#
# Usage: tools/release.sh [--sign OPTION ...]
#   --sign  also makes tarnlift-VERSION-windows-x64-signed.zip, its programs signed by `osslsigncode sign OPTION ...`;
#           for example: --sign -certs company.pem -key company.key -ts URL-OF-A-TIME-STAMP-SERVER
set -euo pipefail
cd "$(dirname "$0")/.."

sign_options=()
case "${1:-}" in
--sign)
    shift
    [ $# -gt 0 ] || { echo "release.sh: --sign needs the options of osslsigncode" >&2; exit 2; }
    # The build runs in another directory, so files are named by their whole paths from here on.
    for option in "$@"; do
        if [ -f "$option" ]; then option=$(realpath "$option"); fi
        sign_options+=("$option")
    done
    ;;
"") ;;
*)
    echo "release.sh: unknown argument '$1'. Usage: tools/release.sh [--sign OPTION ...]" >&2
    exit 2
    ;;
esac

changes=$(git status --porcelain)
if [ -n "$changes" ]; then
    printf 'release.sh: only what HEAD holds can be released. Commit or remove these first:\n%s\n' "$changes" >&2
    exit 1
fi
tools/setup.sh windows release

# Nothing of the caller's surroundings gets into the archives.
unset CFLAGS CXXFLAGS CPPFLAGS LDFLAGS RCFLAGS ZIPOPT GZIP TAR_OPTIONS
export LC_ALL=C TZ=UTC
umask 022
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH

release=$PWD/build/release
source=$release/source
windows_programs=$source/build/windows/bin
linux_programs=$source/build/native/bin
rehearsal="rehearsal only - simulated adapters"
rm -rf "$release"
mkdir -p "$source"
git archive HEAD | tar -x -C "$source"
number() { sed -nE "s/^#define TARNLIFT_VERSION_$1 ([0-9]+)$/\1/p" "$source/src/settings/program_version.h"; }
version="$(number MAJOR).$(number MINOR).$(number RELEASE).$(number BUILD)"

# Builds the programs from the exported sources. The linker leaves a map of each, for the bill of materials.
build() {
    local preset=$1
    (
        cd "$source" &&
            cmake --preset "$preset" -DBUILD_TESTING=OFF -DCMAKE_EXE_LINKER_FLAGS=-Wl,-Map=%.map &&
            cmake --build --preset "$preset" --target tarnlift winhbcfg mkgrp tarnfleet
    ) >"$release/build-$preset.log" 2>&1 || { cat "$release/build-$preset.log" >&2; exit 1; }
}

# Puts the documents and examples of an archive into its directory.
add_documents() {
    local directory=$1 readme=$2
    mkdir -p "$directory/$rehearsal"
    sed "s/@VERSION@/$version/g" "$source/tools/release/$readme" >"$directory/README.txt"
    (cd "$source" && cp -r --parents CHANGELOG.md docs share deploy/ansible "$directory/")
    rm "$directory/docs/architecture.md" "$directory/deploy/ansible/.gitignore"
    cp "$source/simulator/adapters.sample.txt" "$directory/$rehearsal/"
}

# Equal rights and times for all files, whatever the file system made of them.
make_equal() {
    find "$1" -type d -exec chmod 755 {} + -o -perm /100 -exec chmod 755 {} + -o -exec chmod 644 {} +
    find "$1" -exec touch --no-dereference -d "@$SOURCE_DATE_EPOCH" {} +
}

# Packs an archive's directory of this name.
make_windows_zip() {
    local name=$1
    make_equal "$release/$name"
    (cd "$release" && find "$name" -type f | sort | zip -q -X -9 "$name.zip" -@)
    tools/release/sbom.py document "$windows_programs" "$release/$name" "$version" >"$release/$name.cdx.json"
}

build windows
build native
windows=tarnlift-$version-windows-x64
linux=tarnfleet-$version-linux-$(uname -m)

add_documents "$release/$windows" readme-windows.txt
cp "$windows_programs/tarnlift.exe" "$windows_programs/tarnfleet.exe" "$release/$windows/"
cp "$windows_programs/winhbcfg.exe" "$windows_programs/mkgrp.exe" "$release/$windows/$rehearsal/"
tools/release/sbom.py licenses "$windows_programs" "$release/$windows"
# Text with the line ends of the system that it is for. The role's files are for its Linux controller.
find "$release/$windows" -name ansible -prune -o -regextype posix-extended -regex '.*\.(txt|md|cmd)' \
    -exec sed -i 's/\r\?$/\r/' {} +
make_windows_zip "$windows"

add_documents "$release/$linux" readme-linux.txt
cp "$linux_programs/tarnfleet" "$release/$linux/"
# Not beside tarnfleet: nobody should take this tarnlift.exe for the program for Windows.
cp "$linux_programs"/{tarnlift.exe,winhbcfg.exe,mkgrp} "$release/$linux/$rehearsal/"
strip "$release/$linux/tarnfleet" "$release/$linux/$rehearsal"/{tarnlift.exe,winhbcfg.exe,mkgrp}
tools/release/sbom.py licenses "$linux_programs" "$release/$linux"
make_equal "$release/$linux"
(cd "$release" && tar --sort=name --owner=0 --group=0 --numeric-owner --format=ustar -cf - "$linux" | gzip -n -9) \
    >"$release/$linux.tar.gz"
tools/release/sbom.py document "$linux_programs" "$release/$linux" "$version" >"$release/$linux.cdx.json"

if [ ${#sign_options[@]} -gt 0 ]; then
    signed=$windows-signed
    cp -r "$release/$windows" "$release/$signed"
    find "$release/$windows" -name '*.exe' | while read -r program; do
        target=$release/$signed${program#"$release/$windows"}
        rm "$target"
        osslsigncode sign "${sign_options[@]}" -h sha256 -n Tarnlift -in "$program" -out "$target" >/dev/null
    done
    make_windows_zip "$signed"
fi

cd "$release"
sha256sum ./*.zip ./*.tar.gz ./*.cdx.json | sed 's|\./||' >SHA256SUMS
cat SHA256SUMS
