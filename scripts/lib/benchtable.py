"""benchtable.py GOALS --costs COSTS --bytes N --exports N [--counted] [--json FILE] [RESULTS...]: holds what was measured
against the goals, as a table. COSTS is what costs.py prints, RESULTS what Google Benchmark writes. Exit status 0 only if
every goal was met or has a reason why it cannot be; what such a goal keeps must be reached all the same."""

import argparse
import json
import statistics
import sys

# What a goal may bound, its unit, and whether the bound is a ratio to the peers.
MEASURES = {
    "time": ("ns", True),
    "nanoseconds": ("ns", False),
    "instructions": ("instructions", True),
    "atomics": ("atomic operations", False),
    "allocations": ("allocations", False),
    "bytes": ("bytes", False),
    "exports": ("exports", False),
}
TIMED = {"time", "nanoseconds"}
MORE = {"as many": 0.5, "one more": 1.5} # than the peer; the half is for what happens less often than at each call


def read_goals(name):
    """The goals, and the reasons to which some of them refer."""
    with open(name, encoding="utf-8") as file:
        contents = json.load(file)
    return contents["goals"], contents["reasons"]


def medians(files):
    """By row and way, the nanoseconds of one call: the median of all repetitions."""
    times = {}
    for name in files:
        with open(name, encoding="utf-8") as file:
            for run in json.load(file)["benchmarks"]:
                if run["run_type"] == "iteration":
                    row, way = run["run_name"].split("/")[:2]
                    nanoseconds = run["real_time"] * {"ns": 1, "us": 1e3, "ms": 1e6}[run["time_unit"]]
                    times.setdefault(row, {}).setdefault(way, []).append(nanoseconds)
    return {row: {way: statistics.median(all_times) for way, all_times in ways.items()} for row, ways in times.items()}


def by_row(costs, measure):
    rows = {}
    for name, values in costs.items():
        row, way = name.split("/")
        rows.setdefault(row, {})[way] = values[measure]
    return rows


def weights(goal):
    """The peers that the library is held against, and how many times each."""
    against = goal.get("against", {})
    return {against: 1} if isinstance(against, str) else against


def weighted(goal):
    return " + ".join(way if weight == 1 else f"{weight} x {way}" for way, weight in weights(goal).items()).replace("+ -", "- ")


def line(goal, measure, ways):
    """One line of the table: what was measured, and whether the goal was met, or why not."""
    unit, is_ratio = MEASURES[measure]
    bound = goal[measure]
    library = ways.get("library")
    is_compared = is_ratio or bound in MORE
    if any(way not in ways for way in ["library", *(weights(goal) if is_compared else [])]):
        return {"what": goal["row"], "unit": "not measured", "library": None, "against": weighted(goal), "peer": None,
                "ratio": None, "goal": None, "met": False, "reason": None, "is_ratio": is_ratio}
    peer = sum(weight * ways[way] for way, weight in weights(goal).items()) if is_compared else None
    measured = round(library / peer, 3) if is_ratio else library # as it is shown
    most = peer + MORE[bound] if bound in MORE else bound
    met = measured <= most
    is_excused = "reason" in goal and not met and measured <= goal["kept"]
    return {"what": goal["row"], "unit": unit, "library": library, "against": weighted(goal) if is_compared else None,
            "peer": peer, "ratio": library / peer if peer else None, "goal": most, "met": met,
            "reason": goal["reason"] if is_excused else None, "is_ratio": is_ratio}


def others(times, goals):
    """Lines for the peers that no goal names."""
    for row, ways in times.items():
        named = {way for goal in goals if goal["row"] == row and "time" in goal for way in weights(goal)}
        for way, time in ways.items():
            if way not in named | {"library"} and "library" in ways:
                yield {"what": row, "unit": "ns", "library": ways["library"], "against": way, "peer": time,
                       "ratio": ways["library"] / time, "goal": None, "met": None, "reason": None, "is_ratio": True}


def number(value):
    return "" if value is None else f"{value:,.1f}" if value % 1 else f"{value:,.0f}"


def show(entry, what, verdict):
    ratio = "" if entry["ratio"] is None else f"{entry['ratio']:.3f}"
    goal = "" if entry["goal"] is None else f"{entry['goal']:.3f}" if entry["is_ratio"] else number(entry["goal"])
    print(f"{what:<48} {number(entry['library']):>15} {entry['unit']:<17} {entry['against'] or '':<44} "
          f"{number(entry['peer']):>15} {ratio:>8} {goal:>9}  {verdict}".rstrip())


def show_all(table, reasons):
    """The table, and below it the reasons to which its verdicts refer."""
    print(f"{'what':<48} {'library':>15} {'':<17} {'against':<44} {'peer':>15} {'ratio':>8} {'goal':>9}")
    last = None
    for entry in table:
        verdict = {True: "met", False: "MISSED", None: ""}[entry["met"]]
        if entry["reason"]:
            verdict = f"missed: {entry['reason']}"
        show(entry, "" if entry["what"] == last else entry["what"], verdict)
        last = entry["what"]
    for name in dict.fromkeys(entry["reason"] for entry in table if entry["reason"]):
        print(f"{name}: {reasons[name]}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("goals")
    parser.add_argument("--costs", required=True)
    parser.add_argument("--bytes", type=int, required=True)
    parser.add_argument("--exports", type=int, required=True)
    parser.add_argument("--counted", action="store_true")
    parser.add_argument("--json")
    parser.add_argument("results", nargs="*")
    arguments = parser.parse_intermixed_args()

    goals, reasons = read_goals(arguments.goals)
    with open(arguments.costs, encoding="utf-8") as file:
        costs = json.load(file)
    times = {} if arguments.counted else medians(arguments.results)
    values = {measure: times if measure in TIMED else by_row(costs, measure)
              for measure in ["time", "nanoseconds", "instructions", "atomics", "allocations"]}
    values["bytes"] = {"stripped library": {"library": arguments.bytes}}
    values["exports"] = {"exports that no header marks": {"library": arguments.exports}}

    table = [line(goal, measure, values[measure].get(goal["row"], {})) for goal in goals for measure in MEASURES
             if measure in goal and not (arguments.counted and measure in TIMED)]
    table += others(times, goals)
    rows = [entry["what"] for entry in table]
    table.sort(key=lambda entry: rows.index(entry["what"]))
    show_all(table, reasons)
    met = sum(entry["met"] is True for entry in table)
    missed = sum(entry["met"] is False for entry in table)
    if arguments.json:
        with open(arguments.json, "w", encoding="utf-8") as file:
            json.dump({"met": met, "missed": missed, "reasons": reasons, "table": table}, file, indent=1)
    print(f"{met} goals met, {missed} missed")
    unexcused = sum(entry["met"] is False and not entry["reason"] for entry in table)
    return 0 if met > 0 and unexcused == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
