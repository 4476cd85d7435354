"""A machine of its own for a test: the real program and the simulated utility in a temporary directory.

The same tests run on both systems. The differences are in this file: how a program is started, how a path is spelled,
and where registry and event log are. Windows programs run through Wine and end their lines in CR LF; the tests see LF.
"""
import json
import os
import re
import shutil
import struct
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

BIN = Path(os.environ["TARNLIFT_BIN"]).resolve()
WINDOWS = os.environ.get("TARNLIFT_SYSTEM") == "windows"
TOP = Path(__file__).resolve().parents[2]
WINE = [TOP / "tools/wine.sh"] if WINDOWS else []
WINDOWS_TEMP = r"C:\temp"  # TEMP of what is started without Machine.run
CANNOT_LAUNCH = 250  # return code of launch.exe
PROBE_KEY = r"SOFTWARE\VelmarFwupdate"
SOURCE_KEY = r"SYSTEM\CurrentControlSet\Services\Eventlog\Application\Velmar Tarnlift"
TIME = re.compile(r"^(Sun|Mon|Tue|Wed|Thu|Fri|Sat) (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) [ 1-3]\d "
                  r"\d\d:\d\d:\d\d \d{4}$", re.MULTILINE)
MAGIC_AND_SIGNATURE = {64: (0xFEAA0003, 0xF70C), 65: (0xFEAA0005, 0xF7A4), 66: (0xFEAA0020, 0xF7A5), 67: (0xFEAA0040, 0xF7A6)}

linux_only = unittest.skipIf(WINDOWS, "tests the Linux layer")
windows_only = unittest.skipUnless(WINDOWS, "tests Windows itself")


def wine(*command):
    """Runs one of the system's own programs."""
    return subprocess.run([*WINE, *command], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)


if WINDOWS:
    wine("cmd", "/c", "exit")
    (TOP / "build/wine/drive_c/temp").mkdir(exist_ok=True)
    wine("reg", "add", r"HKCU\Environment", "/v", "TEMP", "/d", WINDOWS_TEMP, "/f")


def port(number=1, model="QVa5202", device="E300", fw="14.0.1.1", serial="S1", bus="1", script="", **keys):
    """A port's block in adapters.txt. Further keys with _ for a blank; a value of None leaves the key out."""
    values = {"HBA": number, "Port WWN": f"10:00:00:00:00:00:00:{number:02x}", "PCI Bus Number": bus,
              "PCI Dev Number": "0", "PCI Fun Number": "0", "Model": model, "Device ID": device, "Vendor ID": "1234",
              "Sub Device ID": "E311", "Sub Vendor ID": "1234", "Serial Number": serial, "RevID": "1", "SFJ": "1",
              "Flash Part": "FP01", "FW Version": fw, "Boot Version": "NONE"}
    values.update({key.replace("_", " "): value for key, value in keys.items()})
    lines = [f"{key}: {value}" for key, value in values.items() if value is not None]
    return "\n".join(lines + [script] * bool(script)) + "\n"


def spelled(path):
    """A path as the program spells it."""
    return ("Z:" if WINDOWS else "") + str(path).replace("/", "\\")


