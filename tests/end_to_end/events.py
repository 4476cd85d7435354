"""The events of ports that end without a started download, and the registry."""
import unittest

from machine import MachineTest, linux_only, port, spelled

WWN = "10:00:00:00:00:00:00:01"
FW = "14.0.1.1"
NOTE = "Secure Firmware is disabled."

# Matrix, switches, SFJ, the events. Firmware directory: same.grp, short.grp.
CASES = [
    ("", "/update", 1, ("0xC0000A09", [FW, WWN, "16", "fwmatrix.txt model entry not found."])),
    ("QVa5202\n", "/p /update", 0, ("0xC0000A10", [FW, WWN, "19", "fwmatrix.txt firmware image entry not found.", NOTE])),
    (f"QVa5202 {'f' * 32}\n", "/ff", 255, ("0xC0000A09", [FW, WWN, "25", "Invalid fwmatrix.txt firmware entry."])),
    ("QVa5202 gone.grp\n", "/update", 1, ("0xC0000A12", [FW, WWN, "gone.grp", "20", "Unable to open firmware file."])),
    ("QVa5202 x\\y.grp\n", "/update", None,
     ("0xC0000A13", [FW, WWN, "y.grp", "20", "Unable to open firmware file.", NOTE])),
    ("QVa5202 short.grp\n", "/update", 1, ("0xC0000A12", [FW, WWN, "short.grp", "26", "Invalid firmware file."])),
    ("QVa5202 same.grp\n", "/update", 1,
     ("0x40000A07", ["firmware", FW, WWN, "firmware", "same.grp", "2", "Firmware update is not required."])),
    ("QVa5202 same.grp\n", "/downgrade", 256,
     ("0x40000A08", ["firmware", FW, WWN, "firmware", "same.grp", "2", "Firmware downgrade is not required.", NOTE])),
    ("QVa5202 same.grp\n", "/rewrite", 1, None),
    (None, "/auto /update", 1,
     ("0x40000A07", ["firmware", FW, WWN, "firmware", "same.grp", "2", "Firmware update is not required."])),
    (None, "/auto /downgrade", 1,
     ("0x40000A07", ["firmware", FW, WWN, "firmware", "same.grp", "2", "Firmware downgrade is not required."])),
    (None, "/auto /rewrite", 1, None),
    ("", "/q", 1, None),
]


class Events(MachineTest):
    def test_each_port_without_a_started_download_has_one_event(self):
        for matrix, switches, sfj, event in CASES:
            with self.subTest(f"{matrix} {switches}"):
                machine = self.machine(port(SFJ=sfj), matrix=matrix, images=[(64, FW, "same.grp")])
                machine.image(64, "1.2.3.4", "short.grp", size=139)
                machine.run(*switches.split())
                self.assertEqual(machine.events(), [event] if event else [])

    def test_no_image_of_the_family_has_its_own_event(self):
        for switches in "/auto /ff", "/auto /downgrade":
            machine = self.machine(port(SFJ=0))
            machine.run(*switches.split())
            self.assertEqual(machine.events(), [("0x40000A16", ["firmware", FW, WWN, "13",
                                                                "No compatible firmware image found.", NOTE])])

    def test_a_run_that_writes_firmware_registers_the_source(self):
        machine = self.machine(port())
        machine.source_key()
        for switches in ["/q"], ["/p", "/update"]:
            machine.run(*switches)
            self.assertEqual(machine.source_key(), {})
        machine.run("/update", through_path=True)
        message_file = spelled(machine.path / "cwd") + "\\\\VlmHbCfgSvcMsg.dll"
        self.assertEqual(machine.source_key(), {"EventMessageFile": ("REG_SZ", message_file),
                                                "Types Supported": ("REG_DWORD", "7")})

    @linux_only
    def test_a_log_or_key_in_the_way_changes_nothing_else(self):
        machine = self.machine(port(), matrix="")
        code = machine.run("/update")
        host = machine.path / "host"
        (host / "eventlog.jsonl").unlink()
        (host / "eventlog.jsonl").mkdir()
        (host / "registry/HKEY_LOCAL_MACHINE/SYSTEM").rename(host / "moved")
        (host / "registry/HKEY_LOCAL_MACHINE/SYSTEM").write_text("in the way")
        self.assertEqual(machine.run("/update", "/xv"), code)
        self.assertIn('Error creating "Velmar Tarnlift" key in Registry.\nDLL path = ', machine.read("cwd/dbg.log"))
        self.assertIn('Error creating "EventMessageFile" key in Registry.\nError creating "Types Supported" key in Registry.\n'
                      'Error closing key.\nCreated "Velmar Tarnlift" key in Registry.\n', machine.read("cwd/dbg.log"))


unittest.main()
