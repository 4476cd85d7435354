"""Reads what tarnlift.exe prints under /xml."""
import xml.etree.ElementTree as ElementTree

# Values of DownloadStatus.
WAITS_FOR_REBOOT = "1"
DOWNLOAD_TWICE = "22"


def parsed(text):
    try:
        return ElementTree.fromstring(text.encode(errors="replace"))
    except ElementTree.ParseError:
        return ElementTree.Element("NoReport")


def port_name(device):
    return f"{device.get('hba')} {device.get('wwpn')}"


def place(device):
    return tuple(device.get(name) for name in ("wwpn", "bus", "device", "function"))


def numbers(version):
    """A version as the program compares it: a major number 3 counts as 2."""
    pieces = [int(piece) if piece.isdigit() else piece for piece in version.split(".")]
    return [2] + pieces[1:] if pieces[0] == 3 else pieces


def reboot_required(report):
    """By the report's own word, or a port's: with failed boards beside a waiting one the report may say 0."""
    found = parsed(report)
    statuses = {result.get("status") for result in found.iter("DownloadStatus")}
    return found.findtext("RebootRequired") == "1" or bool(statuses & {WAITS_FOR_REBOOT, DOWNLOAD_TWICE})


def compare(report, query, rebooted):
    """What the ports run, by a query, against what the update's report says was downloaded to them."""
    wrong, waiting = [], []
    inventory = parsed(query)
    if inventory.tag != "Inventory":
        return {"wrong": ["the query after the update gave no report"], "waiting": []}
    running = {place(device): device.find("Application[@componentType='firmware']").get("version")
               for device in inventory.iter("Device")}
    for device in parsed(report).iter("Device"):
        change, result = device.find(".//VersionChange"), device.find(".//DownloadStatus")
        if change is None or change.get("update") != "true":
            continue
        status, wanted, found = result.get("status"), change.get("newVersion"), running.get(place(device))
        if status == DOWNLOAD_TWICE:
            waiting.append(f"{port_name(device)} needs the download a second time, after a reboot")
        if status in (WAITS_FOR_REBOOT, DOWNLOAD_TWICE) and not rebooted:
            waiting.append(f"{port_name(device)} waits for a reboot; what it runs then is not known yet")
        elif found is None:
            wrong.append(f"{port_name(device)} is not listed any more")
        elif numbers(found) != numbers(wanted):
            wrong.append(f"{port_name(device)} runs {found}, not {wanted}")
    return {"wrong": wrong, "waiting": waiting}


class FilterModule:
    def filters(self):
        return {"tarnlift_reboot_required": reboot_required, "tarnlift_compare": compare}
