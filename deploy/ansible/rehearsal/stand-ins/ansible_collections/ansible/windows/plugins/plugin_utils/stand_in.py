"""Stand-ins for the modules that the role uses on Windows. They act on a simulated server, which is a directory.

C:\\Tarnlift of the server NAME is servers/NAME/Tarnlift in the directory of the rehearsal. Beside it, modules.txt gets a
line for each call: the module and everything that the task passed to it. Files beside it are the state of the server:
`protected` (only administrators and the system have rights), `down` (it does not answer) and `lose-connection` (the next
wait for an update loses its session).
"""
import base64
import filecmp
import json
import os
import shutil
import subprocess
import time
from pathlib import Path

from ansible.errors import AnsibleConnectionFailure
from ansible.plugins.action import ActionBase

SIMULATION = {"adapters.txt", "calls.txt", "host"}  # belongs to the simulated adapters, not to the server's directory
INHERITED = "O:S-1-5-21-1-2-3-1001G:DUD:AI(A;OICIID;FA;;;BA)(A;OICIID;FA;;;SY)(A;OICIID;0x1200a9;;;BU)"
PROTECTED = "O:BAG:SYD:PAI(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)"
BELOW = {True: "O:BAG:SYD:AI(A;OICIID;FA;;;SY)(A;OICIID;FA;;;BA)", False: "O:BAG:SYD:AI(A;ID;FA;;;SY)(A;ID;FA;;;BA)"}
# tarnlift-run.cmd on Linux. On Windows the report cannot be renamed while a process of the run has it open.
START = 'mkdir run 2>/dev/null || exit 3; exec >run/report.xml; flock 1; "$@"; echo $? >run/code'
WAIT = """
for look in 1 2 3 4 5 6 7 8 9 10; do
    [ -e run/report.xml ] && ! flock -w "$1" run/report.xml true && echo running && exit
    [ -s run/code ] && echo "ended $(cat run/code)" && exit
    sleep 0.1
done
[ -e run ] && echo cut-off || echo none
"""


class StandIn(ActionBase):
    def run(self, tmp=None, task_vars=None):
        self._supports_async = True
        result = super().run(tmp, task_vars)
        self.given = self._task.args
        self.top = task_vars["tarnlift_directory"]
        name = self._task.delegate_to or task_vars["inventory_hostname"]
        self.server = Path(task_vars["rehearsal"]) / "servers" / name
        self.here = self.server / "Tarnlift"
        module = self._task.action.split(".")[-1]
        self.note(module)
        if (self.server / "down").exists():
            raise AnsibleConnectionFailure("no answer")
        result["changed"] = False
        result.update(getattr(self, module)())
        return result

    def note(self, module):
        told = dict(self.given)
        if "script" in told:
            told["script"] = told["script"].splitlines()[0]
        extra = {"async": self._task.async_val, "poll": self._task.poll} if self._task.async_val else {}
        extra.update({"environment": setting for setting in self._task.environment or [] if setting})
        with (self.server / "modules.txt").open("a") as calls:
            calls.write(f"{module} {json.dumps({**told, **extra}, sort_keys=True)}\n")

    def native(self, path):
        if not path.lower().startswith(self.top.lower()):
            raise ValueError(f"{path} is outside {self.top}")
        return self.here / path[len(self.top):].lstrip("\\").replace("\\", "/")

    def win_powershell(self):
        """Only list-directory.ps1."""
        path = self.native(self.given["parameters"]["Path"])
        found = [path] + sorted(path.rglob("*")) if path.exists() else []
        return {"result": [self.listed(item) for item in found if not self.simulated(item)]}

    def simulated(self, item):
        return item != self.here and item.relative_to(self.here).parts[0] in SIMULATION

    def listed(self, item):
        name = "" if item == self.here else "\\" + str(item.relative_to(self.here)).replace("/", "\\")
        protected = (self.server / "protected").exists()
        sddl = INHERITED if not protected else BELOW[item.is_dir()] if name else PROTECTED
        return {"path": self.top + name, "directory": item.is_dir(), "link": item.is_symlink(), "sddl": sddl}

    def win_file(self):
        path, wanted = self.native(self.given["path"]), self.given["state"]
        changed = path.exists() != (wanted == "directory")
        if changed and not self._task.check_mode:
            if wanted == "directory":
                path.mkdir(parents=True)
            elif path.is_dir():
                shutil.rmtree(path)
            else:
                path.unlink()
        return {"changed": changed}

    def win_copy(self):
        source, target = self.given["src"], self.native(self.given["dest"])
        if not source.endswith("/"):
            pairs = [(Path(self._find_needle("files", source)), target)]
        else:
            pairs = [(item, target / item.relative_to(source)) for item in Path(source).rglob("*") if item.is_file()]
        differ = [pair for pair in pairs if not pair[1].exists() or not filecmp.cmp(*pair, shallow=False)]
        if not self._task.check_mode:
            for item, copy in differ:
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(item, copy)
        return {"changed": bool(differ)}

    def win_command(self):
        arguments = self.given["argv"]
        if arguments[0] == "icacls.exe":
            return self.icacls(arguments)
        if "start" in arguments:
            return self.run_program(["sh", "-c", START, "sh", str(self.here / "tarnlift.exe")] + arguments[5:])
        if "wait" in arguments:
            if (self.server / "lose-connection").exists():
                (self.server / "lose-connection").unlink()
                raise AnsibleConnectionFailure("the session was lost")
            return self.run_program(["sh", "-c", WAIT, "sh", arguments[-1]])
        return self.run_program([str(self.native(arguments[0]))] + arguments[1:])

    def icacls(self, arguments):
        if "/grant:r" in arguments:
            (self.server / "protected").touch()
        return {"changed": True, "rc": 0, "start": "now"}

    def run_program(self, command):
        """As a part of the session, with which it ends. A task with async goes on without it."""
        own = {"TEMP": str(self.here / "temp"), "TARNLIFT_HOST": str(self.here / "host")}
        settings = {"cwd": self.here, "env": {**os.environ, **own}, "stdin": subprocess.DEVNULL}
        if self._task.async_val:
            subprocess.Popen(command, **settings, start_new_session=True, stdout=subprocess.DEVNULL,
                             stderr=subprocess.DEVNULL)
            return {"started": 1, "finished": 0, "ansible_job_id": "1", "changed": True}
        ended = subprocess.run(command, **settings, capture_output=True)
        return {"rc": ended.returncode, "stdout": ended.stdout.decode(errors="replace"), "cmd": command, "start": "now",
                "changed": True, "stderr": ended.stderr.decode(errors="replace")}

    def slurp(self):
        if not self.native(self.given["src"]).exists():
            return {"failed": True, "msg": "file not found"}
        return {"content": base64.b64encode(self.native(self.given["src"]).read_bytes()).decode(), "encoding": "base64"}

    def win_ping(self):
        return {"ping": "pong"}

    def win_reboot(self):
        """Notes who else reboots at this moment: a directory is there for as long as it takes."""
        rebooting = self.server.parent.parent / "rebooting"
        rebooting.mkdir(exist_ok=True)
        mine = rebooting / self.server.name
        mine.touch()
        subprocess.run([self.here / "winhbcfg.exe", "reboot"], check=True, capture_output=True)
        time.sleep(0.5)
        with (rebooting.parent / "reboots.txt").open("a") as reboots:
            reboots.write(" ".join(sorted(item.name for item in rebooting.iterdir())) + "\n")
        mine.unlink()
        return {"changed": True, "rebooted": True}
