"""tarnfleet plan: from saved listings to a preview of each server, whatever the listings hold."""
import os
import pty
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parents[1] / "end_to_end"))
from machine import BIN, TOP, WINDOWS, WINE, MachineTest, linux_only, port  # noqa: E402

PROGRAM = "tarnfleet.exe" if WINDOWS else "tarnfleet"
SLEEPER = BIN / ("sleeper.exe" if WINDOWS else "sleeper")
LISTING = port(1) + "\n" + port(2, model="QVa9999")
SWITCHES = ("/update", "/id=.", "/fmd=.")
BANNER = "PS C:\\> winhbcfg.exe listattr /c\nVelmar HBA utility, version: 5\n\n"

# Content of a listing, and what is said of it.
REFUSED = {
    "empty": (b"", "the listing is empty: it was not saved, or the server has no adapters"),
    "message": (b"'winhbcfg.exe' is not recognized", "the listing has no line 'HBA: NUMBER'; it begins with: 'winhbcfg"),
    "script": (b"HBA: 1\n@listattr crash\n", "line 2 of the listing begins with '@'"),
    "script-in-banner": (b"@calls ..\\x\nHBA: 1\n", "line 1 of the listing begins with '@'"),
    "headless": (b"Port WWN: 1\nHBA: 2\n", "line 1 of the listing is before the first 'HBA: NUMBER': Port WWN: 1"),
    "cut-off": (b"HBA: 1\nModel: QVa5202\nFW Ver", "line 3 of the listing is not 'Key: value': FW Ver"),
    "no-number": (b"HBA: one\n", "line 1 of the listing has no port's number after 'HBA:'"),
    "control": (b"HBA: 1\nModel: \0\n", "line 2 of the listing holds a control character"),
    "huge": (b"HBA: 1\n" + b"Key: value\n" * 100000, "the listing is too large"),
}

# Switches, and the message.
WRONG_SWITCHES = [
    ("/q", "a plan needs one of the switches /update, /rewrite, /downgrade and /ff"),
    ("/update /downgrade", "only one of /update, /rewrite and /downgrade"),
    ("/update /log=x", "'/log=x' cannot be used in a plan"),
    ("/update /L", "'/L' cannot be used in a plan"),
    ("/update /S", "'/S' cannot be used in a plan"),
    ("/update /v", "'/v' cannot be used in a plan"),
    ("/update /xv", "'/xv' cannot be used in a plan"),
    ("/update /iv=x", "'/iv=x' cannot be used in a plan"),
    ("/update /ramdrive", "'/ramdrive' cannot be used in a plan"),
    ("/?", "'/?' cannot be used in a plan"),
    ("update", "'update' is no switch of tarnlift.exe that a plan knows"),
    ("/update /fabc=x", "'/fabc=x' is no switch of tarnlift.exe that a plan knows"),
    ("/update /id=", "'/id=' needs a directory after '='"),
    ("/update=1", "'/update=1' takes no value"),
    ("/update /id=a=b", "'/id=a=b': there is no directory"),
    ("/update /id=nowhere", "'/id=nowhere': there is no directory"),
    ("/update /auto /id=listings", "tarnlift.exe ends with return code 6: tarnlift.exe: Error - the firmware subdirectory"),
    ("/update /fmd=listings", "tarnlift.exe ends with return code 2: tarnlift.exe: Error - fwmatrix update table not found"),
]


