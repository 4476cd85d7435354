"""The page of `tarnfleet page` in a real browser: made by the program from report files, and used as a person would."""
import csv
import io
import os
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tarnfleet"))
from report_files import (FAILED, NO_LINE, NOT_NEEDED, PREVIEWED, REBOOT, SUCCEEDED, Port, execution, inventory,
                          write_server)
from browser import Browser
from cases import CASES, write_cases
from selenium.webdriver.common.keys import Keys

os.environ["TZ"] = "UTC"  # the browser shows local times
TARNFLEET = Path(os.environ["TARNLIFT_BIN"]) / "tarnfleet"
NEW, OLD = "14.4.1.1", "14.2.1.1"
MONDAY = 1_705_285_980  # seconds since 1970
DAY = 24 * 60 * 60


def port(number, status=SUCCEEDED, **values):
    return Port(f"10:00:00:00:00:00:00:{number:02x}", status, **values)


def tarnfleet(*arguments):
    return subprocess.run([TARNFLEET, *arguments], stdout=subprocess.PIPE, check=True).stdout.decode()


def write_fleet(directory):
    """A server in each of the states of a roll-out. `lost` has no file, and the report of web3 is old."""
    broken, fine = port(1, FAILED), port(2, model="QVb6101")
    query = inventory(broken, fine.running(NEW))
    write_server(directory, "db10", execution(fine, broken, code=3), query, 3, time=MONDAY)
    write_server(directory, "db9", execution(port(3)), inventory(port(3)), 0, time=MONDAY)
    write_server(directory, "web1", execution(port(4, REBOOT), reboot=True), code=0, time=MONDAY)
    write_server(directory, "web2", execution(port(5)), code=0, time=MONDAY)
    write_server(directory, "web3", execution(port(6)), inventory(port(6, before=NEW)), 0, time=MONDAY - 3 * DAY)
    write_server(directory, "web4", execution(port(7, NO_LINE, image="NONE", file="NONE"), code=7), code=7, time=MONDAY)
    write_server(directory, "web5", execution(port(8, NOT_NEEDED, before=NEW), code=1), code=1, time=MONDAY)
    (directory / "names").write_text("db9\nlost\n")


