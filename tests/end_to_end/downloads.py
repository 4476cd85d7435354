"""Updates through the utility: its calls, the rows, and the closing sentence with its code."""
import unittest

from machine import MachineTest, port, windows_only

LIST = "listattr /c"
REBOOT = 'Firmware Status="Reboot the system to activate new firmware."'
ACTIVATED = ('Firmware Status="The new firmware is activated. Some features require an optional reboot. Refer to the '
             'Adapter\'s Firmware and Boot Code Release Notes for details."')
TWICE = ("This special firmware release requires the firmware download process to be\nperformed twice. You must reboot "
         "the system and download the same firmware\nfile again to complete the download process.\n")


def row(number, status, model="QVa5202", image="a.grp", new="14.2.1.1", old="14.0.1.1"):
    return (f"\nTIME\nHBA={model}, Port Type=FC, WWN=10:00:00:00:00:00:00:{number:02X},\n"
            f"Update=Firmware, Image={image}, New={new}, Old={old}, Status={status}\n")


def end(sentence, code, reboot=False):
    advice = "Please reboot system to activate new firmware.\n" if reboot else ""
    return f"\n\ntarnlift.exe: {sentence} - Return Code={code}\n\n{advice}\n"


class Downloads(MachineTest):
    def board(self, *scripts, **keys):
        """A machine with one board, a port for each script."""
        ports = [port(n, script=script, **keys) for n, script in enumerate(scripts, 1)]
        return self.machine(*ports, matrix="QVa5202 a.grp\n", images=[(64, "14.2.1.1", "a.grp")])

    def test_an_operator_gets_from_the_first_query_to_nothing_left_to_do(self):
        machine = self.machine(
            port(1, script="@download exit=80"), port(2), port(3, "QVa6102", "F400", serial="S2"),
            port(4, "QVa9999", "F600", serial="S3"), matrix="qva5202 a.grp\nQVa6102 b.grp\n",
            images=[(64, "14.2.1.1", "a.grp"), (65, "14.0.1.1", "b.grp")])
        head = "\nHBA={}, Port Type=FC, WWN=10:00:00:00:00:00:00:0{}, PCI ID={}, VID=1234, SSID=E311, SVID=1234, Firmware={}, Boot Code="
        ports = [("QVa5202", 1, "E300"), ("QVa5202", 2, "E300"), ("QVa6102", 3, "F400"), ("QVa9999", 4, "F600")]
        rows = "".join(head.format(*p, "14.0.1.1") + ", Boot Enabled=0, FLASH PART=FP01" for p in ports)
        self.assertEqual(machine.run("/q"), (0, rows + end("All required queries succeeded", 0)))
        preview = row(1, "Preview") + row(2, "Preview") + end("All required updates succeeded", 0)
        self.assertEqual(machine.run("/p", "/update"), (0, preview))
        self.assertEqual(machine.calls(), [LIST, LIST])

        supported = "".join([
            head.format(*ports[0], "14.0.1.1") + ", Supported Firmware=14.2.1.1, Boot Enabled=0" + row(1, "Success, " + REBOOT),
            head.format(*ports[1], "14.0.1.1") + ", Supported Firmware=14.2.1.1, Boot Enabled=0" + row(2, "Success, " + REBOOT),
            head.format(*ports[2], "14.0.1.1") + ", Supported Firmware=14.0.1.1, Boot Enabled=0",
            head.format(*ports[3], "14.0.1.1") + ", Supported Firmware=NONE, Boot Enabled=0"])
        self.assertEqual(machine.run("/q", "/update"), (0, supported + end("All required updates succeeded", 0, True)))
        self.assertEqual(machine.calls(), [LIST, "download n=1 i=M\\firmware\\a.grp"])
        self.assertIn(f"Firmware=14.2.1.1, Boot Code=, Boot Enabled=0, {REBOOT}, FLASH PART=FP01", machine.run("/q")[1])
        self.assertEqual(machine.run("/update"), (1, end("No updates required", 1)))
        self.assertIn("\ntarnlift.exe: A firmware update was not required on HBA: QVa5202\n", machine.run("/v", "/update")[1])
        self.assertEqual(machine.left_in_temp(), [])

    def test_a_reply_gives_code_rows_and_advice(self):
        cases = [  # the script, the row's status, and whether a reboot is advised
            ("", "Success", False), ("exit=80", "Success, " + REBOOT, True), ("exit=96", "Success, " + ACTIVATED, False),
            ("exit=92", "Success", False), ("lie", "Success", False), ('exit=80 reply="Error"', "Error", False),
            ('exit=92 reply="not on this board"', "Error", False), ('reply=""', "Error", False), ("crash", "Error", False),
            ("no-line-end", "Error", False),  # the reply's last character is cut, a line end or not
            ('reply="no error"', "Error", False),
        ]
        for script, status, reboot in cases:
            failed = status == "Error"
            sentence = "Error - all required updates failed" if failed else "All required updates succeeded"
            with self.subTest(script):
                machine = self.board(f"@download {script}" if script else "", "")
                rows = row(1, status) + row(2, status)
                self.assertEqual(machine.run("/update"), (2 * failed, rows + end(sentence, 2 * failed, reboot)))
                self.assertEqual(machine.calls(), [LIST, "download n=1 i=M\\firmware\\a.grp"])

    def test_a_query_of_unusable_ports_only_fails(self):
        code, output = self.board("", "", fw="NONE").run("/q")
        self.assertTrue(output.endswith(end("Error - all required queries failed", 2)), output)
        self.assertEqual(code, 2)

    @windows_only
    def test_an_exit_status_counts_by_its_low_16_bits(self):
        for status, words in (65536 + 80, "Success, " + REBOOT), (4294967295, "Success"), (256 + 80, "Success"):
            machine = self.board(f"@download exit={status}")
            code, output = machine.run("/update", "/v")
            self.assertIn(row(1, words), output)
            self.assertIn(f"Command Return Code = {status % 65536} - ", output)

    def test_the_advice_to_download_twice_is_repeated_for_each_later_board(self):
        machine = self.machine(port(1, script="@download exit=87"), port(2), port(3, serial="S2"),
                               matrix="QVa5202 a.grp\n", images=[(64, "14.2.1.1", "a.grp")])
        advice = ("1 adapter include a special firmware release that requires the firmware\ndownload process to be performed "
                  "twice. Reboot the system and run tarnlift\nagain using the /f or /rewrite option to download the same "
                  "firmware file again.\n")
        rows = row(1, "Success" + TWICE) + row(2, "Success\n" + TWICE) + row(3, "Success" + TWICE)
        self.assertEqual(machine.run("/update"), (0, rows + end("All required updates succeeded", 0)[:-1] + advice +
                                                  "Please reboot system to activate new firmware.\n\n"))

    def test_a_port_of_no_grp_family_shares_nothing(self):
        machine = self.machine(port(1, device="1111", script='@download exit=80 reply="NO Error"'),
                               port(2, device="1111", script="@download exit=107 reply=bad"),
                               port(3, serial="S2", script="@download exit=80"),
                               matrix="QVa5202 a.grp\n", images=[(64, "14.2.1.1", "a.grp")])
        rows = row(1, "Success", new=".2.1.1") + row(2, "Error", new=".2.1.1") + row(3, "Success, " + REBOOT)
        self.assertEqual(machine.run("/ff"), (3, rows + end("Error - some required firmware downloads failed", 3, True)))
        self.assertEqual(len(machine.calls()), 4)

    def test_ports_without_an_image_are_failures_of_their_own_kind(self):
        for matrix, text in [
                ("QVa5202\n", "No firmware entry found for HBA = QVa5202, status = FFFA0000"),
                (f"QVa5202 {'f' * 32}\n", "Invalid firmware entry found for HBA = QVa5202, status = FFFA0000"),
                ("QVa5202 gone.grp\n", "Error - invalid firmware file found for HBA = QVa5202, status = FFFA0000"),
                ("QVa5202 none\n", "Error - invalid firmware file found for HBA = QVa5202, status = FFFA0000"),
                ("QVa5202 short.grp\n", "Error - invalid firmware file found for HBA = QVa5202, status = C5"),
                ("QVa5202 dir.grp\n", "Error - reading firmware image for HBA = QVa5202, status = C7")]:
            with self.subTest(matrix):
                machine = self.machine(port(), port(2, "QVa6100", "F400", serial="S2", script="@download exit=80"),
                                       matrix=matrix + "QVa6100 b.grp\n", images=[(65, "14.2.1.1", "b.grp")])
                machine.image(64, "1.2.3.4", "short.grp", size=139)
                (machine.path / "firmware/dir.grp").mkdir()
                code, output = machine.run("/q", "/v", "/update")
                self.assertEqual(code, 3)
                self.assertIn(f", Supported Firmware=NONE, Boot Enabled=0\ntarnlift.exe: {text}\n", output)
                self.assertTrue(output.endswith("Please reboot system to activate new firmware.\n\n"))
                self.assertNotIn("download n=1", "".join(machine.calls()))

    def test_a_lower_family_in_the_table_reaches_the_utility_which_refuses_it(self):
        machine = self.machine(port(), matrix="QVa5202 b.grp\n", images=[(67, "1.0.0.0", "b.grp")])
        rows = row(1, "Error", image="b.grp", new="1.0.0.0")
        self.assertEqual(machine.run("/update"), (2, rows + end("Error - all required updates failed", 2)))

    def test_a_port_without_a_firmware_version_is_skipped(self):
        machine = self.board("", fw="NONE")
        code, output = machine.run("/q", "/ff")
        self.assertIn("Firmware=, Boot Code=, Boot Enabled=0, FLASH PART=FP01\n", output)
        self.assertEqual((code, machine.calls()), (7, [LIST]))


unittest.main()
