"""Input, names, children and ends of a run that nobody would cause on purpose."""
import os
import pty
import re
import shutil
import signal
import struct
import subprocess
import tempfile
import unittest
from pathlib import Path

from machine import BIN, WINDOWS, WINE, MachineTest, linux_only, port, spelled, windows_only

NO_ADAPTERS = "\ntarnlift.exe: Error - no supported Velmar HBAs found - Return Code=5\n\n\n"
LIST = "listattr /c"
NOT_RUN = "tarnlift.exe: the adapter utility was not run: "
TWO_PERCENT = NOT_RUN + "cmd.exe would replace the text between two % in its command line\n"
SPECIAL = NOT_RUN + "the path of the temp file holds one of & | < > ^\n"

# Exit statuses of the utility with an outcome of their own, for a reply with "NO Error" and for another one.
GOOD_STATUSES = {80: 1, 87: 22, 96: 29}
BAD_STATUSES = {89: 23, 90: 24, 92: 28, 98: 30, 70: 31, 103: 32, 104: 33, 105: 34, 106: 35, 107: 36}
SUCCESS, FAILURE = 0, 3


class Hostile(MachineTest):
    def board(self, *ports, matrix="QVa5202 a.grp\n"):
        return self.machine(*ports, matrix=matrix, images=[(64, "14.2.1.1", "a.grp")])

    def messages(self, machine):
        """What the last run wrote to standard error, without what Wine says of events."""
        lines = machine.stderr.replace("\r\n", "\n").splitlines(keepends=True)
        return "".join(line for line in lines if ":advapi:" not in line and ":eventlog:" not in line)

    def assert_nothing_listed(self, machine, case):
        self.assertEqual((machine.run("/q"), machine.left_in_temp()), ((5, NO_ADAPTERS), []), case)

    # The utility.

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

    def test_long_replies_are_read_as_far_as_they_fit(self):
        cases = [("fill-after=100000", 0), ("fill=5000", 0), ("fill=5200", 2), (f'reply="{"x" * 251}NO Error"', 0),
                 (f'reply="{chr(92)}r{chr(92)}nNO Error"', 0), (f'reply="a{chr(92)}0NO Error"', 2)]
        for script, code in cases:
            self.assertEqual(self.board(port(script="@download " + script)).run("/update")[0], code, script[:40])

    def test_a_reply_counts_however_late_it_comes_and_however_the_utility_ends(self):
        for script in ("delay=300", "fill-after=9000000", "crash-after"):
            machine = self.board(port(script="@download " + script))
            self.assertEqual((machine.run("/update")[0], machine.left_in_temp()), (0, []), script)

    def test_a_large_listing_loses_nothing(self):
        machine = self.machine(*(port(n, serial=f"S{n}", bus=f"{n % 256:X}") for n in range(1, 5001)))
        code, output = machine.run("/q")
        self.assertEqual((code, output.count("\nHBA=QVa5202, ")), (0, 5000))

    def test_line_ends_of_both_kinds_are_one_character(self):
        machine = self.machine(port(1), port(2, serial="S2"))
        adapters = machine.path / "adapters.txt"
        results = []
        for line_end in b"\n", b"\r\n":
            adapters.write_bytes(adapters.read_bytes().replace(b"\n", line_end))
            results.append(machine.run("/q", "/xv") + (machine.read("cwd/dbg.log"),))
        self.assertEqual(results[0], results[1])
        self.assertIn("WWN=10:00:00:00:00:00:00:02,", results[0][1])

    def test_each_exit_status_has_its_outcome(self):
        statuses = sorted({0, 1, 79, 81, 255, *GOOD_STATUSES, *BAD_STATUSES}) if WINDOWS else range(256)
        wanted = [(status, "NO Error", GOOD_STATUSES.get(status, SUCCESS)) for status in statuses]
        wanted += [(status, "bad", BAD_STATUSES.get(status, FAILURE)) for status in statuses]
        ports = [port(n, serial=f"S{n}", script=f'@download exit={status} reply="{reply}"')
                 for n, (status, reply, _) in enumerate(wanted, 1)]
        _, document = self.board(*ports).run("/update", "/xml")
        outcomes = map(int, re.findall(r'Status status="(\d+)"', document))
        self.assertEqual([(status, reply, outcome) for (status, reply, _), outcome in zip(wanted, outcomes)], wanted)

    @linux_only
    def test_what_a_child_writes_after_its_end_is_no_reply(self):
        """The first download leaves a process running that writes NO Error into its file during the second."""
        machine = self.board()
        (machine.path / "list").write_text("\n".join(port(n, serial=f"S{n}") for n in (1, 2)))
        (machine.path / "winhbcfg.exe").write_text("""#!/bin/sh
            [ $1 = listattr ] && exec cat ../list
            if [ $2 = n=1 ]; then
                (sleep .2; echo NO Error; exec sleep 60) 2>&- &
                echo $! >../late
            else
                sleep .5
            fi
            echo bad
            """)
        result = machine.run("/update")[0], machine.left_in_temp()
        os.kill(int(machine.read("late")), signal.SIGKILL)
        self.assertEqual(result, (2, []))

    def test_the_utility_inherits_no_file_of_the_run(self):
        machine = self.board(port())
        (machine.path / "vlmdbg.log").touch()
        if WINDOWS:
            shutil.copy(BIN / "open_files.exe", machine.path / "winhbcfg.exe")
        else:
            (machine.path / "winhbcfg.exe").write_text("#!/bin/sh\nfiles=$(readlink /proc/$$/fd/*)\necho \"$files\" >../open_files.txt\n")
        machine.run("/update", "/xv", "/log=user.log")
        inherited = machine.read("open_files.txt")
        self.assertIn("temp.txt", inherited, "it does inherit the file for its output")
        for name in "dbg.log", "user.log", "vlmdbg.log", "fwmatrix.txt":
            self.assertNotIn(name, inherited)

    # Names.

    def test_a_name_in_the_table_runs_no_command_and_opens_no_other_file(self):
        for name in 'x"&cd>hit&"\\..\\a.grp', "%CMDCMDLINE:~-1%&cd>h&\\..\\a.grp", "%OS%\\..\\a.grp":
            machine = self.board(port(), matrix=f"QVa5202 {name}\n")
            replaced = "%" in name and WINDOWS  # the system sees a.grp, so the file is there and the download is due
            self.assertEqual(machine.run("/update")[0], 2 if replaced else 7, name)
            self.assertEqual((machine.calls(), list((machine.path / "cwd").iterdir())), ([LIST], []), name)
            self.assertEqual(self.messages(machine), TWO_PERCENT if replaced else "")

    @windows_only
    def test_a_line_end_in_a_path_ends_no_command_line(self):
        for line_end in "\r", "\n":
            machine = self.board(port())
            self.assertEqual(machine.run("/update", f"/id=x{line_end}y\\..\\..")[0], 2)  # the same as /id=..
            self.assertEqual(machine.calls(), [LIST])
            self.assertEqual(self.messages(machine), NOT_RUN + "a path in its command line holds a line end\n")

    def test_names_in_the_firmware_directory_that_no_file_has(self):
        machine = self.board(port(fw="1.0.0.0"))
        names = ['e" > \\x\\v .grp', 'a"b.grp', "a\nHBA=x.grp"]
        if WINDOWS:  # its code page turns full-width characters into ordinary ones, and the names into these paths
            names = [path.translate({ord("%"): "\uff05", ord("\\"): "\uff3c"})
                     for path in ("%OS%\\..\\hidden\\b.grp", "x\\..\\hidden\\b.grp")]
            (machine.path / "firmware/hidden").mkdir()
            machine.image(64, "15.0.0.0", "hidden/b.grp")
        for name in names:
            machine.image(64, "15.0.0.0", name)
        code, output = machine.run("/auto", "/update", env={"LC_ALL": "C.UTF-8"})
        self.assertIn("Image=a.grp, New=14.2.1.1,", output, "another image was chosen")
        self.assertEqual((code, machine.calls()), (0, [LIST, "download n=1 i=M\\firmware\\a.grp"]))

    def test_a_temp_directory_that_cannot_be_used(self):
        machine = self.machine(port())
        (machine.path / "blank dir").mkdir()
        cases = [("blank dir", [LIST + " dir\\temp.txt"], ""), ("gone", [], "")]
        if WINDOWS:
            cases += [("x&winhbcfg.exe", [], SPECIAL), ("x^/..", [], SPECIAL), ("%OS%/..", [], TWO_PERCENT)]
        for temp, calls, message in cases:
            self.assertEqual((machine.run("/q", temp=machine.path / temp), machine.calls()), ((5, NO_ADAPTERS), calls), temp)
            self.assertIn(message, self.messages(machine), temp)

    def test_one_percent_sign_is_an_ordinary_character(self):
        machine = self.machine(port(), matrix="QVa5202 a%b.grp\n", images=[(64, "14.2.1.1", "a%b.grp")])
        self.assertEqual(machine.run("/update")[0], 0)
        self.assertEqual(machine.calls(), [LIST, "download n=1 i=M\\firmware\\a%b.grp"])
        (machine.path / "te%mp").mkdir()
        self.assertEqual(machine.run("/q", temp=machine.path / "te%mp")[0], 0)

    def long_directory(self, length):
        """Makes a directory whose path has `length` characters for the program."""
        parent = Path(tempfile.gettempdir())
        directory = parent / ("d" * (length - len(spelled(parent)) - 1))
        directory.mkdir()
        self.addCleanup(shutil.rmtree, directory)
        return directory

    def test_a_command_line_that_is_too_long_is_not_run(self):
        random_part = "12345678"
        room = 216 - len(spelled(tempfile.gettempdir()) + "\\" + random_part)
        machine = self.machine(port(), name="p" * room)
        temp, images = self.long_directory(253 - len("\\temp.txt")), self.long_directory(208 - len("\\firmware"))
        machine.image(64, "14.2.1.1", "i" * 46 + ".grp")
        (machine.path / "firmware").rename(images / "firmware")
        code, output = machine.run("/auto", "/update", "/xv", f"/id={spelled(images)}", temp=temp, argv0="tarnlift.exe")
        self.assertEqual((code, machine.calls()), (2, [LIST]), output)
        self.assertEqual(self.messages(machine), NOT_RUN + "its command line is too long\n")
        self.assertNotIn("too long", machine.read("cwd/dbg.log"))

    def test_an_old_temp_file_that_stays_is_named(self):
        machine = self.machine(port())
        (machine.path / "temp/temp.txt").mkdir()
        self.assertEqual((machine.run("/q", "/xv"), machine.calls()), ((5, NO_ADAPTERS), []))
        self.assertRegex(self.messages(machine), f"^{NOT_RUN}the old file .*.temp.txt can be neither removed nor emptied\n$")
        self.assertNotIn("removed", machine.read("cwd/dbg.log"))

    # Sizes and ends.

    def test_the_size_of_an_image_does_not_matter(self):
        machine = self.board(port())
        machine.image(64, "14.4.1.1", "large.grp")
        for size in 3 << 30, 5 << 30:
            os.truncate(machine.path / "firmware/large.grp", size)
            self.assertEqual(machine.run("/iv=..\\firmware\\large.grp"), (0, "14.4.1.1\n"), size)
        machine.run("/auto", "/update")
        self.assertEqual(machine.calls(), [LIST, "download n=1 i=M\\firmware\\large.grp"])

    def test_a_matrix_of_ten_thousand_lines(self):
        lines = [f"QVx{n} f{n}.grp" for n in range(9998)] + ["\0QVa5202 b.grp", "QVa5202 a.grp" + " x" * 500]
        self.assertEqual(self.board(port(), matrix="\r\n".join(lines)).run("/update")[0], 0)

    def test_a_run_that_was_killed_misleads_no_later_one(self):
        next_utilities = [("lists nothing", "@listattr cut=0", "", 5), ("replies nothing", "", '@download reply=""', 2),
                          ("is sound", "", "", 0)]
        for call in 1, 2:
            for name, listing, download, code in next_utilities:
                with self.subTest(f"killed at call {call}, then a utility that {name}"):
                    machine = self.board(port(script="@download delay=400"))
                    machine.set_ports(port(script="@download delay=400"), script="@listattr delay=400")
                    killed, _ = machine.run_killed("/update", call=call)
                    self.assertNotIn(killed, range(10), "the run was not killed")
                    self.assertEqual(len(machine.calls()), call)
                    self.assertEqual([file.name for file in machine.left_in_temp()], ["temp.txt"])
                    machine.set_ports(port(script=download), script=listing)
                    self.assertEqual((machine.run("/update")[0], machine.left_in_temp()), (code, []))

    # Windows itself.

    @windows_only
    def test_without_comspec_no_program_of_the_current_directory_is_run(self):
        machine = self.machine(port())
        shutil.copy(BIN / "open_files.exe", machine.path / "cwd/cmd.exe")
        self.assertEqual(machine.run("/q", launch=["--unset", "COMSPEC"])[0], 0)
        self.assertEqual([file.name for file in (machine.path / "cwd").iterdir()], ["cmd.exe"])

    @windows_only
    def test_a_console_gets_messages_and_not_single_characters(self):
        machine = self.machine()
        _, help_text = machine.run("/?")
        ours, console = pty.openpty()
        with subprocess.Popen([*WINE, machine.path / "tarnlift.exe", "/?"], stdin=console, stdout=console, stderr=console,
                              env={**os.environ, "WINEDEBUG": "-all", "TERM": "xterm"}) as program:
            os.close(console)
            traffic = 0
            try:
                while chunk := os.read(ours, 65536):
                    traffic += len(chunk)
            except OSError:  # its last writer has closed it
                pass
        os.close(ours)
        self.assertEqual(program.returncode, 0)
        self.assertLess(traffic, 3 * len(help_text), "each character is a call of its own, with its control sequences")

    @windows_only
    def test_the_program_is_linked_with_the_defences_of_the_system(self):
        program = (BIN / "tarnlift.exe").read_bytes()
        headers = struct.unpack_from("<I", program, 0x3C)[0]
        characteristics = struct.unpack_from("<H", program, headers + 24 + 70)[0]
        for flag, name in (0x20, "high-entropy-va"), (0x40, "dynamicbase"), (0x100, "nxcompat"), (0x8000, "tsaware"):
            self.assertTrue(characteristics & flag, name)


unittest.main()
