"""Input and children that nobody would send on purpose."""
import unittest

from machine import WINDOWS, MachineTest, linux_only, port

NO_ADAPTERS = "\ntarnlift.exe: Error - no supported Velmar HBAs found - Return Code=5\n\n\n"


class Hostile(MachineTest):
    def test_utilities_that_list_nothing(self):
        for script in ("", "@listattr cut=0 exit=3", "@listattr crash", "@print no adapters"):
            with self.subTest(script):
                machine = self.machine(script=script)
                self.assertEqual(machine.run("/q"), (5, NO_ADAPTERS))
                self.assertEqual(machine.left_in_temp(), [])

    def test_a_utility_that_is_missing_or_no_program(self):
        machine = self.machine()
        (machine.path / "winhbcfg.exe").write_text("text")
        self.assertEqual(machine.run("/q"), (5, NO_ADAPTERS))
        (machine.path / "winhbcfg.exe").unlink()
        self.assertEqual(machine.run("/q"), (5, NO_ADAPTERS))
        self.assertEqual(machine.left_in_temp(), [])
        if not WINDOWS:
            self.assertRegex(machine.stderr, "^cannot run .*/winhbcfg.exe: .*\n$")

    def test_a_temp_directory_that_cannot_be_used(self):
        machine = self.machine(port())
        self.assertEqual(machine.run("/q", temp=machine.path / "gone"), (5, NO_ADAPTERS))
        self.assertEqual(machine.calls(), [])
        (machine.path / "blank dir").mkdir()
        self.assertEqual(machine.run("/q", temp=machine.path / "blank dir"), (5, NO_ADAPTERS))
        self.assertEqual(machine.calls(), ["listattr /c dir\\temp.txt"])

    def test_long_replies_are_read_as_far_as_they_fit(self):
        cases = [("fill-after=100000", 0), ("fill=5000", 0), ("fill=5200", 2), (f'reply="{"x" * 251}NO Error"', 0),
                 (f'reply="{chr(92)}r{chr(92)}nNO Error"', 0), (f'reply="a{chr(92)}0NO Error"', 2)]
        for script, code in cases:
            with self.subTest(script[:40]):
                machine = self.machine(port(script="@download " + script), matrix="QVa5202 a.grp\n",
                                       images=[(64, "14.2.1.1", "a.grp")])
                self.assertEqual(machine.run("/update")[0], code)

    def test_a_large_listing_loses_nothing(self):
        machine = self.machine(*(port(n, serial=f"S{n}", bus=f"{n % 256:X}") for n in range(1, 5001)))
        code, output = machine.run("/q")
        self.assertEqual((code, output.count("\nHBA=QVa5202, ")), (0, 5000))
        self.assertIn("WWN=10:00:00:00:00:00:00:1388, ", output)

    @linux_only
    def test_line_ends_of_both_kinds_are_one_character(self):
        machine = self.machine()
        utility = machine.path / "winhbcfg.exe"
        utility.write_text("#!/bin/sh\ncat ../list\n")
        listing = port(1) + "\n" + port(2, serial="S2")
        results = []
        for line_end in "\n", "\r\n":
            (machine.path / "list").write_bytes(listing.replace("\n", line_end).encode())
            results.append(machine.run("/q", "/xv") + (machine.read("cwd/dbg.log"),))
        self.assertEqual(results[0], results[1])
        self.assertIn("WWN=10:00:00:00:00:00:00:02,", results[0][1])

    def test_a_matrix_of_ten_thousand_lines(self):
        lines = [f"QVx{n} f{n}.grp" for n in range(9998)] + ["\0QVa5202 b.grp", "QVa5202 a.grp" + " x" * 500]
        machine = self.machine(port(), matrix="\r\n".join(lines), images=[(64, "14.2.1.1", "a.grp")])
        self.assertEqual(machine.run("/update")[0], 0)

    def test_a_file_name_of_the_table_runs_no_command(self):
        machine = self.machine(port(), matrix='QVa5202 x"&cd>hit&"\\..\\a.grp\n', images=[(64, "14.2.1.1", "a.grp")])
        self.assertEqual(machine.run("/update")[0], 7)
        self.assertEqual((machine.calls(), list((machine.path / "cwd").iterdir())), (["listattr /c"], []))


unittest.main()
