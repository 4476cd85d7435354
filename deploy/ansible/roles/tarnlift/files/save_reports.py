"""Saves what the servers of a batch printed: DIRECTORY/NAME.xml, and DIRECTORY/NAME.code with the return code.

A server without a return code, because its turn has not come or it could not be reached, gets an empty NAME.xml, so
that the page names it; an older report stays.
Usage: save_reports.py DIRECTORY < {"servers": [NAME, ...], "ended": {NAME: {"code": 0, "printed": TEXT}, ...}}
"""
import json
import sys
from pathlib import Path

directory = Path(sys.argv[1])
directory.mkdir(exist_ok=True)
given = json.load(sys.stdin)
for name in given["servers"]:
    report, code = directory / f"{name}.xml", directory / f"{name}.code"
    ended = given["ended"].get(name)
    if not ended:
        report.touch()
        continue
    report.write_text(ended.get("printed", ""), encoding="utf-8", errors="replace")
    code.unlink(missing_ok=True)
    if "code" in ended:
        code.write_text(f"{ended['code']}\n")
