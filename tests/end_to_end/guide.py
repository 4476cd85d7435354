"""Runs the commands of docs/operator-guide.md, chapter by chapter, and compares what they print with what it shows.

`guide.py --update` writes the output of the program into the guide instead of failing.
"""
import difflib
import os
import re
import sys
import unittest

from machine import BIN, TOP, WINDOWS, Machine, MachineTest, spelled, wine

GUIDE = TOP / "docs/operator-guide.md"
SOURCES = "".join(file.read_text() for file in sorted((TOP / "src").rglob("*.[ch]*")))
PROMPT = r"(?:C:\\(?:Tarnlift|Rollout)> |\$ )"  # a server, the administrator's computer, a Linux shell
# A step is a file, "`NAME`:" and its code block, or a command and its output. [...] in an output stands for any text.
FILE_STEP = r"^`(?P<file>[\w.\\-]+)`:\n\n```\w+\n(?P<content>(?:(?!```).*\n)*)"
COMMAND_STEP = rf"^(?P<prompt>{PROMPT})(?P<command>.*)\n(?P<shown>(?:(?!{PROMPT}|```).*\n)*)"
ELISION = "[...]"
os.environ.update(PATH=".:" + os.environ["PATH"], TARNLIFT_HOST="host", TEMP=r"C:\temp")


def with_slashes(path):
    return path.replace("\\", "/")


def for_linux(command):
    """A command of cmd.exe for a Linux shell. Only Tarnlift itself understands a path with backslashes there."""
    command, *redirection = command.split(" > ")
    is_tarnlift = command.startswith("tarnlift.exe")
    command = command.replace("\\", "\\\\") if is_tarnlift else with_slashes(command)
    return " > ".join(["type() { cat $1; }\n" + command, *map(with_slashes, redirection)])


def matches(shown, output):
    return re.fullmatch(re.escape(shown).replace(re.escape(ELISION), ".*"), output, re.S) is not None


def with_elisions(shown, output):
    """The lines of the output, with the elisions of the shown lines where they still fit."""
    inline = [line for line in shown if ELISION in line and line != ELISION]
    output = [next((line for line in inline if matches(line, printed)), printed) for printed in output]
    merged = []
    for _, start, end, from_line, to_line in difflib.SequenceMatcher(None, shown, output, autojunk=False).get_opcodes():
        elided = shown[start:end] == [ELISION]
        merged += [ELISION] if elided else output[from_line:to_line]
    return merged


def anchors(document):
    """The anchors of the chapters of a document, as web pages that show it make them."""
    titles = re.findall("^##+ (.*)", document.read_text(), re.M)
    return {re.sub("[^a-z0-9 -]", "", title.lower()).replace(" ", "-") for title in titles}


