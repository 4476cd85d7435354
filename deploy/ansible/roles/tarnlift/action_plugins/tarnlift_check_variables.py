"""Refuses what would go wrong later: unknown variables, a directory unfit for TEMP, missing files on the controller.

Returns what the tasks need: the paths of tarnfleet and of the user's task files, and the merged table of return codes.
"""
import difflib
import os
import re
import shutil
from pathlib import Path

import yaml
from ansible.module_utils.parsing.convert_bool import boolean
from ansible.plugins.action import ActionBase

RESULT = "tarnlift_result"
OUTCOMES = ("ok", "failed", "state")
LONGEST_DIRECTORY = 150  # tarnlift.exe cuts its own path at 217 characters
SET = ("tarnlift.exe", "winhbcfg.exe", "firmware")


def known_variables(role_path):
    specs = yaml.safe_load((Path(role_path) / "meta/argument_specs.yml").read_text(encoding="utf-8"))
    return set(specs["argument_specs"]["main"]["options"])


def unknown_variables(names, known):
    for name in sorted(names):
        if name.startswith("tarnlift_") and name not in known and name != RESULT:
            close = difflib.get_close_matches(name, known, n=1)
            yield f"unknown variable {name}" + (f" (did you mean {close[0]}?)" if close else "")


def directory_problem(directory):
    unfit = sorted(set(re.findall(r"[\s&|<>^%,;=\"'!()*?/\x00-\x1f\x7f]", directory)))
    if unfit:
        named = ", ".join("a blank" if sign.isspace() else sign for sign in unfit)
        return f"TEMP is in it, so it must not have {named} in it"
    if not re.fullmatch(r"[A-Za-z]:(\\[^\\:]+)+", directory):
        return "it must be a full path below the root of a drive, such as C:\\Tarnlift"
    if any(part in (".", "..") for part in directory.split("\\")):
        return "it must not hold . or .."
    if len(directory) > LONGEST_DIRECTORY:
        return f"it is longer than {LONGEST_DIRECTORY} characters"
    return None


def merged_codes(built_in, changes):
    """The table of return codes with the user's changes, each problem of which is a line of the second result."""
    codes, problems = {int(code): dict(meaning) for code, meaning in built_in.items()}, []
    for code, meaning in changes.items():
        where = f"tarnlift_return_codes: {code!r}"
        if not re.fullmatch(r"\d{1,10}", str(code)):
            problems.append(f"{where} is not a return code")
        elif not isinstance(meaning, dict) or set(meaning) - {"outcome", "text"}:
            problems.append(f"{where} may have only outcome and text")
        elif meaning.get("outcome", "ok") not in OUTCOMES:
            problems.append(f"{where}: the outcome must be one of {', '.join(OUTCOMES)}")
        else:
            codes.setdefault(int(code), {}).update(meaning)
    return codes, problems


def find_tarnfleet(named, role_path, playbook_dir):
    """The path of tarnfleet, or None. A name that was given is the only candidate."""
    top = Path(role_path).parents[3]
    candidates = [named] if named else [
        top / "build/native/bin/tarnfleet", top / "tarnfleet", top / "bin/tarnfleet",
        Path(playbook_dir) / "tarnfleet", "tarnfleet"]
    return next(filter(None, (shutil.which(str(candidate)) for candidate in candidates)), None)


class ActionModule(ActionBase):
    def run(self, tmp=None, task_vars=None):
        result = super().run(tmp, task_vars)
        given, role_path = self._task.args, task_vars["role_path"]
        playbook_dir, server = task_vars["playbook_dir"], task_vars["inventory_hostname"]
        problems = list(unknown_variables(task_vars, known_variables(role_path)))

        problem = directory_problem(given["directory"])
        if problem:
            problems.append(f"tarnlift_directory {given['directory']}: {problem}")
        if re.search(r"[/\x00-\x1f]", server) or server.startswith(".") or server.endswith(".query"):
            problems.append(f"the name {server!r} cannot be the name of a report")
        missing = [name for name in SET if not os.path.exists(os.path.join(given["source"], name))]
        if missing:
            problems.append(f"tarnlift_source {given['source']}: missing {', '.join(missing)}")

        codes, code_problems = merged_codes(given["built_in_codes"], given["codes"] or {})
        problems += code_problems
        tarnfleet = find_tarnfleet(given["tarnfleet"], role_path, playbook_dir)
        if not tarnfleet:
            problems.append(f"tarnfleet not found: set tarnlift_tarnfleet (now '{given['tarnfleet']}') to its path")
        for variable in ("before_reboot", "after_reboot"):
            tasks = given[variable] and os.path.join(playbook_dir, given[variable])
            if tasks and not os.path.isfile(tasks):
                problems.append(f"tarnlift_{variable}: there is no file {tasks}")
            result[variable] = tasks

        result.update(failed=bool(problems), codes=codes, tarnfleet=tarnfleet, kept_in=given["results"],
                      writes=boolean(given["writes"]))
        if problems:
            result["msg"] = "; ".join(problems)
        return result
