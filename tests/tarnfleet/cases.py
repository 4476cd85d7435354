"""Servers and the states that every output of tarnfleet gives them: the files of each, and what they mean."""
from dataclasses import dataclass

from report_files import (FAILED, MISSING_IMAGE, NO_LINE, NOT_NEEDED, PREVIEWED, PROLOG, REBOOT, SUCCEEDED, TWICE, Port,
                          execution, inventory)

ACTIVATED, PREVIEW_FAILED, REFUSED = 29, 18, 31
OLD, NEW = "14.2.1.1", "14.4.1.1"
ATTENTION = ("failed", "not-installed", "no-report")
UNFINISHED = ("waiting", "not-verified")


@dataclass
class Case:
    """A server. The states of its ports follow its own; `reason` is a part of its reasons."""
    name: str
    files: dict  # content by the end of the file's name
    states: str
    reason: str = ""
    reboot: bool = False

    @property
    def state(self):
        return self.states.split()[0]

    @property
    def port_states(self):
        return self.states.split()[1:]

    @property
    def exit_code(self):
        return 2 if self.state in ATTENTION else 1 if self.state in UNFINISHED else 0


def run(*ports, query=None, **keys):
    """The files of a run, with its return code, and of a query that finds these ports."""
    files = {"xml": execution(*ports, **keys), "code": f"{keys.get('code', 0)}\r\n"}
    if query is not None:
        files["query.xml"] = inventory(*query)
    return files


def text(message, code):
    """What the program prints when it ends before it begins a document."""
    return f"\ntarnlift.exe: {message} - Return Code={code}\n\n\n"


done, second = Port(), Port(wwn="10:00:00:00:00:00:00:02", pci="3B:0.1")
now, old = done.running(NEW), done.running(OLD)
reboot, twice, failed = Port(status=REBOOT), Port(status=TWICE), Port(status=FAILED)
unlisted = Port(status=NO_LINE, image="NONE", file="NONE")
current = Port(status=NOT_NEEDED, before=NEW)
good = execution(done)
rebooted = {"rebooted": ""}
no_adapters = text("Error - no supported Velmar HBAs found", 5)

