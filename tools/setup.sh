#!/usr/bin/env bash
# Installs what is missing to build, test and show the program on a Debian machine.
# Usage: tools/setup.sh build|test
set -euo pipefail

# A command or file that tells that a package is there, and the package.
needed=(
    "g++ g++"
    "cmake cmake"
    "ninja ninja-build"
)
if [ "${1:-build}" = test ]; then
    needed+=(
        "/usr/include/gtest/gtest.h libgtest-dev"
        "xmllint libxml2-utils"
        "python3 python3-minimal"
        "clang-format clang-format"
        "clang-tidy clang-tidy"
    )
fi

missing=()
for row in "${needed[@]}"; do
    read -r sign package <<<"$row"
    if ! command -v "$sign" >/dev/null && ! [ -e "$sign" ]; then
        missing+=("$package")
    fi
done
if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    as_root=(sudo)
fi
echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
