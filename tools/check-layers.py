#!/usr/bin/env python3
"""Checks that the includes of src/ respect the layers of docs/architecture.md.

An include points to a lower layer or stays in its folder, files do not include each other in a circle, and only the
folders of a system include that system's headers. Each violation is printed as FILE:LINE: RULE.

Usage: check-layers.py [DIRECTORY]   DIRECTORY holds the layers; src/ without one
       check-layers.py --self-check  shows that each rule is enforced, on a tree made for it
"""
import re
import sys
import tempfile
from pathlib import Path

# From top to bottom; the folders of a row are peers, which do not include each other.
LAYERS = [{"run"}, {"selection"}, {"download"}, {"report", "inventory", "images"}, {"records"}, {"output"}, {"platform"},
          {"settings"}, {"base"}]
RANK = {folder: rank for rank, folders in enumerate(reversed(LAYERS)) for folder in folders}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def includes_of(file):
    """The includes of a file, as (line number, path, True for a header of the system or the library)."""
    for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
        found = INCLUDE.match(line)
        if found:
            yield number, found[2], found[1] == "<"


def broken_rule(folders, path, is_system):
    """The rule that an include of `path` from a file in `folders` breaks, or None."""
    here = folders[0]
    if is_system:
        of_one_system = here == "platform" and len(folders) > 1
        if ("." in path or "/" in path) and not of_one_system:
            return f"<{path}> is not a header of the language; only platform/linux and platform/windows use others"
        return None
    there = path.split("/")[0]
    if there not in RANK:
        return f'"{path}" is in no layer; write the path from src/'
    if there == here or RANK[there] < RANK[here]:
        return None
    if RANK[there] == RANK[here]:
        return f"{here}/ and {there}/ are peers and do not include each other"
    return f"{there}/ is above {here}/; includes point down"


def circle_through(header, graph, trail):
    """The first circle that `header` leads into, as a list of headers, or None."""
    if header in trail:
        return trail[trail.index(header):] + [header]
    for next_header in graph.get(header, []):
        circle = circle_through(next_header, graph, trail + [header])
        if circle:
            return circle
    return None


def violations(top):
    graph = {}
    for file in sorted([*top.rglob("*.h"), *top.rglob("*.cpp")]):
        name = file.relative_to(top)
        folders = name.parts[:-1]
        if not folders or folders[0] not in RANK:
            yield f"{file}:1: its folder is in no layer"
            continue
        for number, path, is_system in includes_of(file):
            rule = broken_rule(folders, path, is_system)
            if rule:
                yield f"{file}:{number}: {rule}"
            if not is_system:
                graph.setdefault(name.as_posix(), []).append(path)
    reported = set()
    for header in graph:
        circle = circle_through(header, graph, [])
        if circle and frozenset(circle) not in reported:
            reported.add(frozenset(circle))
            yield f"{top / circle[0]}:1: circle of includes: {' > '.join(circle)}"


def self_check():
    """Each case is a tree of files, and the one violation that must be found in it (none: '')."""
    cases = [
        ({"run/a.cpp": '#include "base/b.h"\n#include <cstdio>\n', "base/b.h": ""}, ""),
        ({"base/a.h": '\n#include "run/b.h"\n', "run/b.h": ""}, "base/a.h:2: run/ is above base/"),
        ({"images/a.h": '#include "report/b.h"\n', "report/b.h": ""}, "images/a.h:1: images/ and report/ are peers"),
        ({"base/a.h": '#include "base/b.h"\n', "base/b.h": '#include "base/a.h"\n'}, "base/a.h:1: circle of includes"),
        ({"run/a.cpp": "#include <unistd.h>\n"}, "run/a.cpp:1: <unistd.h> is not a header of the language"),
        ({"platform/linux/a.cpp": "#include <unistd.h>\n"}, ""),
        ({"run/a.cpp": '#include "b.h"\n'}, 'run/a.cpp:1: "b.h" is in no layer'),
        ({"other/a.cpp": ""}, "other/a.cpp:1: its folder is in no layer"),
    ]
    failed = False
    for files, wanted in cases:
        with tempfile.TemporaryDirectory() as directory:
            for name, text in files.items():
                file = Path(directory, name)
                file.parent.mkdir(parents=True, exist_ok=True)
                file.write_text(text, encoding="utf-8")
            found = [line.removeprefix(directory + "/") for line in violations(Path(directory))]
        if [line[:len(wanted)] for line in found] != ([wanted] if wanted else []):
            print(f"check-layers: {files} should give {wanted!r}, and gave {found}")
            failed = True
    return failed


def main():
    if sys.argv[1:] == ["--self-check"]:
        return self_check()
    top = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).resolve().parents[1] / "src"
    found = list(violations(top))
    print("\n".join(found), end="\n" if found else "")
    return bool(found)


if __name__ == "__main__":
    sys.exit(main())
