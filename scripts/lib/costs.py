"""costs.py GOALS FOLDER PROGRAM...: counts, for the ways in which GOALS is interested, the instructions, atomic operations
and allocations of one call, and prints them as JSON. The programs are those of benchmarks/counted.cpp; callgrind runs
them and leaves its files in FOLDER."""

import functools
import json
import pathlib
import re
import subprocess
import sys

from benchtable import read_goals, weights

TIMES = 100
COUNTED = {"instructions", "atomics", "allocations"}
ATOMIC = re.compile(r"^ *([0-9a-f]+):\s+(?:lock |xchg .*\()")


def wanted(goals):
    return sorted({f"{goal['row']}/{way}" for goal in goals if COUNTED & goal.keys() for way in ["library", *weights(goal)]})


@functools.cache
def atomic_addresses(library):
    """Where in a library or program the instructions stand that change memory atomically."""
    listing = subprocess.run(["objdump", "-d", "--no-show-raw-insn", library], check=True, capture_output=True,
                             text=True).stdout
    return {int(match[1], 16) for match in map(ATOMIC.match, listing.splitlines()) if match}


def counts(profile):
    """The instructions in a file of callgrind's, and those among them that are atomic."""
    instructions = atomics = 0
    library = ""
    is_of_callee = False
    for line in profile.read_text(encoding="utf-8").splitlines():
        if line.startswith("ob="):
            library = line[3:]
        elif line.startswith("calls="):
            is_of_callee = True
        elif line.startswith("0x"):
            if not is_of_callee:
                address, count = line.split()
                instructions += int(count)
                if pathlib.Path(library).is_file() and int(address, 16) in atomic_addresses(library):
                    atomics += int(count)
            is_of_callee = False
    return instructions, atomics


def run(program, ways, folder):
    """What each way that the program has costs, by `row/way`."""
    profile = folder / f"{pathlib.Path(program).name}.callgrind"
    output = subprocess.run(
        ["valgrind", "--quiet", "--tool=callgrind", "--collect-atstart=no", "--dump-instr=yes", "--dump-line=no",
         "--compress-strings=no", "--compress-pos=no", f"--callgrind-out-file={profile}", program, str(TIMES), *ways],
        check=True, stdout=subprocess.PIPE, text=True).stdout
    costs = {}
    for number, line in enumerate(output.splitlines(), 1):
        way, allocations = line.split("\t")
        instructions, atomics = counts(pathlib.Path(f"{profile}.{number}"))
        costs[way] = {"instructions": instructions / TIMES, "atomics": atomics / TIMES,
                      "allocations": int(allocations) / TIMES}
    return costs


def main():
    goals, folder, *programs = sys.argv[1:]
    ways = wanted(read_goals(goals)[0])
    costs = {}
    for program in programs:
        costs.update(run(program, ways, pathlib.Path(folder)))
    for way in ways:
        if way not in costs:
            sys.exit(f"No program counts '{way}'.")
    if not all(cost["atomics"] for way, cost in costs.items() if way.startswith("getter/")):
        sys.exit("A getter is counted without the atomic operations that each has: objdump's listing is not understood.")
    json.dump(costs, sys.stdout, indent=1)


main()
