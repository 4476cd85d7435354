#!/usr/bin/python3
"""Makes the README's picture of the fleet page, docs/fleet-page.png, from a made fleet.

Usage: tools/page-picture.py [FILE]        needs the native build, and what tools/setup.sh test installs
"""
import csv
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

TOP = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(TOP / "tests/fleet_page"))
from browser import Browser

SERVERS = 240
MADE = 1_795_401_600  # when the page says that it was made, in seconds since 1970
WIDTH, HEIGHT = 1280, 960


def tarnfleet(*arguments):
    command = [TOP / "build/native/bin/tarnfleet", *arguments]
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout


def main():
    file = Path(sys.argv[1]) if len(sys.argv) > 1 else TOP / "docs/fleet-page.png"
    os.environ["TZ"] = "UTC"
    with tempfile.TemporaryDirectory() as directory:
        reports, page = Path(directory, "reports"), Path(directory, "fleet.html")
        subprocess.run([TOP / "bench/made_fleet.py", reports, str(SERVERS)], check=True)
        tarnfleet("page", reports, "-o", page)
        failed = next(row["server"] for row in csv.DictReader(tarnfleet("csv", reports).splitlines())
                      if row["state"] == "failed")
        html = page.read_text(encoding="utf-8")
        page.write_text(re.sub(r'"created":\d+', f'"created":{MADE}', html), encoding="utf-8")
        browser = Browser()
        try:
            browser.look(WIDTH, HEIGHT)
            browser.open(page, f"#open={failed}")
            browser.texts("main")  # all is drawn
            browser.picture(file)
        finally:
            browser.close()
    print(f"{file}: {file.stat().st_size} bytes")


main()
