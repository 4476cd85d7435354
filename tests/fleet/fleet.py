"""The roll-out with Ansible, on the simulated servers of its rehearsal."""
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

DEPLOY = Path(__file__).resolve().parents[2] / "deploy/ansible"
ROLE = DEPLOY / "roles/tarnlift"
# Ansible belongs to the interpreter of the system, which need not be this one.
sys.path += [str(ROLE / "action_plugins"), str(ROLE / "filter_plugins"), "/usr/lib/python3/dist-packages"]
import tarnlift as rights  # noqa: E402
import tarnlift_check_variables as variables  # noqa: E402
import tarnlift_end as end  # noqa: E402
import tarnlift_plan as plan  # noqa: E402

# How the play ends for each server, and the state that tarnfleet finds in its reports.
UPDATED = {
    "auto": "changed updated",
    "canary": "changed updated",
    "current": "ok current",
    "cut-off": "failed no-report",
    "gone": "failed none",
    "half": "failed failed",
    "intruder": "failed none",
    "liar": "failed not-installed",
    "lost": "changed updated",
    "no-adapters": "ok no-adapters",
    "node1": "changed updated",
    "node2": "changed updated",
    "old-system": "failed failed",
    "refuses": "failed failed",
    "twin": "failed none",
    "two-boards": "changed updated",
    "unlisted": "ok skipped",
    "waits": "failed waiting",
}


