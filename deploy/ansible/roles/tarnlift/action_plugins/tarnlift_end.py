"""Judges how a server ended, in one line: its state, what its run's return code means, and why.

Returns what the role documents as `tarnlift_result`. It never fails: `outcome` says whether the server failed.
"""
import re

from ansible.module_utils.parsing.convert_bool import boolean
from ansible.plugins.action import ActionBase

NOT_RUN = "not-run"
FAILED = ("failed", "not-installed", "no-report")
CHANGED = ("updated", "waiting", "not-verified")
# States that the table of return codes cannot excuse: the report and the adapters do not agree, or there is no report.
BEYOND_EXCUSE = ("not-installed", "no-report")


def outcome_of(state, meaning, strict):
    """ok or failed. `strict` are the states that the user wants to count as failures."""
    named = meaning.get("outcome", "state")
    if named == "failed" or state in strict:
        return "failed"
    if named == "ok" and state not in BEYOND_EXCUSE:
        return "ok"
    return "failed" if state in FAILED else "ok"


def port_lines(ports, failed):
    """The ports that still need something; in a failed server all that are not fine. Equal reasons share a line."""
    worth = FAILED + ("waiting", "not-verified", "skipped") if failed else ("waiting", "not-verified")
    lines = {}
    for port in ports:
        if port["state"] in worth:
            why = (port["reason"] or port["state"]).rstrip(".")
            lines.setdefault((port["model"], why), []).append(port["wwn"])
    return [f"{', '.join(names)} ({model}): {why}" for (model, why), names in lines.items()]


def last_line(state, code, text, reasons, ports, failed):
    """The line, part by part. Reasons that ports or the return code's text repeat are left out."""
    if state == NOT_RUN:
        return ["not previewed: --check prepares no directory, or the tags of this play leave the preview out"]
    line = [state if code is None else f"{state}, return code {code} ({text})"]
    for reason in reasons:
        reason = reason.removeprefix(f"return code {code}: ")
        if reason != text and not any(port["reason"] and port["reason"] in reason for port in ports):
            line.append(reason)
    return line + port_lines(ports, failed)


class ActionModule(ActionBase):
    def run(self, tmp=None, task_vars=None):
        result = super().run(tmp, task_vars)
        given = self._task.args
        found, problem = given["found"], given["problem"]
        reasons, ports, reboot = found.get("reasons", []), found.get("ports", []), found.get("reboot", False)
        code = int(given["code"]) if re.fullmatch(r"-?\d+", str(given["code"])) else None
        meaning = {int(number): row for number, row in given["codes"].items()}.get(code, {})
        strict = [word for word, wanted in given["strict"].items() if boolean(wanted)]
        applied = boolean(given["applied"])

        state = found.get("state", "no-report" if problem else NOT_RUN)
        outcome = "failed" if problem else outcome_of(state, meaning, strict)
        line = last_line(state, code, meaning.get("text", "not a documented code"), reasons, ports, outcome == "failed")
        line[1:1] = [problem, given["note"]]
        if outcome == "failed" and reboot:
            line.append("ports wait for a reboot, which a failed server does not get")
        if outcome == "ok" and (applied and state in CHANGED or boolean(given["predict"]) and state == "would-update"):
            outcome = "changed"

        result.update(outcome=outcome, state=state, reasons=reasons, ports=ports, reboot=reboot, return_code=code,
                      applied=applied, rebooted=boolean(given["rebooted"]), msg="; ".join(filter(None, line)))
        return result
