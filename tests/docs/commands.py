#!/usr/bin/python3
"""Runs the commands that the documentation shows and compares what they print with what stands there.

    commands.py FOLDER [FILE...]             FOLDER holds tarn-service
    commands.py --update FOLDER [FILE...]    puts what they print into the files instead

Commands are those that begin with `scripts/`, `tarn-service` or `cat examples/`: in a block `console` after `$ `, followed by their output;
in a block `sh` without any, where they only have to succeed. A command succeeds unless its output has a line that begins
with `error: `, or `$ echo $?` comes next. Each file has a folder and a state of its own, in which its commands run one after
the other; standard output and standard error go the same way, and to no terminal. Without FILE: README.md and docs/*.md.
"""

import difflib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

# What differs each time, and what stands for it in a comparison. Nothing else may differ.
VARYING = [
    (re.compile(r"\b2\d\.\d\d\b"), "2#.##"),  # a temperature of the simulated instrument, a little above 20 degrees
    (re.compile(r"^\d\d:\d\d:\d\d\.\d{3}\b", re.MULTILINE), "##:##:##.###"),  # when it was read
    (re.compile(r"\bin \d+\.\d s$", re.MULTILINE), "in #.# s"),  # how long an operation took
]

# What cannot be run here.
NOT_RUN = {
    "scripts/test": "runs this test",
    "scripts/bench": "measures for minutes, on a computer that does nothing else",
    "scripts/fuzz": "builds with Clang and runs for minutes",
    "scripts/repeat": "runs this test, many times",
    "scripts/soak": "runs for minutes, and is a check of its own",
}

RUN_SCRIPT = """#!/bin/sh
# As scripts/run, with the program that is built already.
[ $# -gt 0 ] || set -- tour
exec tarn-service "$@"
"""


class Shown:
    """A command line of a file, and the lines of its output; None where the file shows none."""

    def __init__(self, line_number, command, output):
        self.line_number, self.command, self.output = line_number, command, output


def shown_commands(lines):
    """The command lines in the fenced blocks of a file, in their order."""
    commands, language, last = [], None, None
    for number, line in enumerate(lines, 1):
        if fence := re.match(r"```(\w*)$", line):
            language, last = (fence[1] if language is None else None), None
        elif language == "console" and line.startswith("$ "):
            last = Shown(number, line[2:], [])
            commands.append(last)
        elif language == "console" and last:
            last.output.append(line)
        elif language == "sh":
            commands.append(Shown(number, line, None))
    return commands


def is_ours(command):
    return re.match(r"scripts/|tarn-service\b|cat examples/", command) is not None


def comparable(text):
    for pattern, replacement in VARYING:
        text = pattern.sub(replacement, text)
    return text


def make_folder(folder):
    """What a reader has at hand: the examples and a settings file; scripts/run leads to the program."""
    shutil.copytree(ROOT / "examples", folder / "examples")
    shutil.copy(ROOT / ".editorconfig", folder)
    script = folder / "scripts/run"
    script.parent.mkdir()
    script.write_text(RUN_SCRIPT)
    script.chmod(0o755)


def run(command, folder, programs):
    environment = {"PATH": f"{programs}:/usr/bin:/bin", "HOME": str(folder), "LC_ALL": "C.UTF-8", "TZ": "UTC",
                   "TARN_SERVICE_STATE": str(folder / "state")}
    environment |= {name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")}
    done = subprocess.run(["bash", "-o", "pipefail", "-c", command], cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=100)
    return done.stdout, done.returncode


def check(file, programs, update):
    """Runs the commands of a file. Returns how many, those that were left out, and what is wrong."""
    lines = file.read_text().splitlines()
    ran, left_out, wrong, replaced = 0, set(), [], []
    wrong += [f"{number}: there is no {script}" for number, line in enumerate(lines, 1)
              for script in re.findall(r"`(scripts/[\w./-]+)", line) if not (ROOT / script).exists()]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        make_folder(folder)
        commands = shown_commands(lines)
        for shown, following in zip(commands, [*commands[1:], None]):
            if not is_ours(shown.command):
                continue
            script = shown.command.split()[0]
            if script in NOT_RUN:
                left_out.add(script)
                continue
            if script.startswith("scripts/") and script != "scripts/run":
                wrong.append(f"{shown.line_number}: {script} is neither run nor among those that cannot be")
                continue
            ran += 1
            printed, status = run(shown.command, folder, programs)
            shows_status = following and following.command == "echo $?"
            should_fail = bool(re.search(r"^error: ", printed, re.MULTILINE)) and shown.output is not None
            if update and shown.output is not None:
                replaced.append((shown, printed))
                if shows_status:
                    replaced.append((following, f"{status}\n"))
                continue
            if not shows_status and (status != 0) != should_fail:
                wrong.append(f"{shown.line_number}: $ {shown.command}\nended with {status}:\n{printed}")
            if shows_status and following.output != [str(status)]:
                wrong.append(f"{following.line_number}: $ {following.command}\nshould be {status}")
            if shown.output is not None:
                expected = comparable("\n".join([*shown.output, ""]) if shown.output else "").splitlines()
                actual = comparable(printed).splitlines()
                if expected != actual:
                    difference = "\n".join(difflib.unified_diff(expected, actual, "shown", "printed", lineterm="", n=1))
                    wrong.append(f"{shown.line_number}: $ {shown.command}\n{difference}")
    for shown, printed in reversed(replaced):
        lines[shown.line_number:shown.line_number + len(shown.output)] = printed.splitlines()
    if replaced:
        file.write_text("\n".join(lines) + "\n")
    return ran, left_out, [f"{file}:{text}" for text in wrong]


def main(arguments):
    update = arguments[:1] == ["--update"]
    programs, *files = arguments[1 if update else 0:]
    paths = [pathlib.Path(file).resolve() for file in files] or [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md"))]
    total, left_out, wrong = 0, set(), []
    for path in paths:
        ran, names, complaints = check(path, pathlib.Path(programs).resolve(), update)
        total += ran
        left_out |= names
        wrong += complaints
    if not files:
        wrong += [f"{name} stands in no document: take it off the list of what cannot be run"
                  for name in NOT_RUN.keys() - left_out]
        wrong += ["no command was found"] if total == 0 else []
    print("\n\n".join(wrong) if wrong else f"{total} commands in {len(paths)} documents print what stands there")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
