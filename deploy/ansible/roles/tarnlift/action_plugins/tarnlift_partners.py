"""Finds the servers that must not reboot together with this one, and refuses to go on where that is not sure.

Returns `partners`, the other servers of the inventory with the same group.
"""
from ansible.plugins.action import ActionBase


class ActionModule(ActionBase):
    def run(self, tmp=None, task_vars=None):
        result = super().run(tmp, task_vars)
        group, server, hosts = self._task.args["group"], task_vars["inventory_hostname"], task_vars["hostvars"]
        partners = [name for name in task_vars["groups"]["all"]
                    if name != server and str(hosts[name].get("tarnlift_partners") or "") == group]
        together = [name for name in partners if name in task_vars["ansible_play_batch"]]
        # A server that failed or could not be reached is no longer among the hosts of the play.
        lost = [name for name in partners if name in task_vars["ansible_play_hosts_all"]
                and name not in task_vars["ansible_play_hosts"]]
        result["partners"] = partners
        if together:
            result.update(failed=True, msg=f"in one batch with {', '.join(together)} of the partners {group}. "
                                           "Use update-firmware.yml, or serial: 1")
        elif lost:
            result.update(failed=True, msg=f"left as it is, since {', '.join(lost)} of the partners {group} failed")
        return result
