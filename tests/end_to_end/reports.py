"""The XML documents, one for each road that a port can take, compared whole."""
import unittest

from machine import MachineTest, port

PROLOG = '<?xml version="1.0" encoding="UTF-8"?>\n'
MESSAGES = {0: "Download succeeded.", 1: "Download succeeded. A reboot is required to activate new firmware.",
            2: "Download not needed.", 3: "Download failed.", 10: "Adapter skipped. Unknown firmware version.",
            13: "Adapter skipped. No compatible firmware found.", 16: "Adapter skipped. No fwmatrix.txt model entry.",
            17: "Download preview succeeded.", 19: "Download failed. Unable to find image file specified in fwmatrix.txt.",
            20: "Download failed. Unable to open image file.", 25: "Download failed. Invalid fwmatrix.txt image entry.",
            26: "Download failed. Invalid firmware file.",
            28: "Download failed. This firmware version is not supported on this board model."}


def device(content, number=1, model="QVa5202", wwn=None):
    wwn = wwn or f"10:00:00:00:00:00:00:{number:02X}"
    return (f'    <Device hba="{model}" portType="FC" venId="1234" devId="E300" subDevId="E311" subVenId="1234" bus="1" '
            f'device="0" function="0" wwpn="{wwn}">\n{content}    </Device>\n')


def application(status, file="NONE", new="NONE", update=False, fw="14.0.1.1", current=None):
    return (f'        <Application componentType="firmware" version="{fw}">\n'
            f'            <SupportedImage file="{file}" version="{new}"/>\n'
            f'            <VersionChange update="{str(update).lower()}" currentVersion="{current or fw}" newVersion="{new}"/>\n'
            f'            <DownloadStatus status="{status}" message="{MESSAGES[status]}"/>\n'
            '        </Application>\n')


def execution(devices, code, sentence, reboot=0):
    return (f'{PROLOG}<Execution lang="en">\n{devices}    <Message id="{code}"> {sentence} </Message>\n'
            f'    <RebootRequired>{reboot}</RebootRequired>\n</Execution>\n\n')


MATRIX = "QVa5202 a.grp\n"
A = {"file": "a.grp", "new": "14.2.1.1"}
LOW = {"file": "low.grp", "new": "14.0.1.1"}
NO_FIRMWARE = (7, "No compatible firmware found.")

# What, matrix, firmware images, the port, switches, the port's application, return code and sentence, reboot.
ROADS = [
    ("passed by", MATRIX, {"a": "14.2.1.1"}, {"fw": "NONE"}, "/update", application(10, fw="NONE"), *NO_FIRMWARE, 0),
    ("no matrix entry", "", {"a": "14.2.1.1"}, {}, "/update", application(16), *NO_FIRMWARE, 0),
    ("no file in the entry", "QVa5202\n", {}, {}, "/update", application(19), *NO_FIRMWARE, 0),
    ("file too long", f"QVa5202 {'f' * 32}\n", {}, {}, "/update", application(25), *NO_FIRMWARE, 0),
    ("file missing", MATRIX, {}, {}, "/update", application(20), *NO_FIRMWARE, 0),
    ("file short", "QVa5202 short.grp\n", {}, {}, "/update", application(26), *NO_FIRMWARE, 0),
    ("matrix, not required", "QVa5202 low.grp\n", {"low": "14.0.1.1"}, {}, "/update", application(2, **LOW), 1,
     "No updates required.", 0),
    ("matrix, download", MATRIX, {"a": "14.2.1.1"}, {"script": "@download exit=80"}, "/update",
     application(1, update=True, **A), 0, "All required updates succeeded.", 1),
    ("matrix, failed", MATRIX, {"a": "14.2.1.1"}, {"script": "@download exit=92 reply=no"}, "/ff",
     application(28, **A), 2, "All required firmware downloads failed.", 0),
    ("matrix, preview", MATRIX, {"a": "14.2.1.1"}, {}, "/p /update", application(17, update=True, **A), 0,
     "All required updates succeeded.", 0),
    ("matrix, query too", MATRIX, {"a": "14.2.1.1"}, {}, "/q /rewrite", application(0, update=True, **A), 0,
     "All required rewrites succeeded.", 0),
    ("auto, not required", None, {"low": "14.0.1.1"}, {}, "/auto /update", application(2, **LOW), 1,
     "No updates required.", 0),
    ("auto, download", None, {"low": "14.0.1.1", "a": "14.2.1.1"}, {}, "/auto /update", application(0, update=True, **A),
     0, "All required updates succeeded.", 0),
    ("auto, downgrade", None, {"low": "14.0.1.1", "a": "14.2.1.1"}, {"fw": "14.2.1.1"}, "/auto /downgrade",
     application(0, update=True, fw="14.2.1.1", **LOW), 0, "All required downgrades succeeded.", 0),
    ("auto, downgrade failed", None, {"low": "14.0.1.1"}, {"fw": "14.2.1.1", "script": "@download crash"},
     "/auto /downgrade", application(3, fw="14.2.1.1", **LOW), 2, "All required downgrades failed.", 0),
    ("auto, nothing lower", None, {"low": "14.0.1.1", "a": "14.2.1.1"}, {}, "/auto /downgrade", application(2, **LOW), 1,
     "No downgrades required.", 0),
    ("auto, downgrade without images", None, {}, {}, "/auto /downgrade", application(13), *NO_FIRMWARE, 0),
    ("auto, update without images", None, {}, {}, "/auto /ff", application(13, current="NONE"), *NO_FIRMWARE, 0),
]


