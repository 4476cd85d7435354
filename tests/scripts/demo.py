"""demo.sh walks through to its end, and its fleet ends as its text says."""
import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
STATES = {"app01": "not-installed", "app02": "failed", "db01": "updated", "db02": "waiting", "db03": "no-report",
          "web01": "current", "web02": "skipped"}


class Demo(unittest.TestCase):
    def test_it_walks_through_one_server_and_a_fleet(self):
        with tempfile.TemporaryDirectory() as place:
            done = subprocess.run([TOP / "demo.sh"], env={**os.environ, "TARNLIFT_DEMO": place}, stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT, text=True, timeout=300)
            self.assertEqual(done.returncode, 0, done.stdout)
            self.assertIn("=== Try next", done.stdout)
            self.assertLess(done.stdout.count("\n"), 250, "too long to be read")
            roll_out = done.stdout.partition("> tarnfleet status reports")[2]
            self.assertEqual(dict(re.findall(r"(?m)^((?:app|db|web)\d\d) +(\S+)", roll_out)), STATES, done.stdout)
            self.assertGreater(Path(place, "fleet/fleet.html").stat().st_size, 10_000)


unittest.main()
