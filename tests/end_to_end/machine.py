"""A machine of its own for a test: the real program and the simulated utility in a temporary directory."""
import json
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

BIN = Path(os.environ["TARNLIFT_BIN"])
TIME = re.compile(r"^(Sun|Mon|Tue|Wed|Thu|Fri|Sat) (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) [ 1-3]\d "
                  r"\d\d:\d\d:\d\d \d{4}$", re.MULTILINE)
DEVICES = {64: "E300", 65: "F400", 66: "F500", 67: "F600"}


def port(number=1, model="QVa5202", device="E300", fw="14.0.1.1", serial="S1", bus="1", script="", **keys):
    """A port's block in adapters.txt. Further keys with _ for a blank; a value of None leaves the key out."""
    values = {"HBA": number, "Port WWN": f"10:00:00:00:00:00:00:{number:02x}", "PCI Bus Number": bus,
              "PCI Dev Number": "0", "PCI Fun Number": "0", "Model": model, "Device ID": device, "Vendor ID": "1234",
              "Sub Device ID": "E311", "Sub Vendor ID": "1234", "Serial Number": serial, "RevID": "1", "SFJ": "1",
              "Flash Part": "FP01", "FW Version": fw, "Boot Version": "NONE"}
    values.update({key.replace("_", " "): value for key, value in keys.items()})
    lines = [f"{key}: {value}" for key, value in values.items() if value is not None]
    return "\n".join(lines + [script] * bool(script)) + "\n"


class Machine:
    """The directory `path` holds all: program, utility, firmware, host directory and temp directory."""

    def __init__(self, *ports, matrix="", images=(), utility=None):
        self.path = Path(tempfile.mkdtemp(prefix="tarnlift-"))
        for name in ("firmware", "temp", "cwd"):
            (self.path / name).mkdir()
        shutil.copy(BIN / "tarnlift.exe", self.path)
        if utility is None:
            shutil.copy(BIN / "winhbcfg.exe", self.path)
        else:
            self.script_utility(utility)
        if matrix is not None:
            (self.path / "fwmatrix.txt").write_text(matrix)
        self.set_ports(*ports)
        for family, version, name in images:
            self.image(family, version, name)

    def set_ports(self, *ports):
        (self.path / "adapters.txt").write_text("@calls calls.txt\n\n" + "\n".join(ports))

    def script_utility(self, text):
        utility = self.path / "winhbcfg.exe"
        utility.write_text("#!/bin/sh\n" + text)
        utility.chmod(0o755)

    def image(self, family, version, name, *options):
        subprocess.run([BIN / "mkgrp", "--family", str(family), "--version", version, *options,
                        self.path / "firmware" / name], check=True)

    def run(self, *switches, env=(), argv0=None):
        """Runs the program in `cwd`. Returns its return code and its output, in which TIME stands for each time."""
        environment = {**os.environ, "TARNLIFT_HOST": str(self.path / "host"), "TEMP": str(self.path / "temp")}
        environment.update(env)
        done = subprocess.run([argv0 or self.path / "tarnlift.exe", *switches], executable=self.path / "tarnlift.exe",
                              cwd=self.path / "cwd", env=environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              timeout=60)
        self.stderr = done.stderr.decode("latin-1")
        return done.returncode, TIME.sub("TIME", done.stdout.decode("latin-1"))

    def read(self, name):
        return TIME.sub("TIME", (self.path / name).read_bytes().decode("latin-1"))

    def calls(self):
        """The utility's calls since the last look, with the machine's directory as M."""
        file = self.path / "calls.txt"
        text = file.read_text() if file.exists() else ""
        file.unlink(missing_ok=True)
        return text.replace(str(self.path).replace("/", "\\"), "M").splitlines()

    def events(self):
        """The events since the last look, as (id, strings)."""
        file = self.path / "host" / "eventlog.jsonl"
        lines = file.read_text().splitlines() if file.exists() else []
        file.unlink(missing_ok=True)
        return [(event["id"], event["strings"]) for event in map(json.loads, lines)]

    def registry(self):
        root = self.path / "host" / "registry" / "HKEY_LOCAL_MACHINE"
        return {str(file.relative_to(root)): file.read_text() for file in root.rglob("*") if file.is_file()}


class MachineTest(unittest.TestCase):
    maxDiff = None

    def machine(self, *args, **keys):
        made = Machine(*args, **keys)
        self.addCleanup(shutil.rmtree, made.path)
        return made

    def assert_well_formed(self, document):
        done = subprocess.run(["xmllint", "--noout", "-"], input=document.encode("latin-1"), capture_output=True)
        self.assertEqual((done.returncode, done.stderr), (0, b""), document)
