#!/usr/bin/env python3
"""Flips each comparison and condition of the deciding sources, one at a time, and lists the flips that no test notices.

Usage: tools/mutate.py [FILE ...]        files of src/; without one, all that decide

Works on a copy in build/mutate, so the tree stays as it is. Each mutant is built and run against the unit tests and, when
those notice nothing, against the end-to-end tests. Ends with exit status 1 when a mutant survives that is not in
tools/mutants-that-change-nothing.txt.
"""
import os
import re
import subprocess
import sys
from pathlib import Path

TOP = Path(__file__).resolve().parents[1]
COPY = TOP / "build/mutate/tree"
BUILD = TOP / "build/mutate/build"
KNOWN = TOP / "tools/mutants-that-change-nothing.txt"
FILES = ["images/version_rules.cpp", "selection/fw_matrix.cpp", "selection/matrix_selection.cpp",
         "selection/auto_selection.cpp", "download/download_driver.cpp", "download/download_reply.cpp", "report/summaries.cpp"]
SUITES = ["downloads", "reports", "hostile"]

# What is looked for, and what is put in its place. Strings and comments are left alone.
FLIPS = [(r"(?<=\s)==(?=\s)", "!="), (r"(?<=\s)!=(?=\s)", "=="), (r"(?<=\s)<(?=\s)", "<="), (r"(?<=\s)>(?=\s)", ">="),
         (r"(?<=\s)<=(?=\s)", "<"), (r"(?<=\s)>=(?=\s)", ">"), (r"(?<=\s)&&(?=\s)", "||"), (r"(?<=\s)\|\|(?=\s)", "&&"),
         (r"(?<=[(\s])!(?=[a-zA-Z(])", ""), (r"\bif \((?=\w+(\.\w+|\(.*\))\) \{)", "if (!"),
         (r"(?<=\W)true(?=\W)", "false"), (r"(?<=\W)false(?=\W)", "true"), (r"\+\+;", "--;"), (r"--;", "++;")]


def code_only(line):
    """The line with blanks in the place of texts and comments."""
    return re.sub(r'"(\\.|[^"\\])*"|//.*$', lambda found: " " * len(found[0]), line)


def mutants(name):
    lines = (COPY / "src" / name).read_text().splitlines(keepends=True)
    for number, line in enumerate(lines):
        if line.startswith("#"):
            continue
        for pattern, flip in FLIPS:
            for found in re.finditer(pattern, code_only(line)):
                mutant = line[:found.start()] + flip + line[found.end():]
                yield number, line.strip(), mutant.strip(), "".join(lines[:number] + [mutant] + lines[number + 1:])


def run(*command, **keys):
    return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **keys).returncode


def killed_by():
    """What notices the mutant, None when nothing does. A mutant may loop for ever."""
    if run("cmake", "--build", BUILD, "--target", "unit_tests", "tarnlift") != 0:
        return "compiler"
    try:
        if run(BUILD / "bin/unit_tests", timeout=60) != 0:
            return "unit tests"
        environment = {**os.environ, "TARNLIFT_BIN": str(BUILD / "bin")}
        for suite in SUITES:
            if run(sys.executable, "-B", COPY / "tests/end_to_end" / (suite + ".py"), "-f", timeout=120, env=environment):
                return suite
    except subprocess.TimeoutExpired:
        return "time limit"
    return None


def main():
    files = sys.argv[1:] or FILES
    for role in "test", "mutate":
        subprocess.run([TOP / "tools/setup.sh", role], check=True)
    COPY.mkdir(parents=True, exist_ok=True)
    # By content, and without the files' times: what the last run left mutated has to be built anew.
    subprocess.run(f"git ls-files -z | rsync -rlp --checksum --from0 --files-from=- ./ {COPY}/", shell=True, cwd=TOP, check=True)
    subprocess.run(["cmake", "-S", COPY, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug"], check=True,
                   stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", BUILD], check=True, stdout=subprocess.DEVNULL)
    known = set(KNOWN.read_text().splitlines()) if KNOWN.exists() else set()
    total, survivors = 0, []
    for name in files:
        path = COPY / "src" / name
        original = path.read_text()
        for number, before, after, text in list(mutants(name)):
            path.write_text(text)
            total += 1
            if killed_by() is None:
                label = f"{name}: {before}  ->  {after}"
                survivors.append((label in known, label))
                print(f"survived{' (known)' * (label in known)}: {name}:{number + 1}: {before}  ->  {after}", flush=True)
        path.write_text(original)
        print(f"{name}: done, {total} mutants so far, {len(survivors)} survived", flush=True)
    unknown = [label for is_known, label in survivors if not is_known]
    print(f"{total} mutants, {total - len(survivors)} noticed, {len(survivors) - len(unknown)} change nothing, "
          f"{len(unknown)} survived")
    sys.exit(1 if unknown else 0)


main()
