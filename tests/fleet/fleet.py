"""The roll-out with Ansible, on the simulated servers of its rehearsal."""
import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

DEPLOY = Path(__file__).resolve().parents[2] / "deploy/ansible"
ENDED = """auto changed, canary changed, current ok, half failed, liar failed, no-adapters ok, old-system failed,
    reboot changed, refuses failed, twice changed, two-boards changed, waits changed""".replace(",", "").split()


class Fleet(unittest.TestCase):
    def test_the_windows_tasks_are_well_formed(self):
        subprocess.run(["ansible-playbook", "--syntax-check", DEPLOY / "rehearsal/windows.yml"], check=True)

    def test_the_rehearsed_servers_end_as_they_must(self):
        with tempfile.TemporaryDirectory() as top:
            subprocess.run([DEPLOY / "rehearsal/run.sh", os.environ["TARNLIFT_BIN"], top + "/fleet"], check=True)
            text = {file.name: file.read_text(errors="replace") for file in Path(top, "fleet").glob("*.*")}
        self.assertEqual(text["check.ended"].split(), ["canary", "changed", "current", "ok"])
        self.assertEqual(text["update.ended"].split(), ENDED)
        self.assertEqual(text["again.ended"].split(), [word.replace("changed", "ok") for word in ENDED])
        self.assertEqual(text["limit.ended"].split(), ["canary", "ok", "refuses", "failed"])
        self.assertNotIn("download", text["check.calls"])
        self.assertEqual(set(re.findall("(.+)/.*reboot", text["again.calls"])), {"reboot", "twice", "two-boards"})
        self.assertIn("22:01 runs 14.2.100.5, not 14.4.473.14", text["update.log"])
        for said in ("12 servers, 24 ports", *ENDED[::2]):
            self.assertIn(said, re.sub("<[^>]*>", "", text["fleet.html"]))


unittest.main()
