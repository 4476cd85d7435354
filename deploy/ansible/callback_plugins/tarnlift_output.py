"""The output of a roll-out for people: tasks that changed something, failures in a line, and how each server ended."""
from ansible import constants as C
from ansible.playbook.task_include import TaskInclude
from ansible.plugins.callback.default import CallbackModule as Default

DOCUMENTATION = """
    name: tarnlift_output
    type: stdout
    short_description: Show how each server ended, and little else
    description:
      - Like the callback C(default), without the files that are included, and with messages instead of whole results.
      - With C(-v) it is the callback C(default).
    extends_documentation_fragment:
      - default_callback
      - result_format_callback
"""
MESSAGES = ("Say how it ended", "Say that too many failed")  # the tasks whose message is for everybody


class CallbackModule(Default):
    CALLBACK_VERSION = 2.0
    CALLBACK_TYPE = "stdout"
    CALLBACK_NAME = "tarnlift_output"

    def v2_playbook_on_include(self, included_file):
        if self._display.verbosity:
            super().v2_playbook_on_include(included_file)

    def v2_runner_on_ok(self, result):
        if self.is_message(result):
            self.show(result, "", C.COLOR_CHANGED if result._result.get("changed") else C.COLOR_OK)
        elif self._display.verbosity or not isinstance(result._task, TaskInclude):
            super().v2_runner_on_ok(result)

    def v2_runner_on_unreachable(self, result):
        if self._display.verbosity or not result._task.ignore_unreachable:
            super().v2_runner_on_unreachable(result)
        else:
            self.show(result, "no connection (the play goes on): ", C.COLOR_WARN)

    def v2_runner_on_failed(self, result, ignore_errors=False):
        message = result._result.get("msg")
        if self._display.verbosity or not message or ignore_errors or "results" in result._result:
            super().v2_runner_on_failed(result, ignore_errors)
        else:
            self.show(result, "" if self.is_message(result) else "fatal: ", C.COLOR_ERROR)

    def is_message(self, result):
        return not self._display.verbosity and result._task.get_name().endswith(MESSAGES)

    def show(self, result, before, color):
        if self._last_task_banner != result._task._uuid:
            self._print_task_banner(result._task)
        self._display.display(f"{before}{result._host.get_name()}: {result._result.get('msg', '')}", color=color)
