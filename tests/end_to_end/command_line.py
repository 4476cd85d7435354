"""The switches, and everything that a run does before it lists the adapters."""
import os
import re
import tempfile
import unittest

from machine import PROBE_KEY, WINDOWS, MachineTest, linux_only, port, spelled, wine

UNKNOWN = "\ntarnlift.exe: Error - Unknown switch = {} - Return Code=4\n\n"
MISSING = "\ntarnlift.exe: Error - Invalid use of the {} switch. This switch requires an argument - Return Code=4\n\n"
REFUSED = "\nInvalid options: {}\ntarnlift.exe: Error - invalid switch options - Return Code=2\n\n\n"
NO_LOG = "\ntarnlift.exe: Error - unable to open logfile {} - Return Code=4\n\n"
REWRITE, DOWNGRADE = "/rewrite cannot be used with /update or /downgrade", "/downgrade cannot be used with /update or /rewrite"
AUTO, VPD = "/auto requires an additional operational switch", "/vpd requires an additioanl operational switch"

TOO_OLD = "\nError - Unsupported OS detected - Return Code=9\n\n"

# The message before the help, the return code, and the command lines that get both.
WITH_HELP = [
    ("", 0, ["", "/?", "/H", "/help", "/update /h", "/auto", "/p /v /xml /vpd /ramdrive /id=x /fmd=y /a", "/xv", "/xv /xv"]),
    *((UNKNOWN.format(word), 4, [word]) for word in "-q q /autox /q=1 /ram /ramdrivex /lo=x /".split()),
    *((UNKNOWN.format(word), 4, [word + "=C:\\m=b"]) for word in "/ivx /fm /idd".split()), (UNKNOWN.format("/x"), 4, ["/h /x"]),
    (MISSING.format("image version"), 4, ["/iv", "/iv=="]), (MISSING.format("image directory"), 4, ["/id="]),
    (MISSING.format("fwmatrix.txt directory"), 4, ["/foo", "/fmd"]), (NO_LOG.format(""), 4, ["/log"]),
    *((NO_LOG.format(name), 4, [f"/log={name} /q"]) for name in ("no/such.txt", "Z:\\no\\such.txt")),
    ("\ntarnlift.exe: Error - cannot open multiple log files - Return Code=4\n\n", 4, ["/log=a.txt /l=b.txt"]),
]

# Switches and the whole output of a refusal with code 2.
WITHOUT_HELP = [("/update /rewrite", REWRITE), ("/e /down", REWRITE), ("/u /d", DOWNGRADE), ("/auto /q", AUTO),
                ("/update /downgrade /rewrite", REWRITE), ("/auto /iv=x.grp", AUTO), ("/vpd /iv=x.grp", VPD)]


