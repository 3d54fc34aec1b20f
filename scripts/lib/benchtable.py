"""benchtable.py GOALS [--json FILE] RESULTS...: the table of the benchmarks whose medians Google Benchmark wrote into
RESULTS. Exit status 0 only if every goal was met."""

import argparse
import json
import sys


def medians(files):
    """By row and way: the nanoseconds of one call, and how many blocks it allocates."""
    rows = {}
    for name in files:
        with open(name, encoding="utf-8") as file:
            for run in json.load(file)["benchmarks"]:
                if run.get("aggregate_name") != "median":
                    continue
                row, way = run["run_name"].split("/")[:2]
                factor = {"ns": 1, "us": 1e3, "ms": 1e6}[run["time_unit"]]
                rows.setdefault(row, {})[way] = (run["real_time"] * factor, run.get("allocations"))
    return rows


def verdict(goal, ways):
    """The ratio, and whether the goal was met; no ratio if it was not measured."""
    if "library" not in ways or goal["against"] not in ways:
        return None, False
    time, allocations = ways["library"]
    peer_time, peer_allocations = ways[goal["against"]]
    ratio = time / peer_time
    most = goal.get("allocations")
    most = peer_allocations if most == "as many" else most
    return ratio, ratio <= goal["ratio"] and (most is None or (allocations is not None and allocations <= most))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("goals")
    parser.add_argument("--json")
    parser.add_argument("results", nargs="+")
    arguments = parser.parse_args()

    rows = medians(arguments.results)
    with open(arguments.goals, encoding="utf-8") as file:
        goals = json.load(file)

    print(f"{'what':<40} {'way':<24} {'time':>12} {'allocations':>12}")
    for row, ways in rows.items():
        for way, (time, allocations) in sorted(ways.items(), key=lambda item: item[0] != "library"):
            count = "" if allocations is None else f"{allocations:.0f}"
            print(f"{row:<40} {way:<24} {time:>9.1f} ns {count:>12}")
            row = ""

    print(f"\n{'goal':<40} {'against':<24} {'ratio':>8} {'at most':>8}")
    met = 0
    table = []
    for goal in goals:
        ratio, is_met = verdict(goal, rows.get(goal["row"], {}))
        met += is_met
        table.append({**goal, "measured": ratio, "met": is_met})
        shown = "not run" if ratio is None else f"{ratio:.3f}"
        print(f"{goal['row']:<40} {goal['against']:<24} {shown:>8} {goal['ratio']:>8.3f}  "
              f"{'met' if is_met else 'MISSED'}")

    if arguments.json:
        with open(arguments.json, "w", encoding="utf-8") as file:
            json.dump({"rows": {row: {way: {"ns": time, "allocations": allocations}
                                      for way, (time, allocations) in ways.items()}
                                for row, ways in rows.items()},
                       "goals": table}, file, indent=1)
    print(f"{met} goals met, {len(goals) - met} missed")
    return 0 if met == len(goals) else 1


sys.exit(main())
