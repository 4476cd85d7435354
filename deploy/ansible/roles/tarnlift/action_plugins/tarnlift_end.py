"""Judges how a server ended, in one line: its state, what its run's return code means, and why.

Returns what the role documents as `tarnlift_result`. It never fails: `outcome` says whether the server failed.
"""
from ansible.module_utils.parsing.convert_bool import boolean
from ansible.plugins.action import ActionBase

NOT_RUN = "not previewed: --check copies no files, or the tags of this play leave the preview out"
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
    """The ports that still need something; in a failed server all that are not fine. Ports with one reason share a line."""
    worth = FAILED + ("waiting", "not-verified", "skipped") if failed else ("waiting", "not-verified")
    lines = {}
    for port in ports:
        if port["state"] in worth:
            why = (port["reason"] or port["state"]).rstrip(".")
            lines.setdefault((port["model"], why), []).append(port["wwn"])
    return [f"{', '.join(names)} ({model}): {why}" for (model, why), names in lines.items()]


def without_repeats(lines, ports, code):
    """The reasons of the server that no port repeats, without the return code."""
    return [line.removeprefix(f"return code {code}: ") for line in lines if not any(port["reason"] and port["reason"] in line for port in ports)]


class ActionModule(ActionBase):
    def run(self, tmp=None, task_vars=None):
        result = super().run(tmp, task_vars)
        given = self._task.args
        found, problem = given["found"], given["problem"]
        code = int(given["code"]) if str(given["code"] or "").isdigit() else None
        codes = {int(number): meaning for number, meaning in given["codes"].items()}
        state = found.get("state", "no-report" if problem else "not-run")
        meaning = codes.get(code, {"text": "not a documented code"})
        strict = [word for word, wanted in given["strict"].items() if boolean(wanted)]
        outcome = "failed" if problem else outcome_of(state, meaning, strict)

        ports, reasons = found.get("ports", []), found.get("reasons", [])
        line = [NOT_RUN if state == "not-run" else state + (f", return code {code} ({meaning.get('text', '')})" if code is not None else ""), problem, given["note"]]
        line += [reason for reason in without_repeats(reasons, ports, code) if reason != meaning.get("text")]
        line += port_lines(ports, outcome == "failed")
        if outcome == "failed" and found.get("reboot"):
            line.append("no reboot, since the server failed, but ports wait for one")

        applied, rebooted = boolean(given["applied"]), boolean(given["rebooted"])
        changes = state in CHANGED and applied or state == "would-update" and boolean(given["predict"])
        result.update(outcome="changed" if changes and outcome == "ok" else outcome, state=state, reasons=reasons, ports=ports,
                      reboot=found.get("reboot", False), return_code=code, applied=applied, rebooted=rebooted,
                      msg="; ".join(filter(None, line)))
        return result
