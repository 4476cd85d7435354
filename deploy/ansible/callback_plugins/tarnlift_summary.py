"""Ends a play of the role with the list of its servers, worst first, and the path of the page.

It is a callback because it must come after everything, and also when failures stopped the play.
"""
import os
import subprocess

from ansible.plugins.callback import CallbackBase

DOCUMENTATION = """
    name: tarnlift_summary
    type: aggregate
    short_description: List the servers by state at the end of a roll-out
    description: Runs C(tarnfleet status) and C(tarnfleet page) on the results of the role C(tarnlift).
"""


class CallbackModule(CallbackBase):
    CALLBACK_VERSION = 2.0
    CALLBACK_TYPE = "aggregate"
    CALLBACK_NAME = "tarnlift_summary"

    def __init__(self):
        super().__init__()
        self.setup = None
        self.begun = False

    def v2_runner_on_ok(self, result):
        """Notes where the results are: the role's first task of each server says it."""
        if result._task.action == "tarnlift_check_variables":
            self.setup = result._result
        self.begun = self.begun or result._task.action in ("tarnlift_plan", "tarnlift_end")

    def v2_runner_on_unreachable(self, result):
        """Keeps the reason: a server that is lost for good does not come to the role's last task."""
        if self.setup is None or result._task.ignore_unreachable:
            return
        kept = os.path.join(self.setup["kept_in"], "reports", result._host.get_name())
        if not os.path.exists(kept + ".xml"):
            with open(kept + ".refused", "w", encoding="utf-8") as file:
                file.write(f"unreachable: {result._result.get('msg', '')}\n")

    def v2_playbook_on_stats(self, stats):
        if not (self.setup and self.begun):
            return
        results, tarnfleet = self.setup["kept_in"], self.setup["tarnfleet"]
        reports, page = os.path.join(results, "reports"), os.path.join(results, "fleet.html")
        names = ["--servers", os.path.join(results, "servers.txt")]
        self.show([tarnfleet, "status", reports] + names)
        if self.show([tarnfleet, "page", reports, "-o", page] + names) < 3:
            self._display.display(f"Page: {page}")
        if not self.setup["writes"]:
            self._display.display("This play wrote no firmware. With -e tarnlift_apply=true it does.")

    def show(self, command):
        ended = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self._display.display(ended.stdout.decode(errors="replace").rstrip("\n"))
        return ended.returncode
