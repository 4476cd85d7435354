"""Each way a port can end, with its whole XML document and its event; the event source."""
import unittest

from machine import SOURCE_KEY, WINDOWS, MachineTest, port, spelled

PROLOG = '<?xml version="1.0" encoding="UTF-8"?>\n'
MESSAGES = {0: "Download succeeded.", 1: "Download succeeded. A reboot is required to activate new firmware.",
            2: "Download not needed.", 3: "Download failed.", 10: "Adapter skipped. Unknown firmware version.",
            13: "Adapter skipped. No compatible firmware found.", 16: "Adapter skipped. No fwmatrix.txt model entry.",
            17: "Download preview succeeded.", 19: "Download failed. Unable to find image file specified in fwmatrix.txt.",
            20: "Download failed. Unable to open image file.", 25: "Download failed. Invalid fwmatrix.txt image entry.",
            26: "Download failed. Invalid firmware file.",
            28: "Download failed. This firmware version is not supported on this board model."}
IMAGES = {"a": "14.2.1.1", "low": "14.0.1.1"}


def device(content, number=1, model="QVa5202"):
    return (f'    <Device hba="{model}" portType="FC" venId="1234" devId="E300" subDevId="E311" subVenId="1234" bus="1" '
            f'device="0" function="0" wwpn="10:00:00:00:00:00:00:{number:02X}">\n{content}    </Device>\n')


def application(status, image=None, update=False, fw="14.0.1.1", current=None):
    file, new = (image + ".grp", IMAGES[image]) if image else ("NONE", "NONE")
    return (f'        <Application componentType="firmware" version="{fw}">\n'
            f'            <SupportedImage file="{file}" version="{new}"/>\n'
            f'            <VersionChange update="{str(update).lower()}" currentVersion="{current or fw}" newVersion="{new}"/>\n'
            f'            <DownloadStatus status="{status}" message="{MESSAGES[status]}"/>\n'
            '        </Application>\n')


A, LOW, LONG = "QVa5202 a.grp\n", "QVa5202 low.grp\n", f"QVa5202 {'f' * 32}\n"
NO_FIRMWARE = "No compatible firmware found"
NOT_REQUIRED = "firmware|FW|WWN|firmware|low.grp|2|Firmware {} is not required."
NO_IMAGE = "firmware|FW|WWN|13|No compatible firmware image found."

# Name, matrix, firmware images, the port, switches, the port's application, return code and sentence, the event.
ENDS = [
    ("skipped", A, "a", {"fw": "NONE"}, "/update", application(10, fw="NONE"), 7, NO_FIRMWARE, ""),
    ("no matrix entry", "", "a", {}, "/update", application(16), 7, NO_FIRMWARE,
     "0xC0000A09 FW|WWN|16|fwmatrix.txt model entry not found."),
    ("no file in the entry", "QVa5202\n", "", {"SFJ": 0}, "/p /update", application(19), 7, NO_FIRMWARE,
     "0xC0000A10 FW|WWN|19|fwmatrix.txt firmware image entry not found.|NOTE"),
    ("file too long", LONG, "", {"SFJ": 255}, "/ff", application(25), 7, NO_FIRMWARE,
     "0xC0000A09 FW|WWN|25|Invalid fwmatrix.txt firmware entry."),
    ("file missing", A, "", {}, "/update", application(20), 7, NO_FIRMWARE,
     "0xC0000A12 FW|WWN|a.grp|20|Unable to open firmware file."),
    ("file of no directory", "QVa5202 x\\y.grp\n", "", {"SFJ": None}, "/update", application(20), 7, NO_FIRMWARE,
     "0xC0000A13 FW|WWN|y.grp|20|Unable to open firmware file.|NOTE"),
    ("file of no firmware", "QVa5202 a.bin\n", "", {}, "/update", application(20), 7, NO_FIRMWARE,
     "0xC0000A12 FW|WWN|a.bin|20|Unable to open firmware file."),
    ("file short", "QVa5202 short.grp\n", "", {}, "/update", application(26), 7, NO_FIRMWARE,
     "0xC0000A12 FW|WWN|short.grp|26|Invalid firmware file."),
    ("matrix, no update", LOW, "low", {}, "/update", application(2, "low"), 1, "No updates required",
     "0x40000A07 " + NOT_REQUIRED.format("update")),
    ("matrix, no downgrade", LOW, "low", {"SFJ": 256}, "/downgrade", application(2, "low"), 1, "No downgrades required",
     "0x40000A08 " + NOT_REQUIRED.format("downgrade") + "|NOTE"),
    ("matrix, no rewrite", LOW, "low", {"fw": "14.2"}, "/rewrite", application(2, "low", fw="14.2"), 1,
     "No rewrites required", "0x40000A07 " + NOT_REQUIRED.format("rewrite").replace("FW", "14.2")),
    ("matrix, download", A, "a", {"script": "@download exit=80"}, "/update", application(1, "a", True), 0,
     "All required updates succeeded", ""),
    ("matrix, failed", A, "a", {"script": "@download exit=92 reply=no"}, "/ff", application(28, "a"), 2,
     "All required firmware downloads failed", ""),
    ("matrix, preview", A, "a", {}, "/p /update", application(17, "a", True), 0, "All required updates succeeded", ""),
    ("matrix, query too", LOW, "low", {}, "/q /rewrite", application(0, "low", True), 0,
     "All required rewrites succeeded", ""),
    ("auto, no update", None, "low", {}, "/auto /update", application(2, "low"), 1, "No updates required",
     "0x40000A07 " + NOT_REQUIRED.format("update")),
    ("auto, download", None, "low a", {}, "/auto /update", application(0, "a", True), 0,
     "All required updates succeeded", ""),
    ("auto, rewrite", None, "low", {}, "/auto /rewrite", application(0, "low", True), 0,
     "All required rewrites succeeded", ""),
    ("auto, downgrade", None, "low a", {"fw": "14.2.1.1"}, "/auto /downgrade",
     application(0, "low", True, fw="14.2.1.1"), 0, "All required downgrades succeeded", ""),
    ("auto, downgrade failed", None, "low", {"fw": "14.2.1.1", "script": "@download crash"}, "/auto /downgrade",
     application(3, "low", fw="14.2.1.1"), 2, "All required downgrades failed", ""),
    ("auto, nothing lower", None, "low a", {}, "/auto /downgrade", application(2, "low"), 1, "No downgrades required",
     "0x40000A07 " + NOT_REQUIRED.format("downgrade")),
    ("auto, downgrade without images", None, "", {}, "/auto /downgrade", application(13), 7, NO_FIRMWARE,
     "0x40000A15 " + NO_IMAGE),
    ("auto, force without images", None, "", {"SFJ": 0}, "/auto /ff", application(13, current="NONE"), 7, NO_FIRMWARE,
     "0x40000A16 " + NO_IMAGE + "|NOTE"),
]


