#!/usr/bin/python3
"""Makes the README's picture of the fleet page, docs/fleet-page.png, from a made fleet.

Usage: tools/page-picture.py [FILE]        needs the native build, and what tools/setup.sh test installs
"""
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

TOP = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(TOP / "tests/fleet_page"))
from browser import Browser

SERVERS = 340
OPEN = "app0259.lon.example"  # a server that failed
MADE = 1_795_401_600  # when the page says that it was made, in seconds since 1970
WIDTH, HEIGHT = 1280, 960


def main():
    file = Path(sys.argv[1]) if len(sys.argv) > 1 else TOP / "docs/fleet-page.png"
    os.environ["TZ"] = "UTC"
    with tempfile.TemporaryDirectory() as directory:
        reports, page = Path(directory, "reports"), Path(directory, "fleet.html")
        subprocess.run([TOP / "bench/made_fleet.py", reports, str(SERVERS)], check=True)
        subprocess.run([TOP / "build/native/bin/tarnfleet", "page", reports, "-o", page], check=True)
        page.write_text(re.sub(r'"created":\d+', f'"created":{MADE}', page.read_text(encoding="utf-8")), encoding="utf-8")
        browser = Browser()
        try:
            browser.look(WIDTH, HEIGHT)
            browser.open(page, f"#open={OPEN}")
            browser.texts("main")  # all is drawn
            browser.picture(file)
        finally:
            browser.close()
    print(f"{file}: {file.stat().st_size} bytes")


main()