class Reports(MachineTest):
    def test_each_road_has_its_document(self):
        for what, matrix, images, keys, switches, content, code, sentence, reboot in ROADS:
            with self.subTest(what):
                machine = self.machine(port(**keys), matrix=matrix,
                                       images=[(64, version, name + ".grp") for name, version in images.items()])
                if "short" in what:
                    machine.image(64, "1.2.3.4", "short.grp", size=139)
                result = machine.run("/xml", *switches.split())
                self.assertEqual(result, (code, execution(device(content), code, sentence, reboot)))
                self.assert_well_formed(result[1].strip())

    def test_an_inventory_has_both_components(self):
        machine = self.machine(port(), port(2, fw="none", serial="S2", Boot_Version="14.0.1.2", Boot_Enabled=1))
        element = '        <Application componentType="{}" version="{}"{}/>\n'
        first = element.format("firmware", "14.0.1.1", "") + element.format("bootCode", "NONE", ' enabled="0"')
        second = element.format("firmware", "NONE", "") + element.format("bootCode", "14.0.1.2", ' enabled="1"')
        document = (f'{PROLOG}<Inventory lang="en">\n{device(first)}{device(second, 2)}    <Message id="3"> Some required '
                    'queries failed. </Message>\n</Inventory>\n\n')
        self.assertEqual(machine.run("/q", "/xml"), (3, document))

    def test_a_release_to_be_loaded_twice_is_told_in_the_message(self):
        machine = self.machine(port(script="@download exit=87"), port(2, serial="S2", script="@download exit=87"),
                               matrix=MATRIX, images=[(64, "14.2.1.1", "a.grp")])
        _, document = machine.run("/xml", "/update")
        self.assertIn('    <Message id="0"> All required updates succeeded. 2 adapters include a special firmware release that '
                      'requires the firmware download process to be performed twice. Reboot the system and run tarnlift again '
                      'using the /f or /rewrite option to download the same firmware file again. </Message>\n', document)
        self.assert_well_formed(document.strip())

    def test_values_of_the_adapters_cannot_break_the_document(self):
        machine = self.machine(port(model='<&"\x01\x80\xc3\xa4', Port_WWN="]]>--"))
        document = machine.run("/q", "/xml")[1]
        self.assertIn('hba="&lt;&amp;&quot;??\xc3\xa4" portType="FC"', document)
        self.assertIn('wwpn="]]&gt;--"', document)
        self.assert_well_formed(document.strip())


unittest.main()
