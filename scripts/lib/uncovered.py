"""Reads what `llvm-cov export` writes and names every place below src/devices that was not reached:
FILE:LINE, what was missed, and the line itself. Exit status 1 if there is one that is not listed in
`coverage-exclusions`, or one listed there that was reached, or a source file there that the export does not know, or if
the export knows of no branches or conditions at all.

A template is reached where any of its instances is.
"""

import fnmatch
import json
import pathlib
import sys
from collections import defaultdict

CODE, EXPANSION, GAP = 0, 1, 3  # kinds of regions, in a function's seventh number; a gap is no code


def missed(data):
    """(file, line, what) of everything that was not reached."""
    regions, branches, conditions = defaultdict(int), defaultdict(lambda: [0, 0]), defaultdict(bool)
    for function in data["functions"]:
        for line, column, end, end_column, count, file, _, kind in function["regions"]:
            if kind in (CODE, EXPANSION):
                regions[function["filenames"][file], line, column, end, end_column] += count
    for file in data["files"]:
        for line, column, end, end_column, yes, no, *_ in file["branches"]:
            counts = branches[file["filename"], line, column, end, end_column]
            counts[0] += yes
            counts[1] += no
        for record in file["mcdc_records"]:
            for number, is_shown in enumerate(record[-1], 1):
                conditions[file["filename"], *record[:4], number] |= is_shown
    for (file, line, *_), count in regions.items():
        if not count:
            yield file, line, "not executed"
    for (file, line, *_), counts in branches.items():
        for outcome, count in zip(("true", "false"), counts):
            if not count:
                yield file, line, f"never {outcome}"
    for (file, line, *_, number), is_shown in conditions.items():
        if not is_shown:
            yield file, line, f"condition {number} decides nothing"


def main():
    root = pathlib.Path.cwd()
    data = json.load(sys.stdin)["data"][0]
    known = {file["filename"] for file in data["files"]}
    unknown = sorted(path for path in (root / "src" / "devices").rglob("*.cpp") if str(path) not in known)
    for path in unknown:
        print(f"{path.relative_to(root)}: in none of the programs")
    lacking = [kind for kind in ("branches", "mcdc_records") if not any(file[kind] for file in data["files"])]
    for kind in lacking:
        print(f"the export has no {kind}")
    listed = pathlib.Path(__file__).with_name("coverage-exclusions").read_text().splitlines()
    exclusions = [line.split("|", 2) for line in listed if line and not line.startswith("#")]
    used, places = set(), set()
    for file, line, what in missed(data):
        path = pathlib.Path(file)
        if not path.is_relative_to(root / "src" / "devices"):
            continue
        text = path.read_text().splitlines()[line - 1].strip()
        for name, kind, pattern in exclusions:
            if path.match(name) and fnmatch.fnmatchcase(what, kind) and fnmatch.fnmatchcase(text, pattern):
                used.add((name, kind, pattern))
                break
        else:
            places.add((str(path.relative_to(root)), line, what, text))
    for path, line, what, text in sorted(places):
        print(f"{path}:{line}: {what}: {text}")
    unused = [exclusion for exclusion in map(tuple, exclusions) if exclusion not in used]
    for exclusion in unused:
        print(f"listed as an exclusion, and reached: {'|'.join(exclusion)}")
    sys.exit(1 if unknown or lacking or places or unused else 0)


main()
