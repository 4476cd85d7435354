"""tarnlift-run.cmd, which runs an update apart from the connection, with the real program through Wine.

Wine's cmd.exe does not lock the file to which it redirects output, so `holder` does where a run has to go on.
"""
import shutil
import subprocess
import sys
import time
import unittest
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "tests/end_to_end"))
from machine import BIN, WINE, MachineTest, port, spelled  # noqa: E402


class Runner(MachineTest):
    def setUp(self):
        super().setUp()
        self.server = self.machine(port(), matrix="QVa5202 a.grp\n", images=[(64, "14.2.1.1", "a.grp")])
        script = (TOP / "deploy/ansible/roles/tarnlift/files/tarnlift-run.cmd").read_bytes()
        (self.server.path / "tarnlift-run.cmd").write_bytes(script)

    def ask(self, *arguments):
        """Runs the script, from another directory. Returns its exit code and what it printed."""
        ended = subprocess.run([*WINE, "cmd", "/d", "/c", spelled(self.server.path / "tarnlift-run.cmd"), *arguments],
                               cwd=self.server.path / "cwd", stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, timeout=120)
        return ended.returncode, ended.stdout.decode().strip()

    def downloads(self):
        return sum(call.startswith("download") for call in self.server.calls())

    def test_an_update_leaves_report_and_return_code(self):
        self.assertEqual(self.ask("start", "/update", "/xml")[0], 0)
        report = (self.server.path / "run/report.xml").read_text()
        self.assertRegex(report, r"(?s)^<\?xml.*<RebootRequired>0<.*</Execution>\s*$")
        self.assertEqual(self.ask("wait", "0"), (0, "ended 0"))
        self.assertEqual(self.downloads(), 1)

    def test_a_second_update_does_not_begin_before_the_first_is_picked_up(self):
        self.ask("start", "/update", "/xml")
        self.assertEqual(self.ask("start", "/ff", "/xml")[0], 3)
        self.assertEqual(self.downloads(), 1)
        shutil.rmtree(self.server.path / "run")
        self.assertEqual(self.ask("start", "/ff", "/xml")[0], 0)
        self.assertEqual(self.downloads(), 1)

    def test_other_return_codes_and_ends_without_one(self):
        self.ask("start", "/nonsense")
        self.assertEqual(self.ask("wait", "0"), (0, "ended 4"))
        (self.server.path / "run/code").unlink()
        self.assertEqual(self.ask("wait", "20"), (0, "cut-off"))
        shutil.rmtree(self.server.path / "run")
        self.assertEqual(self.ask("wait", "20"), (0, "none"))

    def test_a_run_that_goes_on_is_waited_for(self):
        (self.server.path / "run").mkdir()
        report = spelled(self.server.path / "run/report.xml")
        with subprocess.Popen([*WINE, BIN / "holder.exe", report, "20000"], stdin=subprocess.DEVNULL) as run:
            while not (self.server.path / "run/report.xml").exists():
                time.sleep(0.1)
            self.assertEqual(self.ask("wait", "12"), (0, "running"))
            self.assertIsNone(run.poll())
        self.assertEqual(self.ask("wait", "20"), (0, "cut-off"))


unittest.main()