class Rehearsal(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.top = tempfile.TemporaryDirectory()
        cls.results = Path(cls.top.name, "fleet")
        subprocess.run([DEPLOY / "rehearsal/run.sh", os.environ["TARNLIFT_BIN"], cls.results], check=True)

    @classmethod
    def tearDownClass(cls):
        cls.top.cleanup()

    def ended(self, step):
        return {line.split()[0]: " ".join(line.split()[1:]) for line in self.text(f"{step}.ended").splitlines()}

    def text(self, name):
        return (self.results / name).read_text(errors="replace")

    def calls(self, step):
        return self.text("calls.txt").split(f"== {step}\n")[1].split("== ")[0].splitlines()

    def last_line(self, step, server):
        return re.findall(f"^{server}: (.*)$", self.text(f"{step}.log"), re.MULTILINE)[-1]

    def test_a_misspelled_variable_is_refused_by_its_name(self):
        self.assertIn("unknown variable tarnlift_aply (did you mean tarnlift_apply?)", self.text("misspelled.log"))
        self.assertEqual(set(self.ended("misspelled").values()), {"failed none"})

    def test_without_a_word_nothing_is_written(self):
        self.assertEqual(self.ended("preview"), {  # changed: the files were copied
            "canary": "changed would-update", "current": "changed current", "cut-off": "failed none",
            "killed": "changed would-update", "no-adapters": "changed no-adapters", "node1": "changed would-update",
            "unlisted": "changed skipped"})
        self.assertIn("Run the play with tarnlift_apply=true", self.last_line("preview", "cut-off"))
        self.assertIn("This play wrote no firmware.", self.text("preview.log"))
        self.assertNotIn("This play wrote no firmware.", self.text("update.log"))
        for step in ("misspelled", "preview", "check"):
            self.assertEqual(self.calls(step), [], step)
        self.assertEqual(self.ended("check"), {"canary": "changed would-update", "current": "ok current"})

    def test_each_server_ends_as_its_adapters_do(self):
        self.assertEqual(self.ended("update"), UPDATED)
        self.assertEqual(self.ended("again"), {"canary": "ok current", "two-boards": "ok current", "refuses": "failed failed"})

    def test_the_last_line_of_a_failed_server_names_ports_and_reasons(self):
        ports = r"10:00:[0-9A-F:]+:01, 10:00:[0-9A-F:]+:02 "
        reasons = {
            "liar": ports + r"\(QVa5104\): the query afterwards shows 14.2.100.5, not 14.4.473.14",
            "half": ports + r"\(QVa6102\): Download failed.*ports wait for a reboot, which a failed server does not",
            "old-system": "return code 9",
            "cut-off": "ended without a return code",
            "intruder": r"C:\\Tarnlift\\version.dll"}
        for server, reason in reasons.items():
            self.assertRegex(self.last_line("update", server), reason)

    def test_servers_reboot_one_after_the_other_between_their_tasks(self):
        lines = self.text("reboots.txt").split("\n")
        self.assertEqual([line for line in lines if "node" in line],
                         ["node1 drained", "node1", "node1 resumed", "node2 drained", "node2", "node2 resumed"])
        rebooting = [line for line in lines if not line.endswith((" drained", " resumed"))]
        self.assertEqual([names for names in rebooting if " " in names], [])
        self.assertIn("left as it is, since refuses of the partners pair-a failed", self.last_line("update", "twin"))
        self.assertIn("no reboot, since partners do not answer: killed", self.last_line("update", "waits"))

    def test_an_update_outlives_its_session(self):
        self.assertEqual(sum(call.startswith("lost download") for call in self.calls("update")), 1)
        self.assertIn("the session was lost", self.text("update.log"))

    def test_an_update_outlives_the_controller_and_is_picked_up(self):
        self.assertEqual(self.text("killed.left").split(), ["report.xml"])  # no return code yet: the download went on
        self.assertEqual(self.ended("resumed"), {"killed": "changed updated"})
        self.assertEqual(sum("download" in call for call in self.calls("resumed")), 1)
        self.assertIn("an earlier play started", self.last_line("resumed", "killed"))

    def test_a_batch_with_too_many_failures_is_the_last_one(self):
        self.assertIn("refuses of the last batch failed", self.text("stop.log"))
        self.assertEqual(self.ended("stop")["auto"], "ok none")

    def test_the_modules_of_windows_get_what_they_must(self):
        told = (self.results / "servers/node1/modules.txt").read_text().replace(str(self.results), "RESULTS")
        expected = Path(__file__).with_name("windows_calls.txt").read_text()
        self.assertEqual(told.splitlines(), expected.splitlines())
        modules = {line.split()[0] for line in told.splitlines()}
        documented = json.loads(subprocess.run(
            ["ansible-doc", "--json", "--type", "module", *[f"ansible.windows.{module}" for module in modules]],
            check=True, capture_output=True).stdout)
        for line in told.splitlines():
            module, options = line.split(" ", 1)
            known = {"async", "poll", "environment", *documented[f"ansible.windows.{module}"]["doc"]["options"]}
            self.assertLessEqual(set(json.loads(options)), known, module)

    def test_the_play_ends_with_the_list_and_the_page(self):
        last = self.text("update.log").split("PLAY RECAP")[1]
        self.assertRegex(last, "(?s)refuses.*not-installed.*waits .*updated")
        self.assertIn(f"Page: {self.results}/fleet.html", last)
        self.assertRegex(last, "gone +no-report .*unreachable: no answer")
        self.assertTrue((self.results / "fleet.html").stat().st_size)


class Rules(unittest.TestCase):
    def test_partners_are_in_different_batches(self):
        servers = [(name, name[0]) for name in ("a1", "a2", "a3", "b1", "b2")] + [("x", ""), ("y", ""), ("z", "")]
        self.assertEqual(plan.divide(servers, [1, "50%"]), [["a1"], ["a2", "b1", "x", "y"], ["a3", "b2", "z"]])

    def test_a_directory_that_is_unfit_for_temp_is_refused(self):
        self.assertIsNone(variables.directory_problem(r"D:\Tools\Tarnlift-2"))
        for sign in "&|<>^% ,;='\"\t":
            self.assertIn("TEMP", variables.directory_problem(f"C:\\Tarn{sign}lift"), sign)
        for directory in ("C:\\", "Tarnlift", r"\\server\share\x", r"C:\a\..\Windows", "C:\\" + 150 * "a"):
            self.assertIsNotNone(variables.directory_problem(directory), directory)

    def test_only_administrators_and_the_system_may_have_rights(self):
        top, below = "O:BAG:SYD:PAI(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)", "O:SYD:AI(A;ID;FA;;;BA)(A;ID;FA;;;SY)"
        self.assertIsNone(rights.rights_problem(top, True, True))
        self.assertIsNone(rights.rights_problem(below, False, False))
        refused = {
            top.replace("O:BA", "O:S-1-5-21-7"): "the owner is S-1-5-21-7",
            top.replace("PAI", "AI"): "it inherits rights",
            top + "(A;OICI;FR;;;WD)": "A;OICI;FR;;;WD",
            top.removesuffix("(A;OICI;FA;;;BA)"): "lack rights",
            "O:BAG:SY": "no list of rights"}
        for sddl, problem in refused.items():
            self.assertIn(problem, rights.rights_problem(sddl, True, True))
        self.assertIn("(A;;FA;;;BA)", rights.rights_problem(below + "(A;;FA;;;BA)", False, False))

    def test_a_key_of_the_return_codes_changes_alone(self):
        built_in = {5: {"outcome": "state", "text": "none"}, 7: {"outcome": "state"}}
        codes, problems = variables.merged_codes(built_in, {"5": {"outcome": "failed"}, "x": {}, 7: {"outcome": "fine"}})
        self.assertEqual(codes, {5: {"outcome": "failed", "text": "none"}, 7: {"outcome": "state"}})
        self.assertEqual(len(problems), 2)

    def test_the_user_decides_what_a_failure_is_but_not_about_a_lie(self):
        self.assertEqual(end.outcome_of("no-adapters", {"outcome": "failed"}, []), "failed")
        self.assertEqual(end.outcome_of("failed", {"outcome": "ok"}, []), "ok")
        self.assertEqual(end.outcome_of("not-installed", {"outcome": "ok"}, []), "failed")
        self.assertEqual(end.outcome_of("skipped", {}, []), "ok")
        self.assertEqual(end.outcome_of("skipped", {}, ["skipped"]), "failed")


class Sources(unittest.TestCase):
    def test_ansible_lint_finds_nothing(self):
        files = ["update-firmware.yml", "roles/tarnlift", "inventory.example.yml", "rehearsal/hosts.yml"]
        for folder in ("examples", "rehearsal/hooks"):
            files += [str(file.relative_to(DEPLOY)) for file in DEPLOY.glob(f"{folder}/*.yml")]
        ended = subprocess.run(["ansible-lint", "--offline", "--nocolor", "--parseable", *files], cwd=DEPLOY, text=True,
                               capture_output=True)
        self.assertEqual((ended.returncode, ended.stdout), (0, ""), ended.stderr)


unittest.main()
