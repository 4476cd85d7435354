#!/usr/bin/env python3
"""Flips each comparison and condition of the deciding sources, one at a time, and lists the flips that no test notices.

Usage: tools/mutate.py [FILE ...]        files of src/; without one, all that decide

Works on a copy in build/mutate, so the tree stays as it is. Each mutant is built and run against the unit tests and, when
those notice nothing, against the machine that fails and the end-to-end tests. Ends with exit status 1 when a mutant survives
that tools/mutants-that-change-nothing.txt does not name, or when that file names one that does not exist. A line there names
the file, the function and the flip:
    selection/fw_matrix.cpp: startScan: return false;  ->  return true;
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
         "selection/auto_selection.cpp", "download/download_driver.cpp", "download/download_reply.cpp",
         "records/hba_record.cpp", "report/port_report.cpp", "report/port_rows.cpp", "report/summaries.cpp",
         "run/port.cpp", "run/run.cpp"]
SUITES = ["texts", "downloads", "reports", "command_line", "hostile"]

# A pattern and its replacement. Strings and comments are left alone.
FLIPS = [(r"(?<=\s)==(?=\s)", "!="), (r"(?<=\s)!=(?=\s)", "=="), (r"(?<=\s)<(?=\s)", "<="), (r"(?<=\s)>(?=\s)", ">="),
         (r"(?<=\s)<=(?=\s)", "<"), (r"(?<=\s)>=(?=\s)", ">"), (r"(?<=\s)&&(?=\s)", "||"), (r"(?<=\s)\|\|(?=\s)", "&&"),
         (r"(?<=[(\s])!(?=[a-zA-Z(])", ""), (r"\bif \((?=\w+(\.\w+|\(.*\))\) \{)", "if (!"),
         (r"(?<=\W)true(?=\W)", "false"), (r"(?<=\W)false(?=\W)", "true"), (r"\+\+;", "--;"), (r"--;", "++;")]


def code_only(line):
    """The line with blanks instead of strings and comments."""
    return re.sub(r'"(\\.|[^"\\])*"|//.*$', lambda found: " " * len(found[0]), line)


def mutants(name):
    """Yields line number, label and the whole mutated source."""
    lines = (COPY / "src" / name).read_text().splitlines(keepends=True)
    function, asserts = "file", False
    for number, line in enumerate(lines):
        asserts = line.startswith("static_assert") or asserts
        if asserts or line.startswith("#"):
            asserts = asserts and not line.rstrip().endswith(";")
            continue
        if re.match(r"\w.*[({,]$", line.rstrip()) and (named := re.search(r"(\w+)(?=\(|\[|\{| = \{)", line)):
            function = named[1]
        for pattern, flip in FLIPS:
            for found in re.finditer(pattern, code_only(line)):
                mutant = line[:found.start()] + flip + line[found.end():]
                label = f"{name}: {function}: {line.strip()}  ->  {mutant.strip()}"
                yield number + 1, label, "".join(lines[:number] + [mutant] + lines[number + 1:])


def run(*command, **keys):
    return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **keys).returncode


def killed_by():
    """What notices the mutant, None when nothing does. A mutant may loop for ever."""
    if run("cmake", "--build", BUILD, "--target", "unit_tests", "tarnlift", "failing_machine") != 0:
        return "compiler"
    try:
        if run(BUILD / "bin/unit_tests", timeout=60) != 0:
            return "unit tests"
        if run(BUILD / "bin/failing_machine", timeout=60) != 0:
            return "failing machine"
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
    # By content, and without the files' times: what the last run left mutated must be built again.
    subprocess.run(f"git ls-files -z | rsync -rlp --checksum --from0 --files-from=- ./ {COPY}/", shell=True, cwd=TOP, check=True)
    subprocess.run(["cmake", "-S", COPY, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug"], check=True,
                   stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", BUILD], check=True, stdout=subprocess.DEVNULL)
    known = {line for line in KNOWN.read_text().splitlines() if line and not line.startswith("#")}
    total, survivors, labels = 0, [], set()
    for name in files:
        path = COPY / "src" / name
        original = path.read_text()
        for number, label, text in list(mutants(name)):
            path.write_text(text)
            total += 1
            labels.add(label)
            if killed_by() is None:
                survivors.append(label)
                print(f"survived{' (known)' * (label in known)}: line {number}: {label}", flush=True)
        path.write_text(original)
        print(f"{name}: done, {total} mutants so far, {len(survivors)} survived", flush=True)
    unknown = [label for label in survivors if label not in known]
    stale = [label for label in known if label.split(":")[0] in files and label not in labels]
    for label in stale:
        print(f"no such mutant: {label}")
    print(f"{total} mutants, {total - len(survivors)} noticed, {len(survivors) - len(unknown)} change nothing, "
          f"{len(unknown)} survived")
    sys.exit(1 if unknown or stale else 0)


main()
