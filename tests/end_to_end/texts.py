"""Whole texts of the program, compared with the files in texts/. Times and paths are replaced by words.

To accept what the program prints now: TARNLIFT_ACCEPT_TEXTS=1 ctest --preset native -R texts, and read the diff.
"""
import difflib
import os
import re
import unittest
from pathlib import Path

from machine import WINDOWS, MachineTest, port, spelled

TEXTS = Path(__file__).parent / "texts"
LOG_HEAD = re.compile(r"^\(\d\d:\d\d:\d\d\.\d{3}\) \(\d+\) ", re.MULTILINE)


def short_port(*values, **keys):
    """A port without the lines of the listing that decide nothing."""
    left_out = ["PCI_Dev_Number", "PCI_Fun_Number", "Vendor_ID", "Sub_Device_ID", "Sub_Vendor_ID", "RevID", "SFJ", "Flash_Part"]
    return port(*values, **dict.fromkeys(left_out), **keys)


class Texts(MachineTest):
    def server(self, first=1, last=7, make=short_port):
        """Two boards of two ports, one of which refuses its image, and ports that end without a download."""
        ports = [
            make(1, script="@download exit=80"),
            make(2),
            make(3, "QVa7102", "F500", serial="S2", script='@download exit=92 reply="Error: not on this board"'),
            make(4, "QVa7102", "F500", serial="S2"),
            make(5, "QVa6100", "F400", serial="S3"),
            make(6, "QVa6104", "F400", serial="S4"),
            make(7, "QVa5202", fw="NONE", serial="S5"),
        ]
        return self.machine(
            *ports[first - 1:last],
            matrix="QVa5202 new.grp\nQVa7102 low.grp\nQVx9999 new.grp\nQVa6100\n",
            images=[(64, "14.2.1.1", "new.grp"), (66, "14.2.0.5", "low.grp"), (66, "12.8.0.5", "older.grp"),
                    (66, "12.6.0.5", "oldest.grp")])

    def compare(self, machine, name, text):
        temp = spelled(machine.path / "temp") if WINDOWS else str(machine.path / "temp")
        text = text.replace(temp, "TEMP").replace(spelled(machine.path), "DIRECTORY")
        lines = LOG_HEAD.sub("(TIME) (PROCESS) ", text).splitlines(keepends=True)
        file = TEXTS / name
        if os.environ.get("TARNLIFT_ACCEPT_TEXTS"):
            file.write_text("".join(lines))
        wanted = file.read_text().splitlines(keepends=True)
        diff = "".join(difflib.unified_diff(wanted, lines, f"texts/{name}", "the program's text", n=3))
        if diff:
            self.fail(f"the program's text differs from texts/{name}:\n{diff}")

    def test_the_help(self):
        machine = self.server()
        self.compare(machine, "help.txt", machine.run("/?")[1])

    def test_each_line_of_both_logs(self):
        machine = self.server(last=2, make=port)
        (machine.path / "vlmdbg.log").write_text("")
        (machine.path / "RM.INI").write_text("DBG_MODE=1\n")
        machine.run("/update", "/xv")
        self.compare(machine, "dbg.log", machine.read("cwd/dbg.log"))
        self.compare(machine, "vlmdbg.log", machine.read("vlmdbg.log"))

    def test_each_line_of_v(self):
        machine = self.server()
        self.compare(machine, "update-v.txt", machine.run("/update", "/v")[1])

    def test_each_line_of_v_under_auto_and_downgrade(self):
        machine = self.server(first=3, last=5)
        self.compare(machine, "auto-downgrade-v.txt", machine.run("/auto", "/downgrade", "/v")[1])

    def test_the_document_of_an_update_with_later_ports_of_a_good_and_a_failed_board(self):
        machine = self.server()
        self.compare(machine, "update.xml", machine.run("/update", "/xml")[1])


unittest.main()
