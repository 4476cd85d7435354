#!/usr/bin/python3
"""Measures the page of a made fleet in headless Chromium: opening it, and filters and sorts in it.

Usage: bench/fleet_page.py [SERVERS]      5000 if not given

Needs the native build, and what tools/setup.sh test installs.

Each time ends when the browser has painted the result. Prints a table in Markdown.
"""
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

TOP = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(TOP / "tests/fleet_page"))
from browser import Browser

ROUNDS = 7
# What the steps below are made of.
PREPARE = """
    window.painted = () => new Promise(done => requestAnimationFrame(() => setTimeout(done)));
    window.press = selector => document.querySelector(selector).click();
    window.type = text => {
        const search = document.getElementById("search");
        search.value = text;
        search.dispatchEvent(new Event("input"));
    };
    window.measure = async step => {
        await new Promise(done => setTimeout(done, 300));
        const start = performance.now();
        step();
        await painted();
        return performance.now() - start;
    };"""
STEPS = {
    "search for a letter": 'type("d")',
    "search for three words": 'type("fra 10:00 14.2")',
    "search emptied": 'type("")',
    "one state": 'press("#states .failed button")',
    "all again": 'press("#reset")',
    "sort by name": 'press("#headings .name button")',
    "sort by models": 'press("#headings .models button")',
    "sort by report, oldest first": 'press("#headings .time button")',
    "the same backwards": 'press("#headings .time button")',
    "a server opened": 'press(".toggle")',
}


def measure_page(page):
    """Milliseconds of each step in a browser of its own."""
    browser = Browser()
    try:
        browser.open(page)
        run = browser.driver.execute_async_script
        times = {"opened": run(PREPARE + "painted().then(() => arguments[0](performance.now()));")}
        time.sleep(1)  # nobody reads faster; meanwhile the page fills the rows out of sight
        for name, step in STEPS.items():
            times[name] = run(f"measure(() => {step}).then(arguments[0]);")
        return times
    finally:
        browser.close()


def main():
    servers = int(sys.argv[1]) if len(sys.argv) > 1 else 5000
    with tempfile.TemporaryDirectory() as directory:
        reports, page = Path(directory, "reports"), Path(directory, "fleet.html")
        subprocess.run([TOP / "bench/made_fleet.py", reports, str(servers)], check=True)
        subprocess.run([TOP / "build/native/bin/tarnfleet", "page", reports, "-o", page], check=True)
        rounds = [measure_page(page) for _ in range(ROUNDS)]
    print(f"| {servers:,} servers | Least ms | Median ms |\n|---|---|---|")
    for name in rounds[0]:
        times = [times[name] for times in rounds]
        print(f"| {name} | {min(times):.0f} | {statistics.median(times):.0f} |")


main()
