"""The states of servers and ports, in every output of tarnfleet, and what it does with hostile files and arguments."""
import csv
import io
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.path[:0] = [str(Path(__file__).parent), str(Path(__file__).resolve().parents[1] / "end_to_end")]
from cases import CASES, write_cases
from machine import BIN, WINDOWS, WINE, MachineTest, linux_only, port
from report_files import MESSAGES, Port, execution, write_server

PROGRAM = [*WINE, BIN / "tarnfleet.exe"] if WINDOWS else [BIN / "tarnfleet"]
DATA = re.compile(r'<script type="application/json" id="fleet">(.*?)</script>')


def tarnfleet(*arguments, **keys):
    """Runs the program. Returns its exit code, output and messages."""
    done = subprocess.run([*PROGRAM, *arguments], stdin=subprocess.DEVNULL, capture_output=True, timeout=120, **keys)
    return done.returncode, done.stdout.decode().replace("\r\n", "\n"), done.stderr.decode().replace("\r\n", "\n")


class Fleet(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        directory = tempfile.TemporaryDirectory(prefix="tarnfleet-")
        self.addCleanup(directory.cleanup)
        self.path = Path(directory.name)

    def rows(self, *arguments):
        return list(csv.DictReader(io.StringIO(tarnfleet("csv", *arguments)[1])))

    def page(self, *arguments):
        file = self.path / "fleet.html"
        self.assertEqual(tarnfleet("page", *arguments, "-o", file), (0, "", ""))
        return json.loads(DATA.search(file.read_text(encoding="utf-8"))[1])


class States(Fleet):
    def setUp(self):
        super().setUp()
        write_cases(self.path)
        self.expected = {case.name: (case.state, case.port_states) for case in CASES}

    def test_status_lists_each_server_in_its_state_the_worst_first(self):
        exit_code, output, messages = tarnfleet("status", self.path)
        lines = [line.split(maxsplit=3) for line in output.split("\n\n")[0].splitlines()[1:]]
        self.assertEqual((exit_code, messages), (2, ""))
        self.assertEqual({line[0]: line[1] for line in lines}, {name: state for name, (state, _) in self.expected.items()})
        order = [state["name"] for state in self.page(self.path)["states"]]
        keys = [(order.index(line[1]), line[0]) for line in lines]
        self.assertEqual(keys, sorted(keys))
        reasons = {line[0]: line[3] for line in lines}
        for case in CASES:
            self.assertIn(case.reason, reasons[case.name], case.name)
        for state in {case.state for case in CASES}:
            servers = sum(case.state == state for case in CASES)
            ports = sum(case.port_states.count(state) for case in CASES)
            self.assertRegex(output, rf"\n{state} +{servers} +{ports}\n")

    def test_csv_and_page_tell_the_same_states(self):
        found = {name: (state, []) for name, (state, _) in self.expected.items()}
        for row in self.rows(self.path):
            self.assertEqual(row["server_state"], found[row["server"]][0])
            found[row["server"]][1].extend([row["state"]] if row["state"] else [])
        self.assertEqual(found, self.expected)
        data = self.page(self.path)
        self.assertEqual({server["name"]: (server["state"], [port["state"] for port in server["ports"]])
                          for server in data["servers"]}, self.expected)
        self.assertTrue(data["preview"])

    def test_check_tells_the_same_state_of_one_server(self):
        for case in CASES:
            if not case.files.get("xml"):
                continue  # check needs a report to look at
            files = [self.path / f"{case.name}.{end}" for end in ("xml", "query.xml") if end in case.files]
            code = case.files.get("code")
            options = ["--code", code.strip()] if isinstance(code, str) else []
            options += ["--rebooted"] if "rebooted" in case.files else []
            exit_code, output, messages = tarnfleet("check", *files, *options)
            server = json.loads(output)
            self.assertEqual((exit_code, server["state"], [port["state"] for port in server["ports"]], server["reboot"]),
                             (case.exit_code, case.state, case.port_states, case.reboot), case.name)
            self.assertIn(case.reason, "; ".join(server["reasons"]), case.name)


class Directory(Fleet):
    def test_every_status_that_the_program_knows_has_a_state(self):
        for status, message in enumerate(MESSAGES):
            write_server(self.path, f"{status:02}", execution(Port(status=status)))
        expected = ["updated" if message.startswith("Download succeeded") else "skipped" if "skipped" in message else
                    "would-update" if message == "Download preview succeeded." else
                    "current" if message == "Download not needed." else "failed" for message in MESSAGES]
        found = [row["state"] for row in sorted(self.rows(self.path), key=lambda row: row["server"])]
        self.assertEqual([{"waiting": "updated", "not-verified": "updated"}.get(state, state) for state in found], expected)

    def test_servers_of_the_list_without_a_file_are_missing(self):
        write_server(self.path, "SRV1", execution(Port()))
        (self.path / "servers.txt").write_bytes("srv1\r\n\r\nsrv2 \r\nKöln\r\nsrv2\r\n".encode("utf-16"))
        data = self.page(self.path, "--servers", self.path / "servers.txt")
        self.assertEqual([(server["name"], server["state"], server["time"] is None) for server in data["servers"]],
                         [("Köln", "no-report", True), ("srv2", "no-report", True), ("SRV1", "not-verified", False)])

    def test_files_belong_to_the_server_whatever_the_case_of_their_names(self):
        write_server(self.path, "SRV1", execution(Port(), code=3))
        (self.path / "srv1.CODE").write_text("3\n")
        self.assertEqual([(row["server"], row["return_code"]) for row in self.rows(self.path)], [("SRV1", "3")])

    def test_hostile_texts_cannot_leave_their_place(self):
        markup, formula = '</script><!--<script>"&\u2028\u202e\u200f', '=HYPERLINK("x";-1)'
        write_server(self.path, "srv", execution(Port(model=markup, file=formula, before="\u0085-1\t\n")))
        row = self.rows(self.path)[0]
        self.assertEqual((row["model"], row["image_file"]), ('</script><!--<script>"&' + "\ufffd" * 3, "'" + formula.replace(";", ";'")))
        self.assertEqual(row["version_before"], "\ufffd-1  ")  # XML itself turns a tab and a line end into blanks
        self.assertEqual(self.page(self.path)["servers"][0]["ports"][0]["model"], row["model"])
        raw = DATA.search((self.path / "fleet.html").read_text(encoding="utf-8"))[1]
        self.assertNotRegex(raw, "[<>&\u2028\u2029\x00-\x1f]")

    @linux_only
    def test_any_name_and_any_kind_of_file_is_a_server_to_be_shown(self):
        for name in ("=cmd", "a\nb", "\x1b[31mred", "<b>", ".x", "-o"):
            write_server(self.path, name, execution(Port()))
        Path(os.fsdecode(os.fsencode(self.path) + b"/caf\xe9.code")).write_text("8")
        os.mkfifo(self.path / "pipe.xml")
        (self.path / "folder.xml").mkdir()
        (self.path / "device.xml").symlink_to("/dev/zero")
        (self.path / "dangling.xml").symlink_to("nowhere")
        with open(self.path / "gigabyte.xml", "wb") as file:
            file.truncate(1 << 30)
        names = [server["name"] for server in self.page(self.path)["servers"]]
        self.assertEqual(sorted(names), sorted(["=cmd", "a\ufffdb", "\ufffd[31mred", "<b>", ".x", "-o", "caf\ufffd", "pipe", "folder",
                                                "device", "dangling", "gigabyte"]))
        exit_code, output, _ = tarnfleet("status", self.path)
        self.assertEqual((exit_code, output.count("is not a regular file"), "\x1b" in output), (2, 4, False))

    @linux_only
    def test_a_file_that_cannot_be_written_leaves_the_old_one(self):
        write_server(self.path, "srv", execution(Port()))
        (self.path / "folder").mkdir()
        os.symlink("fleet.csv", self.path / "link.csv")
        (self.path / "fleet.csv").write_text("old")
        (self.path / "fleet.csv").chmod(0o600)
        self.assertEqual(tarnfleet("csv", self.path, "-o", self.path / "link.csv")[0], 0)
        self.assertTrue((self.path / "link.csv").is_symlink())
        self.assertEqual((self.path / "fleet.csv").stat().st_mode & 0o777, 0o600)
        written = (self.path / "fleet.csv").read_text()
        limited = subprocess.run(["bash", "-c", 'ulimit -f 0; trap "" XFSZ; exec "$@"', "-", *PROGRAM, "csv", self.path, "-o",
                                  self.path / "fleet.csv"], capture_output=True)
        self.assertEqual((limited.returncode, (self.path / "fleet.csv").read_text()), (3, written))
        for target in (self.path / "folder", self.path / "none/fleet.csv", "/dev/full"):
            self.assertEqual(tarnfleet("csv", self.path, "-o", target)[0], 3, target)
        self.assertEqual(sorted(file.name for file in self.path.iterdir()), ["fleet.csv", "folder", "link.csv", "srv.xml"])
        with open("/dev/full", "w") as full:
            self.assertEqual(subprocess.run([*PROGRAM, "csv", self.path], stdout=full, stderr=subprocess.PIPE).returncode, 3)


class Arguments(Fleet):
    def test_every_command_explains_itself_on_one_screen(self):
        screens = [tarnfleet("--help"), *(tarnfleet(command, "--help") for command in ("status", "page", "csv", "check"))]
        for exit_code, screen, messages in screens:
            self.assertEqual((exit_code, messages), (0, ""))
            self.assertTrue(screen.startswith("tarnfleet"))
            self.assertLessEqual((len(screen.splitlines()), max(map(len, screen.splitlines()))), (25, 80), screen)
        self.assertRegex(tarnfleet("--version")[1], r"^tarnfleet \d+(\.\d+){3}\n$")

    def test_wrong_arguments_end_with_3_and_say_what_is_wrong(self):
        self.assertEqual(tarnfleet("status", self.path)[0], 3)  # no report at all
        write_server(self.path, "srv", execution(Port()))
        for arguments, message in (
                ([], "Usage"), (["stat"], "unknown command 'stat'"), (["status"], "one directory"),
                (["status", self.path, "-o", "x"], "unknown option -o"), (["status", self.path / "none"], "none"),
                (["page", self.path], "-o FILE"), (["csv", self.path, "--servers"], "--servers needs a value"),
                (["csv", self.path, "--servers", self.path / "none"], "none"), (["check"], "one or two files"),
                (["check", self.path / "srv.xml", "--code", "x"], "--code needs a number"),
                (["check", self.path / "srv.xml", "--rebooted=1"], "takes no value"),
                (["check", self.path / "none.xml"], "no such file")):
            exit_code, output, messages = tarnfleet(*arguments)
            self.assertEqual((exit_code, output), (3, ""), arguments)
            self.assertIn(message, messages)


class RealRuns(MachineTest):
    def test_documents_of_the_program_are_understood(self):
        machine = self.machine(port(1, script='@download exit=0'), port(2, serial="S2", bus="2", script='@download exit=0 lie'),
                               port(3, model="Other", serial="S3", bus="3"),
                               matrix="QVa5202 a.grp\n", images=[(64, "14.4.1.1", "a.grp")])
        files = [machine.path / name for name in ("preview.xml", "verbose.xml", "run.xml", "query.xml")]
        for file, switches in zip(files, (["/p", "/update"], ["/p", "/v", "/update"], ["/update"], ["/q"])):
            file.write_text(machine.run("/xml", *switches)[1])
        found = [json.loads(tarnfleet("check", *named)[1]) for named in (files[:1], files[1:2], files[2:], files[3:])]
        self.assertEqual([[server["state"], *(port["state"] for port in server["ports"])] for server in found],
                         [["would-update", "would-update", "would-update", "skipped"], ["no-report"],
                          ["not-installed", "updated", "not-installed", "skipped"], ["listed"] * 4])


unittest.main()