class Plan(MachineTest):
    def setUp(self):
        self.top = self.machine(matrix="QVa5202 a.grp\n", images=[(64, "14.2.1.1", "a.grp")], name="tarnfleet test ").path
        (self.top / "listings").mkdir()
        # Without blanks in its path, or the system's own is used.
        self.temp = TOP / "build/wine/drive_c/temp" if WINDOWS else Path(tempfile.mkdtemp(prefix="tarnfleet-test-"))
        if not WINDOWS:
            self.addCleanup(shutil.rmtree, self.temp)

    def listing(self, name="server", content=LISTING):
        content = content if isinstance(content, bytes) else content.encode()
        (self.top / "listings" / (name + ".txt")).write_bytes(content)

    def command(self, *arguments, programs=BIN):
        return [*WINE, programs / PROGRAM, *arguments]

    def start(self, *arguments, **keys):
        return {"args": self.command(*arguments, **keys), "cwd": self.top, "stdin": subprocess.DEVNULL,
                "env": {**os.environ, "TMPDIR": str(self.temp)}, "encoding": "utf-8"}

    def fleet(self, *arguments, **keys):
        done = subprocess.run(**self.start(*arguments, **keys), timeout=120, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.assertEqual(list(self.temp.glob("tarnfleet-*")), [], "directories were left")
        return done.returncode, done.stdout, done.stderr

    def plan(self, *switches, options=(), **keys):
        return self.fleet("plan", "listings", "-o", "plan", *options, "--", *(switches or SWITCHES), **keys)

    def results(self):
        return sorted(file.name for file in (self.top / "plan").iterdir() if not file.name.startswith("."))

    def read(self, name):
        return (self.top / "plan" / name).read_text()

    def programs(self, **replaced):
        """The programs in a directory of their own, some of them replaced by other files."""
        directory = self.top / "programs"
        directory.mkdir()
        for name in (PROGRAM, "tarnlift.exe", "winhbcfg.exe"):
            shutil.copy(replaced.get(name.split(".")[0], BIN / name), directory / name)
        return directory

    def script(self, text):
        """A program of a few shell commands."""
        file = self.top / "script"
        file.write_text("#!/bin/sh\n" + text + "\n")
        file.chmod(0o755)
        return file

    def test_a_listing_is_understood_however_it_was_saved(self):
        self.listing("plain")
        self.listing("crlf", (BANNER + LISTING).replace("\n", "\r\n"))
        self.listing("mark", b"\xef\xbb\xbf" + LISTING.encode())
        self.listing("power shell", (BANNER + LISTING).replace("\n", "\r\n").encode("utf-16"))
        self.listing("big-endian", b"\xfe\xff" + LISTING.encode("utf-16-be"))
        (self.top / "listings/notes.md").write_text("no listing")
        before = {file: file.read_bytes() for file in self.top.rglob("*") if file.is_file()}
        self.assertEqual(self.plan(), (0, "Planned 5 of 5 servers.\nWhat it says: tarnfleet status plan\n", ""))
        self.assertEqual({file: file.read_bytes() for file in before}, before)
        names = ["big-endian", "crlf", "mark", "plain", "power shell"]
        self.assertEqual(self.results(), sorted(name + end for name in names for end in (".code", ".xml")))
        self.assertEqual({self.read(name + ".code") for name in names}, {"0\n"})
        self.assertEqual(len({self.read(name + ".xml") for name in names}), 1)
        report = self.read("plain.xml")
        self.assertEqual([report.count(text) for text in ('status="17"', 'status="16"', "</Device>")], [1, 1, 2])
        code, told, _ = self.fleet("status", "plan")
        self.assertEqual(code, 0)
        self.assertRegex(told, "(?m)^would-update +5 ")
        self.assertIn("nothing was written", told)

    def test_a_listing_that_is_not_understood_is_named_and_the_others_go_on(self):
        self.listing("good")
        for name, (content, _) in REFUSED.items():
            self.listing(name, content)
        (self.top / "listings/folder.txt").mkdir()
        self.listing("web.query")
        code, told, problems = self.plan()
        self.assertEqual((code, problems), (2, ""))
        self.assertIn("Planned 1 of 12 servers.", told)
        for name, (_, reason) in REFUSED.items():
            self.assertRegex(told, f"(?m)^    {name} +" + reason.replace("(", r"\("))
            self.assertIn(reason, self.read(name + ".refused"))
            self.assertFalse((self.top / "plan" / (name + ".xml")).exists())
        self.assertRegex(told, "folder +the listing is not a regular file")
        self.assertRegex(told, "web.query +NAME.query.xml is the query of a server NAME")
        code, told, _ = self.fleet("status", "plan")
        self.assertEqual(code, 2)
        self.assertRegex(told, "cut-off +no-report +- +not planned: line 3 of the listing is not 'Key: value': FW Ver")

    @linux_only
    def test_no_kind_of_file_and_no_name_stops_a_plan(self):
        self.listing('a "b"\n$(touch x)`\\ \u202e')
        self.listing("-o")
        self.listing("n" * 230)
        os.mkfifo(self.top / "listings/pipe.txt")
        (self.top / "listings/endless.txt").symlink_to("/dev/zero")
        (self.top / "listings/dangling.txt").symlink_to("nowhere")
        with open(self.top / "listings/gigabyte.txt", "wb") as file:
            file.truncate(1 << 30)
        code, told, _ = self.plan()
        self.assertEqual((code, len(list((self.top / "plan").glob("*.xml")))), (2, 2))
        self.assertIn("Planned 2 of 7 servers.", told)
        self.assertNotRegex(told, "[\u202e\x00-\x09\x0b-\x1f]")

    def test_switches_that_are_no_plan_are_refused(self):
        self.listing()
        for switches, message in WRONG_SWITCHES:
            with self.subTest(switches):
                code, told, problems = self.plan(*switches.split())
                self.assertEqual((code, told), (3, ""))
                self.assertTrue(problems.startswith("tarnfleet: " + message), problems)
                self.assertEqual(list((self.top / "plan").glob("*.*")), [])

    def test_wrong_arguments_are_explained(self):
        for arguments, message in [("plan", "the switches of tarnlift.exe are missing"),
                                   ("plan -o x -- /update", "the directory with the listings is missing"),
                                   ("plan listings -- /update", "-o DIR is missing"),
                                   ("plan listings /update -o x --", "'/update' is one argument too many"),
                                   ("plan listings -o x --timeout 0 -- /ff", "--timeout needs a number of seconds from 1")]:
            with self.subTest(arguments):
                code, told, problems = self.fleet(*arguments.split())
                self.assertEqual((code, told), (3, ""))
                self.assertIn(message, problems)
                self.assertIn("Usage: tarnfleet plan", problems)

    def test_files_are_found_where_the_switches_say(self):
        self.listing()
        (self.top / "my files").mkdir()
        for name in ("firmware", "fwmatrix.txt"):
            shutil.move(self.top / name, self.top / "my files")
        absolute = ("Z:" if WINDOWS else "") + str(self.top / "my files")
        for switches in (["/auto", "/UPDATE", "/id=" + absolute + "/"], ["/u", "/id=my files", "/FMD=./my files", "/p", "/q"]):
            self.assertEqual(self.plan(*switches)[0], 0)
            self.assertEqual(self.read("server.xml").count('status="17"'), 2 if "/auto" in switches else 1)
        programs = self.programs()
        for name in ("firmware", "fwmatrix.txt"):
            shutil.move(self.top / "my files" / name, programs)
        self.assertEqual(self.plan("/ff", programs=programs)[0], 0)
        self.assertEqual(self.read("server.xml").count('status="17"'), 1)

    def test_only_the_simulated_utility_is_run(self):
        self.listing()
        programs = self.programs(winhbcfg=SLEEPER)  # the real one has the same file name
        code, _, problems = self.plan(programs=programs)
        self.assertEqual(code, 3)
        self.assertIn("winhbcfg.exe is not the simulated adapter utility, and a plan runs no other", problems)
        (programs / "tarnlift.exe").write_bytes(b"text" if WINDOWS else b"MZ")
        self.assertIn("tarnlift.exe is a program of another system", self.plan(programs=programs)[2])
        rehearsal = programs / "rehearsal only - simulated adapters"
        rehearsal.mkdir()
        for name in ("tarnlift.exe", "winhbcfg.exe"):
            shutil.copy(BIN / name, rehearsal)
        self.assertEqual(self.plan(programs=programs)[0], 0)
        if WINDOWS:
            self.assertIn("Simulated adapter utility".encode("utf-16-le"), (BIN / "winhbcfg.exe").read_bytes())

    def test_the_simulator_understands_a_saved_listing_too(self):
        listed = LISTING.rstrip("\n") + "\n"
        for content in (LISTING.encode(), (BANNER + LISTING).replace("\n", "\r\n").encode("utf-16")):
            (self.top / "adapters.txt").write_bytes(content)
            done = subprocess.run([*WINE, self.top / "winhbcfg.exe", "listattr", "/c"], stdout=subprocess.PIPE, check=True)
            self.assertEqual(done.stdout.decode().replace("\r\n", "\n"), listed)
        (self.top / "adapters.txt").write_text("HBA 1\nPort WWN: 1\n")
        done = subprocess.run([*WINE, self.top / "winhbcfg.exe", "listattr"], stderr=subprocess.PIPE, check=False)
        self.assertEqual(done.returncode, 2)
        self.assertIn(b"adapters.txt:2: this line is outside a port's block, which starts with 'HBA: <number>'", done.stderr)

    def test_a_plan_replaces_only_an_earlier_plan(self):
        results = self.top / "plan"
        self.listing("old")
        self.assertEqual(self.plan()[0], 0)
        self.listing("new")
        (self.top / "listings/old.txt").unlink()
        self.assertEqual(self.plan()[0], 0)
        self.assertEqual(self.results(), ["new.code", "new.xml"])
        for name, tell_time in (("real.xml", 0), ("new.xml", time.time() + 5)):  # another server, and a later run of the same
            with self.subTest(name):
                (results / name).write_text("a result")
                os.utime(results / name, (tell_time, tell_time))
                code, _, problems = self.plan()
                self.assertEqual(code, 3)
                self.assertIn(f"{name}: the directory holds results that are not of an earlier plan", problems)
                self.assertEqual((results / name).read_text(), "a result")
                (results / name).unlink()

    def test_an_updater_that_does_not_end_is_ended(self):
        self.listing()
        started = time.monotonic()
        code, told, _ = self.plan(programs=self.programs(tarnlift=SLEEPER), options=("--timeout", "1"))
        self.assertEqual(code, 3)
        self.assertIn("server  tarnlift.exe did not end within 1 seconds", told)
        self.assertLess(time.monotonic() - started, 60)

    @linux_only
    def test_an_updater_that_is_none_is_found_out(self):
        self.listing()
        for text, message in [
                ("./winhbcfg.exe download n=1 i=x", "called the simulated utility with 'download n=1 i=x' in a preview"),
                ("exit 8", "needs an administrator's rights, even for a preview"),
                ("echo; echo text; exit 4", "tarnlift.exe ends with return code 4: text"),
                ("kill -SEGV $$", "server  tarnlift.exe was ended by signal 11"),
                ("echo winhbcfg: no room >&2; exit 5", "server  winhbcfg: no room"),
                ("echo '<?xml version=\"1.0\"?>'", "server  the report of tarnlift.exe is cut off (return code 0)")]:
            with self.subTest(text):
                code, told, problems = self.plan(programs=self.programs(tarnlift=self.script(text)))
                self.assertEqual(code, 3)
                self.assertIn(message, told + problems)
                shutil.rmtree(self.top / "programs")

    def wait_for(self, condition):
        for _ in range(600):
            if condition():
                return
            time.sleep(0.05)
        self.fail("it did not happen within 30 seconds")

    def test_an_interrupted_plan_leaves_whole_files_only(self):
        for number in range(300):
            self.listing(f"server{number}")
        with subprocess.Popen(**self.start("plan", "listings", "-o", "plan", "--", *SWITCHES), stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as running:
            self.wait_for(lambda: len(list((self.top / "plan").glob("*.xml"))) > 3)
            running.send_signal(signal.SIGINT)
            told, problems = running.communicate(timeout=60)
        self.assertEqual((running.returncode, problems), (3, "tarnfleet: interrupted\n"))
        reports = sorted((self.top / "plan").glob("*.xml"))
        self.assertIn(f"Planned {len(reports)} of 300 servers.", told)
        self.assertLess(len(reports), 300)
        self.assertTrue(all(report.read_text().endswith("</Execution>\n\n") for report in reports))
        self.assertEqual(self.results(), sorted(f.stem + end for f in reports for end in (".code", ".xml")))
        self.assertEqual(list(self.temp.glob("tarnfleet-*")), [])
        for listing in list((self.top / "listings").iterdir())[1:]:
            listing.unlink()
        self.assertEqual(self.plan()[0], 0)
        self.assertEqual(len(self.results()), 2)

    @linux_only
    def test_the_progress_line_is_for_terminals_only(self):
        self.listing()
        terminal, side = pty.openpty()
        done = subprocess.run(**self.start("plan", "listings", "-o", "plan", "--", *SWITCHES), stdout=subprocess.PIPE,
                              stderr=side, check=True)
        self.assertEqual(done.stdout.count("\r"), 0)
        self.assertIn(b"\r1 of 1 servers", os.read(terminal, 1000))


unittest.main()
