#!/usr/bin/env bash
# Installs what is missing on a Debian machine.
# Usage: tools/setup.sh [ROLE ...]
#   build     to build the programs for this machine (every role includes it)
#   test      to test them as well
#   fuzz      to build the fuzz targets
#   windows   to build the Windows programs and run them
#   release   to make a release and test it, in addition to `windows`
#   coverage  to print what the tests reach, in addition to `test`
#   mutate    to flip decisions of the program, in addition to `test`
#   bench     to measure what a run costs
set -euo pipefail

# A command or a path that shows that the package is installed, and the package.
needed=(
    "g++ g++"
    "cmake cmake"
    "ninja ninja-build"
    "/usr/include/expat.h libexpat1-dev"
)
add_role() {
    case $1 in
    build) ;;
    test)
        needed+=(
            "/usr/include/gtest/gtest.h libgtest-dev"
            "xmllint libxml2-utils"
            "chromium chromium"
            "chromedriver chromium-driver"
            "/usr/share/fonts/truetype/liberation fonts-liberation"
            "pdftotext poppler-utils"
            "/usr/lib/python3/dist-packages/selenium python3-selenium"
            "/usr/lib/python3/dist-packages/ansible_collections/ansible/windows ansible"
            "ansible-lint ansible-lint"
            "python3 python3"
            "clang-format clang-format"
            "clang-tidy clang-tidy"
            "cppcheck cppcheck"
        )
        ;;
    fuzz)
        needed+=(
            "clang++ clang"
            "/usr/lib/llvm-14/lib/clang/14.0.6/lib/linux/libclang_rt.fuzzer-x86_64.a libclang-rt-14-dev"
            "python3 python3"
        )
        ;;
    windows)
        needed+=(
            "x86_64-w64-mingw32-g++-posix g++-mingw-w64-x86-64-posix"
            "/usr/src/googletest/googletest googletest"
            "wine wine"
            "/usr/lib/wine/wine64 wine64"
        )
        ;;
    release)
        needed+=(
            "python3 python3"
            "zip zip"
            "osslsigncode osslsigncode"
            "openssl openssl"
        )
        ;;
    coverage)
        needed+=("gcovr gcovr")
        ;;
    mutate)
        needed+=("rsync rsync")
        ;;
    bench)
        needed+=(
            "gcc gcc"
            "hyperfine hyperfine"
            "valgrind valgrind"
            "/usr/bin/time time"
            "python3 python3-minimal"
        )
        ;;
    *)
        echo "tools/setup.sh: unknown role '$1'" >&2
        exit 2
        ;;
    esac
}

for role in "$@"; do
    add_role "$role"
done

missing=()
for row in "${needed[@]}"; do
    read -r sign package <<<"$row"
    case $sign in
    /*) [ -e "$sign" ] || missing+=("$package") ;;
    *) command -v "$sign" >/dev/null || missing+=("$package") ;;
    esac
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
