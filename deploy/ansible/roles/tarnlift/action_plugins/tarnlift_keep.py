"""Keeps what a server printed in the directory of reports, and asks tarnfleet what it means.

Options: tarnfleet, reports (paths), and of these what is at hand: run and query (documents in Base64), code, rebooted,
applied (the run was no preview), refused (why there is no report). A query is added to what is kept of the server.
Everything else replaces it, so without options the server is left without a report.
Returns what `tarnfleet check` printed as `found`, and `code` and `applied`.
"""
import base64
import json
import subprocess
from pathlib import Path

from ansible.errors import AnsibleActionFail
from ansible.plugins.action import ActionBase

KEPT = (".xml", ".query.xml", ".code", ".rebooted", ".refused")
COULD_NOT_CHECK = 3


def write(path, content):
    """Puts a whole file in place, or none."""
    part = path.with_name(f".{path.name}.part")
    part.write_bytes(content)
    part.replace(path)


def check(tarnfleet, files):
    """`files` are the paths that are kept of a server, by the ends of their names."""
    command = [tarnfleet, "check", str(files[".xml"])]
    if files[".query.xml"].exists():
        command.append(str(files[".query.xml"]))
    if files[".code"].exists():
        command += ["--code", files[".code"].read_text().strip()]
    if files[".rebooted"].exists():
        command.append("--rebooted")
    ended = subprocess.run(command, capture_output=True, stdin=subprocess.DEVNULL)
    try:
        if ended.returncode < COULD_NOT_CHECK:
            return json.loads(ended.stdout)
    except ValueError:
        pass
    said = (ended.stderr or ended.stdout).decode(errors="replace").strip()
    raise AnsibleActionFail(f"{' '.join(command)} ended with {ended.returncode}: {said}")


class ActionModule(ActionBase):
    def run(self, tmp=None, task_vars=None):
        result = super().run(tmp, task_vars)
        given = self._task.args
        reports = Path(given["reports"])
        reports.mkdir(parents=True, exist_ok=True)
        files = {kind: reports / (task_vars["inventory_hostname"] + kind) for kind in KEPT}
        if "query" not in given:
            for file in files.values():
                file.unlink(missing_ok=True)
        if "run" in given:
            write(files[".xml"], base64.b64decode(given["run"]))
        if "code" in given and "query" not in given:
            write(files[".code"], f"{given['code']}\n".encode())
        if "refused" in given:
            write(files[".refused"], f"{given['refused']}\n".encode())
        if "query" in given:
            write(files[".query.xml"], base64.b64decode(given["query"]))
        if given.get("rebooted"):
            write(files[".rebooted"], b"")
        result.update(code=given.get("code"), applied=given.get("applied", False),
                      found=check(given["tarnfleet"], files) if files[".xml"].exists() else {})
        return result