class Page(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.browser = Browser()
        cls.addClassCleanup(cls.browser.close)

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = Path(directory.name) / "reports"
        self.directory.mkdir()
        self.page = self.directory.parent / "fleet.html"
        self.browser.look(1400)

    def tearDown(self):
        self.assertEqual(self.browser.console(), [])
        self.assertEqual(self.browser.run("return performance.getEntriesByType('resource').length"), 0)

    def show(self, *arguments, address=""):
        tarnfleet("page", self.directory, *arguments, "-o", self.page)
        self.browser.open(self.page, address)

    def show_fleet(self, address=""):
        write_fleet(self.directory)
        self.show("--servers", self.directory / "names", address=address)

    def names(self):
        return self.browser.run("return Array.from(document.querySelectorAll('.server .name'), e => e.textContent)")

    def press(self, text, inside="body"):
        """Presses the button that begins with this text."""
        next(button for button in self.browser.all(f"{inside} button") if button.text.startswith(text)).click()

    def search(self, text):
        field = self.browser.one("#search")
        field.clear()
        field.send_keys(text)

    def test_shows_servers_worst_first_and_sums_them_up(self):
        self.show_fleet()
        self.assertEqual(self.browser.texts("#servers .server"), [
            "db10 Failed Download failed. 2 QVa5202, QVb6101 3 2024-01-15 02:33",
            "db9 Not installed the query afterwards shows 14.2.1.1, not 14.4.1.1 1 QVa5202 0 2024-01-15 02:33",
            "lost No report no report has come 0",
            "web1 Waiting waits for a reboot 1 QVa5202 0 2024-01-15 02:33",
            "web2 Not verified no query was made afterwards 1 QVa5202 0 2024-01-15 02:33",
            "web3 Updated 1 QVa5202 0 2024-01-12 02:33 3 days older",
            "web4 Skipped return code 7: no usable image for any port; Adapter skipped. No fwmatrix.txt model entry. "
            "1 QVa5202 7 2024-01-15 02:33",
            "web5 Current 1 QVa5202 1 2024-01-15 02:33"])
        self.assertEqual(self.browser.texts("#states li"), [
            "Failed 1 server Failed 1 port", "Not installed 1 server Not installed 1 port", "No report 1 server",
            "Waiting 1 server Waiting 1 port", "Not verified 1 server Not verified 1 port",
            "Updated 1 server Updated 2 ports", "Skipped 1 server Skipped 1 port", "Current 1 server Current 1 port"])
        self.assertEqual(self.browser.texts("#reasons tbody tr"), [
            "Download failed. 1 1", "the query afterwards shows 14.2.1.1, not 14.4.1.1 1 1", "no report has come 1 0"])
        self.assertEqual(self.browser.texts("#versions tbody tr"), [
            "QVa5202 14.2.1.1 6 3", "QVa5202 14.4.1.1 1 2", "QVa5202 not known 0 2", "QVb6101 14.2.1.1 1 0",
            "QVb6101 14.4.1.1 0 1"])
        self.assertIn("1 more than a day older than the newest", self.browser.texts("#facts")[0])
        self.assertFalse(self.browser.one("#preview").is_displayed())

    def test_gives_the_same_states_as_the_other_commands(self):
        write_cases(self.directory)
        self.show()
        self.press("Open all")
        ranks = [row.get_attribute("class") for row in self.browser.all("#states li")]
        states = self.browser.run("""
            const statesIn = element => Array.from(element?.querySelectorAll(".word") ?? [], word => word.classList[1]);
            return Object.fromEntries(Array.from(document.querySelectorAll(".server"), row =>
                [row.cells[0].textContent, [...statesIn(row), ...statesIn(row.nextElementSibling)]]))""")
        for case in CASES:
            self.assertEqual(states.pop(case.name), [case.state, *sorted(case.port_states, key=ranks.index)], case.name)
        self.assertEqual(states, {})

    def test_opens_a_server_to_show_its_ports(self):
        self.show_fleet()
        self.press("db10")
        self.assertEqual(self.browser.texts("table.inner tbody tr"), [
            "10:00:00:00:00:00:00:01 Failed QVa5202 3B:0.0 14.2.1.1 14.4.1.1 14.2.1.1 a.grp Download failed.",
            "10:00:00:00:00:00:00:02 Updated QVb6101 3B:0.0 14.2.1.1 14.4.1.1 14.4.1.1 a.grp Download succeeded."])
        self.press("db10")
        self.assertEqual(self.browser.all("table.inner"), [])

    def test_finds_ports_by_words_and_phrases_and_states(self):
        self.show_fleet()
        for query, names in [("WEB 14.2", ["web1", "web2", "web3", "web4"]), ('"not installed"', ["db9"]),
                             ("installed not", ["db9"]), ('"installed not"', []), ("db9 qvb6101", []),
                             ('00:02 "download succeeded', ["db10"])]:
            self.search(query)
            self.assertEqual(self.names(), names, query)
        self.assertEqual(self.browser.texts("#count"), ["1 of 8 servers, 1 of 8 ports"])
        self.press("db10")
        self.assertEqual(self.browser.texts("table.inner .wwn"), ["WWN", "10:00:00:00:00:00:00:02"])
        self.assertEqual(self.browser.texts(".inside p"), ["1 other port does not match."])
        self.press("Show all")
        self.press("Failed", "#states .failed")
        self.press("No report", "#states")
        self.assertEqual(self.names(), ["db10", "lost"])
        self.press("Show all")
        self.browser.all("#states .updated button")[1].click()
        self.assertEqual(self.names(), ["db10", "web3"])
        self.press("Show all")
        self.press("no report has come", "#reasons")
        self.assertEqual(self.names(), ["lost"])
        self.press("2", "#versions")  # what runs the new version now
        self.assertEqual(self.names(), ["web3", "web5"])

    def test_a_link_shows_the_same(self):
        self.show_fleet()
        self.search("web")
        self.press("Waiting", "#states")
        self.press("Updated", "#states")
        self.press("Server", "#headings")
        self.press("Server", "#headings")
        self.press("web3")
        self.browser.wait(lambda: "open=" in self.browser.driver.current_url)
        seen = self.browser.texts("main")
        self.assertEqual(self.names(), ["web3", "web1"])
        address = self.browser.driver.current_url.partition("#")[2]
        self.browser.open(self.page, "#" + address)
        self.assertEqual(self.browser.texts("main"), seen)
        self.assertEqual(self.browser.one("#search").get_attribute("value"), "web")
        self.press("Show all")
        self.assertEqual(len(self.names()), 8)
        self.browser.driver.back()
        self.browser.wait(lambda: self.names() == ["web3", "web1"])
        self.browser.open(self.page, "#sort=constructor&state=toString,failed&only=x&open=%00&after=<b>")
        self.assertEqual(self.browser.texts("#count"), ["0 of 8 servers, 0 of 8 ports"])
        self.assertEqual(self.browser.texts("#filters"), ["Remove the filter Now: <b> ×"])

    def test_sorts_by_each_column_in_both_directions_and_missing_values_last(self):
        self.show_fleet()
        for column, first, last in [("Server", "db9", "web5"), ("Server", "web5", "db9"), ("Code", "db9", "lost"),
                                    ("Code", "web4", "lost"), ("Report", "web3", "lost"), ("Report", "db9", "lost"),
                                    ("State", "db10", "web5"), ("State", "web5", "db10")]:
            self.press(column, "#headings")
            self.assertEqual([self.names()[0], self.names()[-1]], [first, last], column)
        sorts = [heading.get_attribute("aria-sort") for heading in self.browser.all("#headings th")]
        self.assertEqual(sorts, [None, "descending", None, None, None, None, None])

    def test_saves_what_is_shown_as_the_csv_command_writes_it(self):
        strange = port(1, FAILED, model='=1+1,"x"', file="-a b.grp", before="@x")
        write_server(self.directory, "+cmd", execution(strange, code=3), code=-1073741819)
        self.show_fleet()
        names = ("--servers", self.directory / "names")
        self.assertEqual(self.save(), tarnfleet("csv", self.directory, *names))
        self.search("qvb6101")
        rows = list(csv.DictReader(io.StringIO(self.save())))
        self.assertEqual([(row["server"], row["wwn"], row["state"]) for row in rows],
                         [("db10", "10:00:00:00:00:00:00:02", "updated")])

    def save(self):
        """What the button saves."""
        file = self.browser.directory / "fleet.csv"
        self.press("Save as CSV")
        self.browser.wait(lambda: file.exists() and file.stat().st_size)  # it is empty until all has come
        text = file.read_bytes().decode()
        file.unlink()
        return text

    def test_copies_the_names_of_the_servers_shown(self):
        self.show_fleet()
        self.browser.driver.execute_cdp_cmd("Browser.grantPermissions", {"permissions": ["clipboardReadWrite"]})
        self.search("db")
        self.press("Copy names")
        self.browser.wait(lambda: self.browser.texts("#done") == ["Copied 2 names."])
        read = "navigator.clipboard.readText().then(arguments[0])"
        self.assertEqual(self.browser.driver.execute_async_script(read), "db10\ndb9\n")

    def test_works_by_keyboard_and_tells_a_screen_reader_what_it_shows(self):
        self.show_fleet()
        focused = lambda: self.browser.driver.switch_to.active_element
        self.browser.one("body").send_keys(Keys.TAB)
        self.assertEqual(focused().text, "Skip to the servers")
        focused().send_keys(Keys.ENTER)
        for _ in range(8):  # seven headings, and the first server
            focused().send_keys(Keys.TAB)
        self.assertEqual((focused().accessible_name, focused().get_attribute("aria-expanded")), ("db10", "false"))
        focused().send_keys(Keys.DOWN)
        focused().send_keys(Keys.ENTER)
        self.assertEqual((focused().accessible_name, focused().get_attribute("aria-expanded")), ("db9", "true"))
        for selector, role, name in [("#servers", "table", "Servers"), ("#servers th", "columnheader", "Server"),
                                     ("table.inner", "table", "Ports of db9"),
                                     ("#states button", "button", "Failed 1 server"),
                                     ("#search", "searchbox", "Search servers and ports")]:
            element = self.browser.one(selector)
            self.assertEqual((element.aria_role, element.accessible_name), (role, name))
        for selector, role in [("#servers .server", "row"), ("table.inner .wwn", "columnheader"), ("#count", "status")]:
            self.assertEqual(self.browser.one(selector).aria_role, role, selector)

    def test_prints_the_summary_and_the_servers_that_need_attention(self):
        for number in range(300):
            write_server(self.directory, f"fine{number}", execution(port(9)), inventory(port(9, before=NEW)), 0)
        self.show_fleet()
        paper = self.directory.parent / "fleet.pdf"
        self.browser.print(paper)
        printed = subprocess.run(["pdftotext", paper, "-"], capture_output=True, text=True, check=True).stdout
        self.assertEqual(printed.count("\f"), 1)
        for text in ("308 servers, 308 ports", "Failures by reason", "5 servers need attention", "db10", "lost"):
            self.assertIn(text, printed)
        for text in ("fine1", "web3", "Save as CSV"):
            self.assertNotIn(text, printed)

    def test_shows_whatever_reports_hold_as_text_in_its_place(self):
        names = ["<img src=x onerror=alert(1)>", "\u202egpj.exe", "a" * 200, "&amp;\u2028'\"", "-->] ]>", "שלום"]
        evil = ["</script><script>alert(1)</script>", "\u2067\u202eright", "Z" + "\u0338\u0327\u0322" * 30, "w" * 200]
        for place, name in enumerate(names):
            text = evil[place % len(evil)]
            ports = [port(1, FAILED, model=text, before=text, image=text, file=text)]
            write_server(self.directory, name, execution(*ports, code=2), code=2)
        self.show()
        self.press("Open all")
        self.assertEqual(len(self.names()), len(names))
        self.assertIn(names[0], self.names())
        self.assertEqual(set(self.browser.texts("table.inner tbody .model")) & set(evil), {evil[0], evil[2], evil[3]})
        for width in (1400, 390):
            self.browser.look(width)
            self.assertEqual(self.browser.run("""
                const box = element => element.getBoundingClientRect();
                return [document.documentElement.scrollWidth, document.querySelectorAll("img, script").length,
                    [...document.querySelectorAll("#servers bdi")].filter(bdi => box(bdi).right >
                        box(bdi.closest("td, th")).right + 1).map(bdi => bdi.textContent)]"""), [width, 2, []])

    def test_the_policy_refuses_scripts_that_are_not_the_page_s_own(self):
        self.show_fleet()
        self.browser.run("""const script = document.createElement("script");
            script.textContent = "document.title = 'taken over'";
            document.body.append(script);
            document.body.insertAdjacentHTML("beforeend", "<p style='color: red'>");""")
        refusals = " ".join(self.browser.console())
        self.assertIn("Executing inline script violates", refusals)
        self.assertIn("Applying inline style violates", refusals)
        self.assertEqual(self.browser.driver.title, "Firmware report: 8 servers")

    def test_a_preview_says_that_nothing_was_written(self):
        write_server(self.directory, "a", execution(port(1, PREVIEWED)), code=0)
        write_server(self.directory, "b", execution(port(2, NOT_NEEDED, before=NEW), code=1), code=1)
        self.show()
        self.assertEqual(self.browser.texts("#preview"),
                         ["Preview: nothing was written. The page shows what the roll-out would do."])
        self.assertEqual(self.browser.texts("#versions thead"), ["Model Firmware Before Planned"])
        self.assertEqual(self.browser.texts("#versions tbody tr"), ["QVa5202 14.2.1.1 1 0", "QVa5202 14.4.1.1 1 2"])
        mixed = execution(port(3), port(4, NOT_NEEDED, before=NEW))
        write_server(self.directory, "c", mixed, inventory(port(3, before=NEW), port(4, before=NEW)), 0)
        self.show()
        self.assertEqual(self.browser.texts("#preview strong"),
                         ["Preview: where a server would update, nothing was written."])
        self.assertEqual(self.browser.texts(".server .reason"), ["1 updated, 1 current", "", ""])
        self.assertEqual(self.browser.texts(".server .state"), ["Updated", "Would update Preview", "Current"])

    def test_a_report_from_the_future_makes_no_other_look_old(self):
        now = int(time.time())
        for name, age in [("new", 0), ("skewed", -400 * DAY), ("old", 2 * DAY)]:
            write_server(self.directory, name, execution(port(1)), code=0, time=now - age)
        self.show()
        self.assertEqual([text[16:].strip() for text in self.browser.texts(".server .time")], ["", "2 days older", ""])

    def test_all_of_many_servers_come_into_the_list(self):
        write_server(self.directory, "server0", execution(port(1)), code=0)
        (self.directory / "names").write_text("".join(f"server{number}\n" for number in range(1000)))
        self.show("--servers", self.directory / "names")
        self.browser.wait(lambda: len(self.browser.all(".server")) == 1000)
        self.assertEqual(self.names()[::333], ["server1", "server334", "server667", "server0"])
        self.search("server99")
        self.assertEqual(self.browser.texts("#count"), ["11 of 1,000 servers, 0 of 1 port"])

    def test_every_text_has_contrast_in_both_colour_schemes_and_widths(self):
        self.show_fleet("#open=db10&state=failed&after=14.4.1.1")
        for width in (1400, 390):
            for dark in (False, True):
                self.browser.look(width, dark=dark)
                weak = self.browser.run((Path(__file__).parent / "contrast.js").read_text())
                self.assertEqual(weak, [], (width, dark))


unittest.main()
