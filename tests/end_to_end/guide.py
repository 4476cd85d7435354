"""Runs the commands of docs/operator-guide.md and compares; `guide.py --update` writes what they print into it."""
import os
import re
import sys
import unittest

from machine import BIN, TOP, WINDOWS, Machine, MachineTest, spelled, wine

GUIDE = TOP / "docs/operator-guide.md"
SOURCES = "".join(file.read_text() for file in sorted((TOP / "src").rglob("*.[ch]*")))
# A file, "`NAME`:" and its block; or a command and its output, in which [...] stands for any text. "$ " is for Linux alone.
STEP = r"^`([\w.]+)`:\n\n```\w+\n((?:(?!```).*\n)*)|^(C:\\Tarnlift> |\$ )(.*)\n((?:(?!C:\\Tarnlift> |\$ |```).*\n)*)"
os.environ.update(PATH=".:" + os.environ["PATH"], TARNLIFT_HOST="host", TEMP=r"C:\temp")


class Guide(MachineTest):
    def run_chapter(self, chapter):
        images = re.findall(r"^\| `(.*?-(.*?)\.grp)` \| (\d+) \|", GUIDE.read_text(), re.M)
        self.place = self.machine(images=[(int(family), version, name) for name, version, family in images]).path
        os.chdir(self.place)
        os.system(f"mkdir -p host/drives/c/temp; cp '{TOP}'/simulator/adapters.sample.txt adapters.txt; "
                  f"cp '{TOP}'/share/fwmatrix.sample.txt fwmatrix.txt; cp '{BIN}'/mkgrp* '{TOP}'/share/examples/*.cmd .")
        return re.sub(STEP, self.take_step, chapter, flags=re.M)

    def take_step(self, step):
        file, content, prompt, command, shown = step.groups()
        if file:
            (self.place / file).write_text(content)
        if file or prompt == "$ " and WINDOWS or ".cmd" in command and not WINDOWS:
            return step[0]
        text = re.sub("%ERRORLEVEL%", lambda _: str(self.done.returncode), command).replace("\\", "\\\\")
        on_linux = ["sh", "-c", "type() { cat $1; }\n" + text]
        self.done = wine(*["cmd", "/c", "set", "COMPUTERNAME=SERVER01&&", *text.split()] if WINDOWS else on_linux)
        output = Machine.text(self.done.stdout).strip("\n").replace(spelled(self.place), r"C:\Tarnlift").replace(str(self.place), "~")
        output = re.sub(r"(?m)^\([\d:.]+\) \(\d+\)", "(22:19:06.017) (4312)", output.replace("TIME", "Sun Nov 22 22:19:06 2026"))
        as_shown = re.fullmatch(re.escape(shown.strip("\n")).replace(r"\[\.\.\.\]", ".*"), output, re.S)
        return step[0] if as_shown else f"{prompt}{command}\n{output}\n\n"

    def test_its_commands_print_what_it_shows(self):
        done = "".join(map(self.run_chapter, re.split("^(?=## )", GUIDE.read_text(), flags=re.M)))
        if "--update" in sys.argv:
            GUIDE.write_text(done)
        self.assertEqual(GUIDE.read_text(), done)

    def test_its_tables_say_what_the_sources_say(self):
        messages = re.sub(r'"\n *"', "", SOURCES.split("DownloadStatusMessages[OUTCOME_COUNT] = {")[1].split("};")[0])
        rows = [f"| {number} | {message} |" for number, message in enumerate(re.findall('"(.*)",', messages))]
        rows += [f"\n| `{code}` |" for code in re.findall(r"RETURN_\w+ = (\d+)", SOURCES)]
        rows += [f"| {int(event, 16) & 0xFFFF} | {event} |" for event in re.findall("0x[4C]0000A..", SOURCES)]
        rows += re.findall(r'printEndingError\(RETURN_\w+, "(.*?)"', SOURCES)
        self.assertEqual([row for row in rows if row not in GUIDE.read_text()], [])


unittest.main(argv=sys.argv[:1])