class CommandLine(MachineTest):
    def test_errors_and_requests_print_the_whole_help(self):
        machine = self.machine()
        _, help_text = machine.run("/?")
        for message, code, lines in WITH_HELP:
            for line in lines:
                with self.subTest(line):
                    self.assertEqual(machine.run(*line.split()), (code, message + help_text))
        self.assertEqual(machine.calls(), [])

    def test_each_spelling_sets_its_flag_and_no_other(self):
        machine = self.machine()
        for flag, spellings in {"auto": "auto a", "downgrade": "downgrade down d g", "forceFw": "ff f", "preview": "preview p",
                                "query": "query q", "ramDrive": "ramdrive RamDrive=x", "rewrite": "rewrite e",
                                "update": "update up u", "verbose": "VERBOSE v"}.items():
            for spelling in spellings.split():
                self.assertEqual(machine.run("/xv", "/" + spelling, "/h")[0], 0)
                self.assertEqual(re.findall(r"(?m)^(\w+) *: 1$", machine.read("cwd/dbg.log")), [flag], spelling)

    def test_combinations_are_refused_without_help(self):
        machine = self.machine()
        for switches, why in WITHOUT_HELP:
            with self.subTest(switches):
                self.assertEqual(machine.run(*switches.split()), (2, REFUSED.format(why)))

    def test_the_help_names_the_drive(self):
        machine = self.machine()
        cases = [("/ramdrive=x: /h", {}, "x"), ("/ramdrive= /h", {}, "C")]
        cases += [] if WINDOWS else [("/h", {"SYSTEMDRIVE": "D:"}, "D"), ("/x", {"SYSTEMDRIVE": "E:"}, "E"),
                                     ("/h", {"SYSTEMDRIVE": ""}, "C")]
        for switches, env, letter in cases:
            self.assertIn(f"Default is drive {letter}:.", machine.run(*switches.split(), env=env)[1])

    def test_a_user_without_rights_is_told_before_the_switches_are_read(self):
        machine = self.machine()
        refused = (8, "\ntarnlift.exe: Error - insufficient privileges - Return Code=8\n\n")
        self.assertEqual(machine.run_without_rights("/?"), refused)
        self.assertEqual(machine.run("/?")[0], 0)
        if WINDOWS:
            self.assertNotEqual(wine("reg", "query", "HKLM\\" + PROBE_KEY).returncode, 0, "the probe key is still there")
        else:
            software = machine.path / "host/registry/HKEY_LOCAL_MACHINE/SOFTWARE"
            self.assertEqual(list(software.iterdir()), [], "the probe key is still there")

    def test_the_name_that_the_program_was_started_by_has_a_limit(self):
        machine = self.machine()
        too_long = (4, "\ntarnlift.exe: Error - Unable to setup application paths - Return Code=4\n\n")
        self.assertEqual(machine.run("/h", argv0="x" * 219), too_long)
        self.assertEqual(machine.run("/h", argv0="x" * 218)[0], 0)

    def test_an_older_system_is_refused_before_all_else(self):
        machine = self.machine()
        if WINDOWS:
            self.addCleanup(wine, "winecfg", "-v", "win10")
            self.assertEqual(wine("winecfg", "-v", "win81").returncode, 0)
        else:
            (machine.path / "host").mkdir()
            (machine.path / "host/os-version").write_text("6.3")
        self.assertEqual(machine.run_without_rights("/?"), (9, TOO_OLD))

    @linux_only
    def test_an_update_goes_on_without_a_reader_of_its_output(self):
        machine = self.machine(port(), matrix="QVa5202 a.grp\n", images=[(64, "14.2.1.1", "a.grp")])
        reader, writer = os.pipe()
        os.close(reader)
        self.assertEqual(machine.run("/update", stdout=writer), (0, ""))
        os.close(writer)
        self.assertEqual(machine.calls(), ["listattr /c", "download n=1 i=M\\firmware\\a.grp"])

    def test_the_program_finds_its_directory_from_anywhere(self):
        machine = self.machine(port(), name="tarnlift with blanks ")
        code, output = machine.run("/q", through_path=True, temp=tempfile.gettempdir())
        self.assertEqual((code, output.count("\nHBA=")), (0, 1))

    def test_a_log_gets_what_the_user_sees_and_s_mutes_the_console_only(self):
        machine = self.machine(port())
        _, shown = machine.run("/q")
        self.assertEqual(machine.run("/log=a.txt", "/q"), (0, shown))
        self.assertEqual(machine.run("/l=a.txt", "/s", "/q"), (0, ""))
        self.assertEqual(machine.read("cwd/a.txt"), shown + shown)
        self.assertEqual(machine.run("/s", "/nosuch"), (4, ""))
        self.assertTrue(machine.run("/nosuch", "/s")[1].endswith("\n\n"))

    def test_directories_and_the_temp_file_follow_the_switches(self):
        machine = self.machine(port())
        (machine.path / "cwd/other").mkdir()
        (machine.path / "fwmatrix.txt").rename(machine.path / "cwd/other/fwmatrix.txt")
        drive = machine.drive("r")
        code, output = machine.run("/q", "/v", "/xv", "/fmd=other", "/id==other=x", "/ramdrive=R:")
        self.assertEqual(code, 0)
        self.assertIn("listattr /c > R:\\temp.txt\"", output)
        self.assertEqual(list(drive.iterdir()), [])
        self.assertIn("Firmware path        : other\\firmware\\\n", machine.read("cwd/dbg.log"))
        self.assertIn("Fwmatrix.txt         : other\\fwmatrix.txt\n", machine.read("cwd/dbg.log"))

    def test_a_query_without_its_table_or_adapters_ends_in_plain_text(self):
        machine = self.machine(matrix=None)
        no_table = "\ntarnlift.exe: Error - fwmatrix update table not found - Return Code=2\n\n\n"
        self.assertEqual(machine.run("/q", "/xml"), (2, no_table))
        self.assertEqual(machine.calls(), [])
        no_adapters = "\ntarnlift.exe: Error - no supported Velmar HBAs found - Return Code=5\n\n\n"
        self.assertEqual(machine.run("/auto", "/update", "/xml"), (5, no_adapters))
        (machine.path / "firmware").rmdir()
        no_directory = "\ntarnlift.exe: Error - the firmware subdirectory was not found - Return Code=6\n\n\n"
        self.assertEqual(machine.run("/auto", "/update"), (6, no_directory))

    def test_only_auto_needs_the_firmware_directory(self):
        machine = self.machine(port(), matrix="QVa5202 a.grp\n")
        (machine.path / "firmware").rmdir()
        sentence = "\n\ntarnlift.exe: No compatible firmware found - Return Code=7\n\n\n"
        self.assertEqual(machine.run("/update"), (7, sentence))

    def test_iv_shows_the_version_of_one_file(self):
        machine = self.machine(matrix=None)
        iv = "\ntarnlift.exe: Error - {} - Return Code=19\n\n"
        unreadable, unknown = (19, iv.format("Unable to decode the image version")), (19, iv.format("Unknown image file type"))
        for family, version, size, result in [(64, "14.4.188.1", 4096, (0, "14.4.188.1\n")), (67, "x", 140, (0, "\n")),
                                              (65, "1.1", 139, unreadable), (66, "1" * 128, 140, unreadable)]:
            machine.image(family, version, "a.grp", size)
            self.assertEqual(machine.run(f"/iv={spelled(machine.path)}\\firmware\\a.grp", "/update"), result)
        path = spelled(machine.path) + "\\firmware\\"
        machine.image(64, "14.4.188.1", "a.grp")
        for length, result in (254, (0, "14.4.188.1\n")), (255, unknown):
            name = path + "\\" * (length - len(path) - len("a.grp")) + "a.grp"
            self.assertEqual(machine.run("/iv=" + name), result, f"a path of {length} characters")
        self.assertEqual([machine.run("/iv=gone.grp"), machine.run("/vpd", "/xml", "/iv=a.bin")], [unreadable, unknown])
        self.assertEqual(machine.calls(), [])

    def test_the_diagnostic_log_is_written_while_it_is_there(self):
        machine = self.machine(port())
        (machine.path / "RM.INI").write_text("NOSUCH=1\nDBG_MODE=1\n")
        _, quiet = machine.run("/q")
        (machine.path / "vlmdbg.log").write_text("")
        self.assertEqual(machine.run("/q")[1], "Unkonw Token Found" + quiet)
        head = r"\(\d\d:\d\d:\d\d\.\d{3}\) \(\d+\) "
        self.assertRegex(machine.read("vlmdbg.log"), "^" + head + "########started execution of tarnlift########\n\n"
                         "tarnlift.exe : Command complete - Command Return Code = 0 - Temp File Status = 0\n\n"
                         + head + r"\[Begin execution\]" + "\n" + head + "operation     = query only\n$")


unittest.main()
