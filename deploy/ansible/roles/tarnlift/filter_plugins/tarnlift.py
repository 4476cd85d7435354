"""Reads the listing of the directory on a server: whose it is, and what in it is not of the firmware set."""
import os
import re
from pathlib import Path

OWNERS = {"BA", "SY"}  # administrators, the system
FULL_ACCESS = {"FA", "0x1f01ff"}
# What the role, the program and the adapter utility make beside the files of the set.
OWN = re.compile(r"(tarnlift-run\.cmd|rm\.ini|[^\\]*\.log|temp(\\.*)?|run(\\(report\.(xml|tmp)|code))?|firmware)$")
FIRMWARE = re.compile(r"firmware\\[^\\]*\.grp[^\\]*$")
MOST_NAMED = 3


def files_of(source):
    """The files and directories of the set, in lower case with backslashes."""
    return {str(path.relative_to(source)).replace(os.sep, "\\").lower() for path in Path(source).rglob("*")}


def rights_problem(sddl, root, directory):
    """None when exactly administrators and the system have all rights and one of them is the owner."""
    owner = re.match(r"O:(.*?)(?=G:|D:|S:|$)", sddl)
    access = re.search(r"D:([A-Z]*)((?:\([^)]*\))*)", sddl)
    if not owner or owner[1] not in OWNERS:
        return f"the owner is {owner[1] if owner else 'unknown'}"
    if not access:
        return "it has no list of rights"
    if root and "P" not in access[1]:
        return "it inherits rights"
    inherited = "" if root else "ID"
    wanted = {("OICI" if directory else "") + inherited}
    found = set()
    for entry in re.findall(r"\(([^)]*)\)", access[2]):
        kind, flags, rights, _, _, who = (entry.split(";") + [""] * 6)[:6]
        if kind != "A" or rights not in FULL_ACCESS or who not in OWNERS or flags not in wanted:
            return f"it has the entry ({entry})"
        found.add(who)
    return None if found == OWNERS else "administrators or the system lack rights"


def survey(listing, directory, source):
    """`listing` is the result of list-directory.ps1: the directory itself first, then everything below it."""
    ours, foreign, rights, other_firmware, run = files_of(source), [], [], [], False
    listing = [listing] if isinstance(listing, dict) else listing or []
    for item in listing:
        name = item["path"][len(directory):].lstrip("\\").lower()
        if item["link"]:
            foreign.append(f"{item['path']} is a link")
        elif FIRMWARE.match(name) and name not in ours:
            other_firmware.append(item["path"])
        elif name and name not in ours and not OWN.match(name):
            foreign.append(item["path"])
        problem = rights_problem(item["sddl"], not name, item["directory"])
        if problem:
            rights.append(f"{item['path']}: {problem}")
        run = run or name == "run"
    return {"exists": bool(listing), "run": run, "other_firmware": other_firmware,
            "foreign": shortened(foreign), "rights": shortened(rights)}


def shortened(lines):
    more = len(lines) - MOST_NAMED
    return lines[:MOST_NAMED] + ([f"{more} more"] if more > 0 else [])


class FilterModule:
    def filters(self):
        return {"tarnlift_survey": survey}