CASES = [
    # What the query proves.
    Case("updated", run(done, query=[now]), "updated updated"),
    Case("activated", run(Port(status=ACTIVATED), query=[now]), "updated updated"),
    Case("major-3-is-2", run(Port(image="3.4.1.1"), query=[done.running("2.4.1.1")]), "updated updated"),
    Case("liar", run(done, query=[old]), "not-installed not-installed", f"shows {OLD}, not {NEW}"),
    Case("version-beyond-text", run(done, query=[done.running("14.4.1.10")]), "not-installed not-installed"),
    Case("port-gone", run(done, second, query=[now]), "not-installed updated not-installed", "does not list the port"),
    Case("same-key", run(done, done, query=[now, old]), "not-installed updated not-installed"),
    Case("port-moved", run(done, query=[Port(pci="3C:0.0", before=NEW)]), "not-installed not-installed listed"),
    Case("all-gone", {**run(done), "query.xml": no_adapters}, "not-installed not-installed"),
    Case("current", run(current, code=1, query=[now]), "current current"),
    Case("no-longer-current", run(current, code=1, query=[old]), "not-installed not-installed"),
    Case("no-query", run(done), "not-verified not-verified", "no query"),
    Case("query-cut-off", {**run(done), "query.xml": inventory(now)[:300]}, "not-verified not-verified", "is cut off"),
    Case("query-is-a-run", {**run(done), "query.xml": good}, "not-verified not-verified", "is the report of a run"),
    # What waits.
    Case("reboot", run(reboot, query=[now]), "waiting waiting", "waits for a reboot", reboot=True),
    Case("rebooted", {**run(reboot, query=[now]), **rebooted}, "updated updated"),
    Case("rebooted-liar", {**run(reboot, query=[old]), **rebooted}, "not-installed not-installed"),
    Case("rebooted-no-query", {**run(reboot), **rebooted}, "not-verified not-verified"),
    Case("twice", run(twice, query=[now]), "waiting waiting", "second download", reboot=True),
    Case("twice-rebooted", {**run(twice, query=[now]), **rebooted}, "waiting waiting", "waits for a second download"),
    Case("reboot-by-run-alone", run(done, reboot=True, query=[now]), "waiting updated", "asks for a reboot", reboot=True),
    Case("reboot-beside-failure", run(reboot, Port("2", FAILED), code=3), "failed waiting failed", reboot=True),
    # What failed, by a port or by the return code.
    Case("one-of-two", run(done, Port("2", REFUSED), code=3, query=[now]), "failed updated failed", "Incompatible image."),
    Case("no-right", {"code": "8"}, "failed", "not enough rights"),
    Case("no-right-by-text", {"xml": text("Error - insufficient privileges", 8)}, "failed", "8: insufficient privileges"),
    Case("crash", {"code": "3221225477\r\n", "xml": ""}, "failed", "return code -1073741819"),
    Case("other-code", {**run(done, query=[now]), "code": "1"}, "failed updated", "the report says 0"),
    Case("code-without-failure", run(done, code=2, query=[now]), "failed updated", "return code 2"),
    Case("image-missing", run(Port(status=MISSING_IMAGE), unlisted, code=7), "failed failed skipped"),
    Case("preview-failed", run(Port(status=PREVIEW_FAILED), code=2), "failed failed"),
    Case("incomplete", {"xml": inventory(done.running("N/A"))}, "failed failed", "no usable firmware version"),
    # What is fine without a download.
    Case("preview", run(Port(status=PREVIEWED), current), "would-update would-update current"),
    Case("unlisted", run(unlisted, code=7), "skipped skipped", "No fwmatrix.txt model entry"),
    Case("listed", {"xml": inventory(done, second), "code": "0"}, "listed listed listed"),
    Case("no-adapters", {"xml": no_adapters}, "no-adapters"),
    Case("adapters-after-all", {"xml": no_adapters, "query.xml": inventory(now)}, "listed listed", "only the query"),
    Case("no-adapters-by-code", {"code": "5"}, "no-adapters"),
    # What is no report.
    Case("empty", {"xml": "", "code": "5"}, "no-report", "is empty"),
    Case("cut-off", {"xml": good[:-20]}, "no-report", "is cut off"),
    Case("help", {"xml": "Velmar Tarnlift\n\nUsage: ...\n", "code": "0"}, "no-report", "plain text: Velmar Tarnlift"),
    Case("verbose", {"xml": "Download Summary:\n" + good}, "no-report", "as /v prints it"),
    Case("text-inside", {"xml": good.replace("<Message", "Download Summary: <Message")}, "no-report", "as tarnlift.exe writes"),
    Case("text-after", {"xml": good + "cmd.exe: access denied"}, "no-report", "as tarnlift.exe writes"),
    Case("two-runs", {"xml": good + good}, "no-report", "several documents"),
    Case("entity", {"xml": good.replace(PROLOG, PROLOG + '<!DOCTYPE x [<!ENTITY e SYSTEM "file:///etc/hostname">]>')
                    .replace("a.grp", "&e;")}, "no-report"),
    Case("empty-root", {"xml": PROLOG + "<Execution/></Execution>"}, "no-report", "as tarnlift.exe writes"),
    Case("other-element", {"xml": good.replace("<Message", "<Extra/><Message")}, "no-report"),
    Case("element-twice", {"xml": good.replace("<RebootRequired>", "<RebootRequired>0</RebootRequired><RebootRequired>")},
         "no-report"),
    Case("element-missing", {"xml": good.replace("<RebootRequired>0</RebootRequired>", "")}, "no-report"),
    Case("other-attribute", {"xml": good.replace(' lang="en"', "")}, "no-report"),
    Case("status-unknown", {"xml": good.replace('status="0"', 'status="37"')}, "no-report"),
    Case("long-value", {"xml": execution(Port(model="x" * 600))}, "no-report"),
    Case("too-large", {"xml": good + " " * (8 << 20)}, "no-report", "is too large"),
    Case("code-unreadable", {"code": "many"}, "no-report", "does not hold a number"),
    Case("only-a-query", {"query.xml": inventory(now)}, "no-report", "only a query"),
    Case("only-rebooted", rebooted, "no-report"),
    Case("not-planned", {"refused": "not planned: line 3\n"}, "no-report", "not planned: line 3"),
    # Other encodings.
    Case("utf-16", {"xml": good.encode("utf-16"), "query.xml": inventory(now).encode("utf-16-be"),
                    "code": "0\r\n".encode("utf-16")}, "updated updated"),
    Case("byte-order-mark", {"xml": good.encode("utf-8-sig"), "code": b"\xef\xbb\xbf0\r\n"}, "not-verified not-verified"),
    Case("latin-1", {"xml": execution(Port(model="QVä")).encode("latin-1")}, "not-verified not-verified"),
]


def write_cases(directory):
    for case in CASES:
        for end, content in case.files.items():
            (directory / f"{case.name}.{end}").write_bytes(content if isinstance(content, bytes) else content.encode())
