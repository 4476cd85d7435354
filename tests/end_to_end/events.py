"""The event source: its registry key, and what a log or key in the way changes."""
import unittest

from machine import MachineTest, linux_only, port, spelled


class Registry(MachineTest):
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
