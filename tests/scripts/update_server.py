"""share/examples/update-server.cmd with the real program on simulated adapters, through Wine."""
import shutil
import subprocess
import sys
import time
import unittest
from dataclasses import dataclass, field
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "tests/end_to_end"))
from machine import WINE, MachineTest, port, spelled, wine  # noqa: E402

REBOOT = "@download exit=80"
TWICE = "@download exit=87"
REFUSED = '@download exit=92 reply="Error: not on this board"'


@dataclass
class Case:
    name: str
    arguments: str  # HERE is the machine's directory
    code: int
    said: str  # by the script, after "SERVER: "
    also: str = ""
    downloads: int = 0
    ports: list = field(default_factory=lambda: [port()])
    matrix: str = "QVa5202 a.grp\n"


CASES = [
    Case("a preview without arguments", "", 0, "PREVIEW - Updates are due, nothing was written."),
    Case("a preview, even with /update", "/update /p", 0, "PREVIEW - "),
    Case("directories", '/id="HERE\\" /v "/FMD=HERE" /ramdrive=C:', 0, "PREVIEW - "),
    Case("a preview asks for no reboot", "", 0, "PREVIEW - ", also="Some boards wait for a reboot.",
         ports=[port(), port(2, fw="14.2.1.1", serial="S2", Change_Status=1)]),
    Case("nothing due", "/update", 0, "FINE - No port needs an update.", ports=[port(fw="14.2.1.1")]),
    Case("updated", "/update", 0, "FINE - All required updates succeeded.", downloads=1),
    Case("updated, a reboot is needed", "/UPDATE", 3010, "REBOOT - ", downloads=1, ports=[port(script=REBOOT)]),
    Case("a board waits since an earlier run", "/update", 3010, "REBOOT - ", ports=[port(fw="14.2.1.1", Change_Status=1)]),
    Case("to be downloaded twice", "/update", 3010, "REBOOT - ", also="After the reboot run tarnlift.exe /rewrite",
         downloads=1, ports=[port(script=TWICE)]),
    Case("all failed", "/update", 2, "FAILED - Every required update failed.", downloads=1, ports=[port(script=REFUSED)]),
    Case("some failed, one waits", "/update", 3, "FAILED - Some updates failed", also="Some boards wait for a reboot.",
         downloads=2, ports=[port(script=REFUSED), port(2, serial="S2", script=REBOOT)]),
    Case("no adapters", "/update", 5, "FAILED - No adapters found.", ports=[]),
    Case("no firmware directory", "/update /auto /id=HERE\\gone", 6, "FAILED - No firmware directory."),
    Case("no usable file", "/update", 7, "FAILED - No usable firmware file", matrix="QVa9999 a.grp\n"),
    Case("a mistyped /update", "/updat", 100, 'FAILED - Argument not understood: "/updat".'),
    Case("another operation", "/update /ff", 100, 'FAILED - Argument not understood: "/ff".'),
    Case("a switch with a value", '"/update=no"', 100, 'FAILED - Argument not understood: "/update".'),
    Case("a directory without a value", "/id= /update", 100, 'FAILED - Argument not understood: "/id".'),
    Case("a log of Tarnlift's own", "/update /log=x", 100, 'FAILED - Argument not understood: "/log".'),
]


