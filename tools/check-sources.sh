#!/usr/bin/env bash
# Reads the sources without running them: clang-tidy and cppcheck, which have to be clean. What clang-tidy leaves out,
# and why, stands in .clang-tidy. Needs a configured native build (compile_commands.json).
set -euo pipefail
cd "$(dirname "$0")/.."

tools/check-layers.py --self-check
tools/check-layers.py

# The Windows side needs headers that only its own compiler has; GCC's warnings, which are errors, read it.
mapfile -t sources < <(git ls-files 'src/*.cpp' 'simulator/*.cpp' 'fleet/*.cpp' ':!src/platform/windows/*' \
    ':!fleet/*_windows.cpp')

printf '%s\0' "${sources[@]}" | xargs -0 -n 4 -P "$(nproc)" clang-tidy -p build/native --quiet 2>/dev/null

# Left out: a loop says as well what an algorithm would; and cppcheck does not see what is written through the pointers
# that it wants to be constant.
cppcheck --quiet --error-exitcode=1 --std=c++20 -I src --enable=warning,style,performance,portability \
    --suppress=missingIncludeSystem --suppress=useStlAlgorithm --suppress=constParameter --suppress=constVariable "${sources[@]}"