class Reports(MachineTest):
    def test_each_end_has_its_document_and_its_event(self):
        for name, matrix, images, keys, switches, content, code, sentence, event in ENDS:
            with self.subTest(name):
                machine = self.machine(port(**keys), matrix=matrix,
                                       images=[(64, IMAGES[image], image + ".grp") for image in images.split()])
                machine.image(64, "1.2.3.4", "short.grp", size=139)
                (machine.path / "firmware/a.bin").write_text("text")
                result = machine.run("/xml", *switches.split())
                reboot = int('status="1"' in content)
                self.assertEqual(result, (code, f'{PROLOG}<Execution lang="en">\n{device(content)}    <Message id="{code}"> '
                                          f'{sentence}. </Message>\n    <RebootRequired>{reboot}</RebootRequired>\n'
                                          '</Execution>\n\n'))
                for word, text in ("FW", "14.0.1.1"), ("WWN", "10:00:00:00:00:00:00:01"), ("NOTE", "Secure Firmware is disabled."):
                    event = event.replace(word, text)
                self.assertEqual(machine.events(), [(event[:10], event[11:].split("|"))] if event else [])

    def test_an_inventory_has_both_components(self):
        machine = self.machine(port(), port(2, fw="none", serial="S2", Boot_Version="14.0.1.2", Boot_Enabled=1))
        element = '        <Application componentType="{}" version="{}"{}/>\n'
        first = element.format("firmware", "14.0.1.1", "") + element.format("bootCode", "NONE", ' enabled="0"')
        second = element.format("firmware", "NONE", "") + element.format("bootCode", "14.0.1.2", ' enabled="1"')
        document = (f'{PROLOG}<Inventory lang="en">\n{device(first)}{device(second, 2)}    <Message id="3"> Some required '
                    'queries failed. </Message>\n</Inventory>\n\n')
        self.assertEqual(machine.run("/q", "/xml"), (3, document))
        self.assertEqual(machine.events(), [])

    def test_the_message_advises_to_download_a_special_release_twice(self):
        machine = self.machine(port(script="@download exit=87"), port(2, serial="S2", script="@download exit=87"),
                               matrix=A, images=[(64, "14.2.1.1", "a.grp")])
        _, document = machine.run("/xml", "/update")
        self.assertIn('    <Message id="0"> All required updates succeeded. 2 adapters include a special firmware release that '
                      'requires the firmware download process to be performed twice. Reboot the system and run tarnlift again '
                      'using the /f or /rewrite option to download the same firmware file again. </Message>\n', document)

    def test_values_of_the_adapters_cannot_break_the_document(self):
        machine = self.machine(port(model='<&"\x01\x80\xc3\xa4', Port_WWN="]]>--"))
        document = machine.run("/q", "/xml")[1]
        self.assertIn('hba="&lt;&amp;&quot;??\xc3\xa4" portType="FC"', document)
        self.assertIn('wwpn="]]&gt;--"', document)

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

    def test_a_file_in_place_of_log_or_key_changes_nothing_else(self):
        machine = self.machine(port(), matrix="")
        code = machine.run("/update")
        machine.source_key()
        if not WINDOWS:
            host = machine.path / "host"
            (host / "eventlog.jsonl").unlink()
            (host / "eventlog.jsonl").mkdir()
            (host / "registry/HKEY_LOCAL_MACHINE/SYSTEM").rename(host / "moved")
            (host / "registry/HKEY_LOCAL_MACHINE/SYSTEM").write_text("in the way")
        self.assertEqual(machine.run("/update", "/xv", launch=["--deny-key", SOURCE_KEY]), code)
        self.assertIn('Error creating "Velmar Tarnlift" key in Registry.\nDLL path = ', machine.read("cwd/dbg.log"))
        self.assertIn('Error creating "EventMessageFile" key in Registry.\nError creating "Types Supported" key in Registry.\n'
                      'Error closing key.\nCreated "Velmar Tarnlift" key in Registry.\n', machine.read("cwd/dbg.log"))


unittest.main()