class UpdateServer(MachineTest):
    def server(self, *ports, matrix="QVa5202 a.grp\n"):
        machine = self.machine(*ports, matrix=matrix, images=[(64, "14.2.1.1", "a.grp")])
        shutil.copy(TOP / "share/examples/update-server.cmd", machine.path)
        return machine

    def command(self, machine, arguments):
        """Runs the script on a server named SERVER. Wine's own exit status has too few bits for 3010."""
        arguments = arguments.replace("HERE", spelled(machine.path))
        caller = f'@echo off\r\nset COMPUTERNAME=SERVER\r\n"%~dp0update-server.cmd" {arguments}\r\n'
        (machine.path / "caller.cmd").write_text(caller, newline="")
        return ["cmd", "/v:on", "/c", spelled(machine.path) + "\\caller.cmd", "&", "echo", "code", "!errorlevel!"]

    def run_script(self, machine, arguments):
        """Returns the return code and the output."""
        output, _, code = machine.text(wine(*self.command(machine, arguments)).stdout).rpartition("code ")
        return int(code), output

    def test_each_outcome_has_its_message_and_return_code(self):
        for case in CASES:
            with self.subTest(case.name):
                machine = self.server(*case.ports, matrix=case.matrix)
                code, output = self.run_script(machine, case.arguments)
                self.assertEqual(code, case.code, output)
                self.assertIn("SERVER: " + case.said, output)
                self.assertIn(case.also, output)
                calls = machine.calls()
                self.assertEqual(sum("download" in call for call in calls), case.downloads, calls)
                self.assertEqual(calls == [], code in (6, 100), calls)

    def test_the_output_of_the_run_and_the_log_of_all_runs_are_kept(self):
        machine = self.server(port())
        _, first = self.run_script(machine, "")
        _, second = self.run_script(machine, "/update")
        self.assertTrue(second.startswith(machine.read("SERVER.txt")))
        self.assertIn("Status=Success", machine.read("SERVER.txt"))
        log = machine.read("SERVER.log")
        self.assertRegex(log, r"==== .* /q /p /update\n(?s:.*)==== .* /q /update\n")
        self.assertIn("Status=Preview", log)
        self.assertTrue(log.endswith(machine.read("SERVER.txt")))

    def test_xml_leaves_the_files_that_tarnfleet_reads(self):
        machine = self.server(port(script=REBOOT))
        self.assertEqual(self.run_script(machine, "/xml")[0], 0)
        self.assertIn("Download preview succeeded.", machine.read("SERVER.xml"))
        self.assertFalse((machine.path / "SERVER.query.xml").exists())
        code, output = self.run_script(machine, "/update /xml")
        self.assertEqual(code, 3010, output)
        self.assertEqual(machine.read("SERVER.code"), "0\n")
        self.assertIn("A reboot is required", machine.read("SERVER.xml"))
        self.assertIn('<Application componentType="firmware" version="14.2.1.1"/>', machine.read("SERVER.query.xml"))
        self.assertEqual(sum("download" in call for call in machine.calls()), 1)
        self.run_script(machine, "")
        self.assertEqual([file.name for file in machine.path.glob("SERVER.*ml")], [])

    def test_what_is_no_whole_run_is_no_success(self):
        for name, spoil in {"missing": Path.unlink, "no program": lambda file: file.write_text("text"),
                            "another program": lambda file: shutil.copy(file.with_name("winhbcfg.exe"), file)}.items():
            with self.subTest(name):
                machine = self.server(port())
                spoil(machine.path / "tarnlift.exe")
                code, output = self.run_script(machine, "/update")
                self.assertEqual(code, 100, output)
                self.assertRegex(output, "SERVER: FAILED - .*(is missing|was not started or did not come to its end)")

    def test_a_killed_run_leaves_its_output_and_goes_to_the_log(self):
        machine = self.server(port(), port(2, serial="S2", script="@download delay=60000"))
        quiet = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
        with subprocess.Popen([*WINE, *self.command(machine, "/update")], **quiet) as run:
            deadline = time.monotonic() + 60
            while not self.first_port_is_done(machine):
                self.assertLess(time.monotonic(), deadline, "the first download did not end")
                time.sleep(0.1)
            for arguments in "", "/xml":
                code, output = self.run_script(machine, arguments)
                self.assertEqual(code, 100, output)
                self.assertIn("cannot be replaced. Is another run going on?", output)
            for program in "tarnlift.exe", "cmd.exe", "winhbcfg.exe":
                wine("taskkill", "/f", "/im", program)
            run.wait()
        while (code := self.run_script(machine, "")[0]) == 100:  # the killed processes may hold the file for a moment
            self.assertLess(time.monotonic(), deadline, "the killed run still holds its output")
        self.assertEqual(code, 0)
        log = machine.read("SERVER.log")
        self.assertRegex(log, "did not come to its end:\n(?s:.*)Status=Success(?s:.*)==== .* /q /p /update\n")

    def first_port_is_done(self, machine):
        return (machine.path / "SERVER.txt").exists() and "Status=Success" in machine.read("SERVER.txt")


unittest.main()
