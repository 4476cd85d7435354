"""What operators look at: real reports, collected, checked by the schema, and driven as a page in a browser."""
import json
import subprocess
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "end_to_end"))
from machine import TOP, MachineTest, port

PORTS = [port(), port(2, serial="S2", script="@download exit=80"), port(3, fw="14.2.1.1", serial="S3"),
         port(4, model="<script>throw(1)</script>", serial="S4"), port(5, serial="S5", script="@download exit=92 reply=no")]
RUNS = {"down": "/downgrade", "preview": "/p /update", 'q <&"': "/q", "up": "/update", "verbose": "/v /update"}
DRIVER = """<script>
const seen = Array.from(document.querySelectorAll(".totals li"), item => item.innerText.replaceAll("\\n", " "));
const look = () => seen.push(Array.from(document.querySelectorAll("tr[data-state]")).filter(row => !row.closest("[hidden]"))
    .map(row => row.dataset.state + row.cells[0].textContent.slice(-1)).join(" "));
const type = text => { search.value = text; search.dispatchEvent(new Event("input")); look(); };
const press = (part, place = 0) => { document.querySelectorAll(part + " button")[place].click(); look(); };
press("[data-state=failed]"), press("[data-state=reboot]"), type("MODEL"), reset.click(), type("UPDATES some");
press("thead", 1), press("thead", 1), press("thead"), reset.click(), press("[data-state=silent]");
seen.push(count.innerText, performance.getEntriesByType("resource").length), document.title = JSON.stringify(seen);</script>"""
SEEN = ["1 Failed port on 1 server", "1 No report server", "1 Reboot needed port on 1 server",
        "3 Skipped ports on 3 servers", "3 Would update ports on 1 server", "1 Updated port on 1 server",
        "6 Up to date ports on 3 servers", "5 Listed ports on 1 server", "failed5", "reboot2 failed5", "failed5",
        "updated1 reboot2 current3 skipped4 failed5", "failed5 reboot2 skipped4 updated1 current3",
        "current3 updated1 skipped4 reboot2 failed5", "updated1 reboot2 current3 skipped4 failed5", "",
        "0 of 20 ports, 1 of 5 servers", 0]


class Page(MachineTest):
    def test_reports_are_collected_checked_and_shown(self):
        call = lambda *command, **keys: subprocess.run(command, check=True, capture_output=True, text=True, **keys)
        folder = self.machine().path
        for name, switches in RUNS.items():
            machine = self.machine(*PORTS, matrix="QVa5202 a.grp\n", images=[(64, "14.2.1.1", "a.grp")])
            (folder / "temp" / f"{name}.xml").write_text(machine.run("/xml", *switches.split())[1])
        collected = call(TOP / "share/collect-reports.sh", folder / "temp")
        self.assertEqual(collected.stderr, "collect-reports: verbose: no report\n")
        schema = ("xmllint", "--noout", "--schema", TOP / "share/report.xsd", "-")
        call(*schema, input=collected.stdout)
        self.assertRaises(subprocess.CalledProcessError, call, *schema, input=collected.stdout.replace('"28"', '"37"'))
        page = call("xsltproc", TOP / "share/report.xsl", "-", input=collected.stdout).stdout
        (folder / "page.html").write_text(page.replace("</body>", DRIVER + "</body>"))
        shown = call("chromium", "--headless=new", "--no-sandbox", "--disable-gpu", f"--user-data-dir={folder}/browser",
                     "--enable-logging=stderr", "--dump-dom", f"file://{folder}/page.html")
        self.assertNotIn("CONSOLE", shown.stderr)
        self.assertEqual(json.loads(shown.stdout.split("<title>")[1].split("</title>")[0]), SEEN)


unittest.main()