class Guide(MachineTest):
    commands = 0  # that were run

    def set_up_server(self):
        """The server that each chapter begins with: the sample adapters, table and firmware files."""
        images = re.findall(r"^\| `(.*?-(.*?)\.grp)` \| (\d+) \|", GUIDE.read_text(), re.M)
        self.place = self.machine(images=[(int(family), version, name) for name, version, family in images]).path
        os.chdir(self.place)
        os.system(f"mkdir -p host/drives/c/temp; cp '{BIN}'/mkgrp* '{TOP}'/share/examples/*.cmd .; "
                  f"cp '{TOP}'/simulator/adapters.sample.txt adapters.txt; cp '{BIN}'/tarnfleet* tarnfleet.exe; "
                  f"cp '{TOP}'/share/fwmatrix.sample.txt fwmatrix.txt")

    def run_chapter(self, chapter):
        """The chapter as it would be if it showed what its commands print."""
        self.set_up_server()
        return re.sub(f"{FILE_STEP}|{COMMAND_STEP}", self.run_step, chapter, flags=re.M)

    def run_step(self, step):
        if step["file"]:
            file = self.place / with_slashes(step["file"])
            file.parent.mkdir(exist_ok=True)
            file.write_text(step["content"])
            return step[0]
        linux_only = step["prompt"] == "$ "
        windows_only = ".cmd" in step["command"]
        if linux_only and WINDOWS or windows_only and not WINDOWS:
            return step[0]
        shown, output = step["shown"].strip("\n"), self.run_command(step["prompt"], step["command"])
        if matches(shown, output):
            return step[0]
        lines = with_elisions(shown.split("\n"), output.split("\n"))
        line_ends = re.search("\n*$", step["shown"])[0] or "\n"
        return step["prompt"] + "\n".join([step["command"], *lines]) + line_ends

    def run_command(self, prompt, command):
        self.commands += 1
        command = re.sub("%ERRORLEVEL%", lambda _: str(self.done.returncode), command)
        if WINDOWS:
            self.done = wine("cmd", "/c", "set", "COMPUTERNAME=SERVER01&&", *command.split())
        else:
            self.done = wine("sh", "-c", command if prompt == "$ " else for_linux(command))
        output = Machine.text(self.done.stdout).strip("\n").replace(spelled(self.place), prompt.rstrip("> "))
        output = output.replace(str(self.place), "~").replace("TIME", "Sun Nov 22 22:19:06 2026")
        return re.sub(r"(?m)^\([\d:.]+\) \(\d+\)", "(22:19:06.017) (4312)", output)

    def test_its_commands_print_what_it_shows(self):
        chapters = re.split("^(?=## )", GUIDE.read_text(), flags=re.M)
        done = [self.run_chapter(chapter) for chapter in chapters]
        if "--update" in sys.argv:
            GUIDE.write_text("".join(done))
            return
        self.assertGreater(self.commands, 50, "the guide's commands are no longer found")
        for chapter, printed in zip(chapters, done):
            title = chapter.split("\n", 1)[0].lstrip("# ")
            difference = difflib.unified_diff(chapter.split("\n"), printed.split("\n"), "the guide shows",
                                              "its commands print", lineterm="", n=3)
            with self.subTest(chapter=title):
                self.assertTrue(chapter == printed, "\n" + "\n".join(difference))

    def test_the_links_of_all_documents_lead_somewhere(self):
        lost = []
        patterns = ["*.md", "docs/*.md", "bench/*.md", "deploy/*/*.md"]
        for document in [file for pattern in patterns for file in TOP.glob(pattern)]:
            for path, anchor in re.findall(r"\]\(([^)\s#]*)#?([^)\s]*)\)", document.read_text()):
                target = document.parent / path if path else document
                if not target.exists() or anchor and anchor not in anchors(target):
                    lost.append(f"{document.relative_to(TOP)}: {path}#{anchor}")
        self.assertEqual(lost, [])

    def test_lines_that_it_cannot_run_are_marked(self):
        without_files = re.sub(FILE_STEP, "", GUIDE.read_text(), flags=re.M)
        parts = [re.split("^```(?:powershell|bat)\n", chapter, flags=re.M) for chapter in without_files.split("\n## ")]
        unmarked = [before.split("\n")[0] for before, *blocks in parts
                    if blocks and not re.search(r"run\s+by\s+the\s+tests", before)]
        self.assertEqual(unmarked, [])

    def test_its_tables_say_what_the_sources_say(self):
        messages = re.sub(r'"\n *"', "", SOURCES.split("DownloadStatusMessages[OUTCOME_COUNT] = {")[1].split("};")[0])
        rows = [f"| {number} | {message} |" for number, message in enumerate(re.findall('"(.*)",', messages))]
        rows += [f"\n| `{code}` |" for code in re.findall(r"RETURN_\w+ = (\d+)", SOURCES)]
        rows += [f"| {int(event, 16) & 0xFFFF} | {event} |" for event in re.findall("0x[4C]0000A..", SOURCES)]
        rows += re.findall(r'printEndingError\(RETURN_\w+, "(.*?)"', SOURCES)
        self.assertEqual([row for row in rows if row not in GUIDE.read_text()], [])


unittest.main(argv=sys.argv[:1])