class Machine:
    """Program, utility, firmware, host directory and temp directory are all in the directory `path`."""

    def __init__(self, *ports, matrix="", images=(), script="", name="tarnlift-"):
        self.path = Path(tempfile.mkdtemp(prefix=name))
        for directory in ("firmware", "temp", "cwd"):
            (self.path / directory).mkdir()
        for program in ("tarnlift.exe", "winhbcfg.exe"):
            shutil.copy(BIN / program, self.path)
        if matrix is not None:
            (self.path / "fwmatrix.txt").write_text(matrix)
        self.set_ports(*ports, script=script)
        for family, version, file in images:
            self.image(family, version, file)

    def set_ports(self, *ports, script=""):
        text = "@calls calls.txt\n" + script + "\n\n" + "\n".join(ports)
        (self.path / "adapters.txt").write_bytes(text.encode("latin-1"))

    def image(self, family, version, name, size=4096):
        magic, signature = MAGIC_AND_SIGNATURE[family]
        header = struct.pack(">III", 0, magic, signature << 16) + version.encode() + b" for all ports"
        (self.path / "firmware" / name).write_bytes(header.ljust(size, b"\0")[:size])

    def run(self, *switches, temp=None, env=(), argv0=None, through_path=False, launch=(),
            stdout=subprocess.PIPE):
        """Runs the program in `cwd`. Returns its return code and output, TIME for each time. Documents must be valid.

        `launch` are options of tests/launcher/launch.cpp, for Windows only.
        """
        environment = {**os.environ, "TARNLIFT_HOST": str(self.path / "host"), "WINEDEBUG": "-all,+eventlog,fixme+advapi",
                       "TEMP": str(temp or self.path / "temp"), **dict(env)}
        program = self.path / "tarnlift.exe"
        command, start = ["tarnlift.exe" if through_path else argv0 or program], {"executable": program}
        if WINDOWS:
            # Wine takes TEMP from the user's settings, so it is set again on the other side.
            options = ["--set", "TEMP", spelled(environment["TEMP"]), *launch]
            options += [] if through_path else ["--program", spelled(program)]
            shell = ["cmd", "/c"] * through_path
            command, start = [*WINE, BIN / "launch.exe", *options, "--", *shell, *command], {}
            environment["WINEPATH"] = spelled(self.path) if through_path else ""
        done = subprocess.run([*command, *switches], cwd=self.path / "cwd", env=environment, timeout=120,
                              stdin=subprocess.DEVNULL, stdout=stdout, stderr=subprocess.PIPE, **start)
        self.stderr = done.stderr.decode("latin-1")
        if WINDOWS and done.returncode == CANNOT_LAUNCH:
            raise AssertionError("the program was not started: " + self.stderr)
        output = done.stdout or b""
        if output.startswith(b"<?xml") and "/v" not in switches:
            check = subprocess.run(["xmllint", "--noout", "--schema", TOP / "share/report.xsd", "-"], input=output,
                                   capture_output=True)
            if check.returncode:
                raise AssertionError("the document does not follow share/report.xsd:\n" + check.stderr.decode())
        return done.returncode, self.text(output)

    def run_without_rights(self, *switches):
        """The same for a user who cannot create the key that the program probes."""
        if WINDOWS:
            return self.run(*switches, launch=["--deny-key", PROBE_KEY])
        in_the_way = self.path / "host/registry"
        in_the_way.parent.mkdir(exist_ok=True)
        in_the_way.write_text("no directory")
        result = self.run(*switches)
        in_the_way.unlink()
        return result

    def run_killed(self, *switches, call):
        """The same, but kills the program at the utility's call number `call`, and waits for the utility to end."""
        calls = self.path / "calls.txt"
        calls.unlink(missing_ok=True)
        if WINDOWS:
            return self.run(*switches, launch=["--kill-after-lines", str(call), spelled(calls)])
        environment = {**os.environ, "TARNLIFT_HOST": str(self.path / "host"), "TEMP": str(self.path / "temp")}
        program = subprocess.Popen([self.path / "tarnlift.exe", *switches], cwd=self.path / "cwd", env=environment,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        while program.poll() is None and not (calls.exists() and calls.read_text().count("\n") >= call):
            time.sleep(0.005)
        program.kill()
        output, _ = program.communicate()  # ends when the utility does, too, since that holds standard error
        return program.returncode, self.text(output)

    def left_in_temp(self):
        """The files that the program left in its temp directory."""
        return list((self.path / "temp").iterdir())

    @staticmethod
    def text(content):
        return TIME.sub("TIME", content.decode("latin-1").replace("\r\n", "\n"))

    def read(self, name):
        return self.text((self.path / name).read_bytes())

    def calls(self):
        """The utility's calls since the last look, with the machine's directory as M."""
        file = self.path / "calls.txt"
        text = file.read_text() if file.exists() else ""
        file.unlink(missing_ok=True)
        return text.replace(spelled(self.path), "M").splitlines()

    def events(self):
        """The events of the last run, as (id, strings)."""
        if WINDOWS:
            found = []
            for line in self.stderr.splitlines():
                event = re.search(r"fixme:advapi:ReportEventW \(.*?,0x000[14],0x0000,0x([0-9a-f]{8}),", line)
                string = re.search(r'eventlog:ReportEventW L"(.*)"$', line)
                if event:
                    found.append(("0x" + event[1].upper(), []))
                elif string:
                    found[-1][1].append(string[1].replace("\\\\", "\\"))
            return found
        file = self.path / "host" / "eventlog.jsonl"
        lines = file.read_text().splitlines() if file.exists() else []
        file.unlink(missing_ok=True)
        return [(event["id"], event["strings"]) for event in map(json.loads, lines)]

    def source_key(self):
        """The values of the event source's registry key, as name: (type, data); it is gone afterwards."""
        if WINDOWS:
            key = "HKLM\\" + SOURCE_KEY
            rows = re.findall(r"^    (.*?)    (REG_\w+)    (.*)$", self.text(wine("reg", "query", key).stdout), re.MULTILINE)
            wine("reg", "delete", key, "/f")
            return {name: (kind, str(int(data, 16)) if kind == "REG_DWORD" else data) for name, kind, data in rows}
        directory = self.path / "host/registry/HKEY_LOCAL_MACHINE" / SOURCE_KEY.replace("\\", "/")
        values = {file.name: tuple(file.read_text().splitlines()) for file in directory.glob("*")}
        shutil.rmtree(directory, ignore_errors=True)
        return values

    def drive(self, letter):
        """The root directory of a drive of the machine."""
        directory = self.path / "host/drives" / letter
        if WINDOWS:
            directory.mkdir(parents=True)
            link = TOP / "build/wine/dosdevices" / (letter + ":")
            link.unlink(missing_ok=True)
            link.symlink_to(directory)
        return directory


class MachineTest(unittest.TestCase):
    maxDiff = None

    def machine(self, *args, **keys):
        made = Machine(*args, **keys)
        self.addCleanup(shutil.rmtree, made.path)
        return made
