"""Divides the servers of a play into batches, no two partners in one, and prepares the directory of results.

Returns `order`, the servers in the order of their batches, `sizes`, the size of each batch, and `before`, for the first
server of each batch but the first, the servers of the batch before it.
"""
import re
from pathlib import Path

from ansible.errors import AnsibleActionFail
from ansible.plugins.action import ActionBase

KEPT = (".xml", ".query.xml", ".code", ".rebooted", ".refused")


def size_of(batch, total):
    """A number of servers, or a percentage of all, of which at least one. As `serial` understands it."""
    share = re.fullmatch(r"(\d+)(\.\d+)?\s*%", str(batch).strip())
    if share:
        return max(1, int(total * float(share[0].rstrip("% ")) / 100))
    if not re.fullmatch(r"\d+", str(batch).strip()):
        raise AnsibleActionFail(f"tarnlift_batches: {batch!r} is neither a number nor a percentage")
    return int(batch) or total


def divide(servers, sizes):
    """`servers` is a list of names with their partners' name or "". Keeps their order as far as partners allow."""
    batches, waiting = [], list(servers)
    total = len(waiting)
    while waiting:
        size = size_of(sizes[min(len(batches), len(sizes) - 1)], total)
        batch, later, groups = [], [], set()
        for name, group in waiting:
            if len(batch) < size and group not in groups:
                batch.append(name)
                groups.update({group} - {""})
            else:
                later.append((name, group))
        batches.append(batch)
        waiting = later
    return batches


def clear(reports, servers):
    """Removes what earlier plays left about these servers, so that nothing old passes for a result of this play."""
    for name in servers:
        for kind in KEPT:
            (reports / (name + kind)).unlink(missing_ok=True)


def name_servers(listed, servers):
    """Adds the servers to those that earlier plays named."""
    known = listed.read_text(encoding="utf-8").splitlines() if listed.exists() else []
    names = dict.fromkeys([name for name in known if name] + servers)
    listed.write_text("".join(f"{name}\n" for name in names), encoding="utf-8")


class ActionModule(ActionBase):
    def run(self, tmp=None, task_vars=None):
        result = super().run(tmp, task_vars)
        names, results = task_vars["ansible_play_hosts_all"], Path(self._task.args["results"])
        sizes = self._task.args["batches"]
        hosts = task_vars["hostvars"]
        batches = divide([(name, str(hosts[name].get("tarnlift_partners") or "")) for name in names],
                         sizes if isinstance(sizes, list) and sizes else [sizes])
        reports = results / "reports"
        reports.mkdir(parents=True, exist_ok=True)
        clear(reports, names)
        name_servers(results / "servers.txt", names)
        result.update(order=[name for batch in batches for name in batch], sizes=[len(batch) for batch in batches],
                      before={batch[0]: previous for previous, batch in zip(batches, batches[1:])})
        return result
