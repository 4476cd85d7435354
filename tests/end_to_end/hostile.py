"""Input and children that nobody would send on purpose."""
import re
import unittest
from itertools import product

from machine import WINDOWS, MachineTest, linux_only, port

NO_ADAPTERS = "\ntarnlift.exe: Error - no supported Velmar HBAs found - Return Code=5\n\n\n"


class Hostile(MachineTest):
    def board(self, *ports, matrix="QVa5202 a.grp\n"):
        return self.machine(*ports, matrix=matrix, images=[(64, "14.2.1.1", "a.grp")])

    def assert_nothing_listed(self, machine, case):
        self.assertEqual((machine.run("/q"), machine.left_in_temp()), ((5, NO_ADAPTERS), []), case)

    def test_utilities_that_list_nothing(self):
        for script in ("", "@listattr cut=0 exit=3", "@listattr crash", "@print no adapters"):
            self.assert_nothing_listed(self.machine(script=script), script)

    def test_a_utility_that_is_missing_or_no_program(self):
        machine = self.machine()
        utility = machine.path / "winhbcfg.exe"
        for spoil in (lambda: utility.chmod(0o644)), (lambda: utility.write_text("text")), utility.unlink, utility.mkdir:
            spoil()
            self.assert_nothing_listed(machine, spoil)
            self.assertRegex(machine.stderr, "^" if WINDOWS else "^cannot run .*/winhbcfg.exe: .*\n$")

    def test_a_temp_directory_that_cannot_be_used(self):
        machine = self.machine(port())
        (machine.path / "blank dir").mkdir()
        refused = ["x&winhbcfg.exe", "x^/..", "%OS%/.."] * WINDOWS  # more than a path to the interpreter
        for temp, calls in [("blank dir", ["listattr /c dir\\temp.txt"])] + [(name, []) for name in ["gone", *refused]]:
            self.assertEqual((machine.run("/q", temp=machine.path / temp), machine.calls()), ((5, NO_ADAPTERS), calls))

    def test_long_replies_are_read_as_far_as_they_fit(self):
        cases = [("fill-after=100000", 0), ("fill=5000", 0), ("fill=5200", 2), (f'reply="{"x" * 251}NO Error"', 0),
                 (f'reply="{chr(92)}r{chr(92)}nNO Error"', 0), (f'reply="a{chr(92)}0NO Error"', 2)]
        for script, code in cases:
            self.assertEqual(self.board(port(script="@download " + script)).run("/update")[0], code, script[:40])

    def test_a_large_listing_loses_nothing(self):
        machine = self.machine(*(port(n, serial=f"S{n}", bus=f"{n % 256:X}") for n in range(1, 5001)))
        code, output = machine.run("/q")
        self.assertEqual((code, output.count("\nHBA=QVa5202, ")), (0, 5000))

    def scripted(self, ports=(1, 2)):
        """A machine with boards of one port. Returns it, and what gives it a shell script as its utility."""
        machine = self.board()
        (machine.path / "list").write_text("\n".join(port(n, serial=f"S{n}") for n in ports))
        return machine, lambda script: (machine.path / "winhbcfg.exe").write_text("#!/bin/sh\n" + script)

    @linux_only
    def test_line_ends_of_both_kinds_are_one_character(self):
        machine, utility = self.scripted()
        results = []
        for end in "", "\\r":
            utility(f"sed 's/$/{end}/' ../list")
            results.append(machine.run("/q", "/xv") + (machine.read("cwd/dbg.log"),))
        self.assertEqual(results[0], results[1])
        self.assertIn("WWN=10:00:00:00:00:00:00:02,", results[0][1])

    @linux_only
    def test_each_exit_status_has_its_outcome(self):
        machine, utility = self.scripted(range(512))
        utility("[ $1 = listattr ] && exec cat ../list; [ ${2#n=} -gt 255 ] || echo NO Error; exit ${2#n=}")
        good, bad = {80: 1, 87: 22, 96: 29}, dict(zip((89, 90, 92, 98, 70, *range(103, 108)), (23, 24, 28, *range(30, 37))))
        outcomes = [good.get(n, 0) for n in range(256)] + [bad.get(n, 3) for n in range(256)]
        self.assertEqual(re.findall(r'Status status="(\d+)"', machine.run("/update", "/xml")[1]), list(map(str, outcomes)))

    @linux_only
    def test_only_what_a_child_has_written_until_its_end_is_its_reply(self):
        for script, code in [("printf 'NO Er'; sleep .1; echo ror", 0), ("echo NO Error; exec >&-; sleep .1", 0),
                             ("echo NO Error; yes | head -c 9000000", 0), ("echo NO Error; kill -9 $$", 0),
                             ("[ $2 = n=2 ] && sleep .5 || { (sleep .2; echo NO Error; sleep 130) 2>&- & }; echo bad", 2)]:
            machine, utility = self.scripted()
            utility("[ $1 = listattr ] && exec cat ../list;" + script)
            self.assertEqual((machine.run("/update")[0], machine.left_in_temp()), (code, []), script)

    @linux_only
    def test_a_run_that_was_killed_misleads_no_later_one(self):
        answer, kill = "[ $1 != listattr ] && echo NO Error || cat ../list\n", "[ $(wc -l <../n) != %d ] || kill -9 $PPID\n"
        for call, first, (script, code) in product(
                (1, 2, 3), (answer + kill, kill + answer), [("", 5), ("[ $1 = listattr ] && cat ../list", 2), (answer, 0)]):
            machine, utility = self.scripted()
            utility("echo >>../n\n" + first % call)
            killed = machine.run("/update")[0]
            utility(script)
            self.assertEqual((killed, machine.run("/update")[0], machine.left_in_temp()), (-9, code, []), (call, first, script))

    def test_a_matrix_of_ten_thousand_lines(self):
        lines = [f"QVx{n} f{n}.grp" for n in range(9998)] + ["\0QVa5202 b.grp", "QVa5202 a.grp" + " x" * 500]
        self.assertEqual(self.board(port(), matrix="\r\n".join(lines)).run("/update")[0], 0)

    def test_a_file_name_of_the_table_runs_no_command(self):
        machine = self.board(port(), matrix='QVa5202 x"&cd>hit&"\\..\\a.grp\n')
        self.assertEqual(machine.run("/update")[0], 7)
        self.assertEqual((machine.calls(), list((machine.path / "cwd").iterdir())), (["listattr /c"], []))


unittest.main()
