"""The report files of a fleet, as tarnlift.exe and the scripts around it leave them. Made by hand, not by a run: for the
tests, the measurements and the picture, which need many servers and servers that lie."""
import os
import re
from dataclasses import dataclass, replace
from pathlib import Path
from xml.etree import ElementTree
from xml.sax.saxutils import escape

TOP = Path(__file__).resolve().parents[2]
PROLOG = '<?xml version="1.0" encoding="UTF-8"?>\n'
SUCCEEDED, REBOOT, NOT_NEEDED, FAILED, NO_LINE, PREVIEWED, MISSING_IMAGE, TWICE = 0, 1, 2, 3, 16, 17, 19, 22


def status_messages():
    """What a report says of each status, by its number: the schema lists them in this order."""
    schema = ElementTree.parse(TOP / "share/report.xsd").getroot()
    kind = next(element for element in schema.iter() if element.get("name") == "StatusMessage")
    return [element.get("value") for element in kind.iter() if element.tag.endswith("enumeration")]


MESSAGES = status_messages()


@dataclass
class Port:
    """A port in the report of a run. `before` is what it runs in the report of a query."""
    wwn: str = "10:00:00:00:00:00:00:01"
    status: int = SUCCEEDED
    model: str = "QVa5202"
    before: str = "14.2.1.1"
    image: str = "14.4.1.1"
    file: str = "a.grp"
    pci: str = "3B:0.0"

    def running(self, version):
        """The same port in a query that finds another version."""
        return replace(self, before=version)


def attributes(**values):
    return "".join(f' {name}="{escape(str(value), {chr(34): "&quot;"})}"' for name, value in values.items())


def device(port, content):
    bus, slot, function = re.split("[:.]", port.pci)
    return "<Device" + attributes(hba=port.model, portType="FC", venId="1234", devId="E300", subDevId="E311", subVenId="1234",
                                  bus=bus, device=slot, function=function, wwpn=port.wwn) + f">\n{content}</Device>\n"


def execution(*ports, code=0, reboot=False):
    """The document of a run."""
    devices = [device(port, "<Application" + attributes(componentType="firmware", version=port.before) + ">\n" +
                      "<SupportedImage" + attributes(file=port.file, version=port.image) + "/>\n" +
                      "<VersionChange" + attributes(update=str(port.status in (SUCCEEDED, REBOOT, PREVIEWED, TWICE)).lower(),
                                                    currentVersion=port.before, newVersion=port.image) + "/>\n" +
                      "<DownloadStatus" + attributes(status=port.status, message=MESSAGES[port.status]) + "/>\n" +
                      "</Application>\n") for port in ports]
    return (PROLOG + '<Execution lang="en">\n' + "".join(devices) + f'<Message id="{code}"> All required updates succeeded. ' +
            f"</Message>\n<RebootRequired>{int(reboot)}</RebootRequired>\n</Execution>\n\n")


def inventory(*ports):
    """The document of a query."""
    devices = [device(port, "<Application" + attributes(componentType="firmware", version=port.before) + "/>\n" +
                      "<Application" + attributes(componentType="bootCode", version="NONE", enabled=0) + "/>\n")
               for port in ports]
    return (PROLOG + '<Inventory lang="en">\n' + "".join(devices) +
            '<Message id="0"> All required queries succeeded. </Message>\n</Inventory>\n\n')


def write_server(directory, name, run=None, query=None, code=None, rebooted=False, time=None):
    """The files of one server; None leaves a file out. `time` is that of the run's report, in seconds since 1970."""
    for ending, content in ((".xml", run), (".query.xml", query), (".code", code), (".rebooted", rebooted or None)):
        if content is not None:
            Path(directory, name + ending).write_text(str(content), encoding="utf-8")
    if run is not None and time is not None:
        os.utime(Path(directory, name + ".xml"), (time, time))
