"""benchtable.py GOALS --costs COSTS --bytes N --exports N [--counted] [--json FILE] [--markdown FILE] [RESULTS...]: holds
what was measured against the goals, as a table. COSTS is what costs.py prints, RESULTS what Google Benchmark writes. Exit
status 0 only if every goal was met or has a reason why it cannot be; what such a goal keeps must be reached all the same."""

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
AS_MANY = 0.5 # more than the peer: what happens less often than at each call


def read_goals(name):
    """The goals, and the reasons to which some of them refer."""
    with open(name, encoding="utf-8") as file:
        contents = json.load(file)
    return contents["goals"], contents["reasons"]


def samples(files):
    """By row and way, the nanoseconds of one call, of all repetitions; those at the same place were taken together."""
    times = {}
    for name in files:
        with open(name, encoding="utf-8") as file:
            for run in json.load(file)["benchmarks"]:
                if run["run_type"] == "iteration":
                    row, way = run["run_name"].split("/")[:2]
                    nanoseconds = run["real_time"] * {"ns": 1, "us": 1e3, "ms": 1e6}[run["time_unit"]]
                    times.setdefault(row, {}).setdefault(way, []).append(nanoseconds)
    return times


def by_row(costs, measure):
    rows = {}
    for name, values in costs.items():
        row, way = name.split("/")
        rows.setdefault(row, {})[way] = [values[measure]]
    return rows


def weights(goal):
    """The peers that the library is held against, and how many times each."""
    against = goal.get("against", {})
    return {against: 1} if isinstance(against, str) else against


def weighted(goal):
    return " + ".join(way if weight == 1 else f"{weight} x {way}" for way, weight in weights(goal).items()).replace("+ -", "- ")


def ratio_of(library, peers):
    """The median of the ratios of what was taken together, as others on the computer disturb both alike."""
    return statistics.median(own / peer for own, peer in zip(library, peers, strict=True))


def line(goal, measure, ways):
    """One line of the table: what was measured, and whether the goal was met, or why not."""
    unit, is_ratio = MEASURES[measure]
    bound = goal[measure]
    is_compared = is_ratio or bound == "as many"
    if any(way not in ways for way in ["library", *(weights(goal) if is_compared else [])]):
        return {"what": goal["row"], "unit": "not measured", "library": None, "against": weighted(goal), "peer": None,
                "ratio": None, "goal": None, "met": False, "reason": None, "is_ratio": is_ratio}
    own, peer, ratio = ways["library"], None, None
    library = statistics.median(own)
    if is_compared:
        peers = [sum(weight * value for weight, value in zip(weights(goal).values(), together))
                 for together in zip(*(ways[way] for way in weights(goal)), strict=True)]
        peer, ratio = statistics.median(peers), ratio_of(own, peers) if is_ratio else None
    measured = round(ratio, 3) if is_ratio else library # as it is shown
    most = peer + AS_MANY if bound == "as many" else bound
    met = measured <= most
    is_excused = "reason" in goal and not met and measured <= goal["kept"]
    return {"what": goal["row"], "unit": unit, "library": library, "against": weighted(goal) if is_compared else None,
            "peer": peer, "ratio": ratio, "goal": most, "met": met,
            "reason": goal["reason"] if is_excused else None, "is_ratio": is_ratio}


def others(times, goals):
    """Lines for the peers that no goal names."""
    for row, ways in times.items():
        named = {way for goal in goals if goal["row"] == row and "time" in goal for way in weights(goal)}
        own = ways.get("library")
        for way, peers in ways.items():
            if way not in named | {"library"} and own:
                yield {"what": row, "unit": "ns", "library": statistics.median(own), "against": way,
                       "peer": statistics.median(peers), "ratio": ratio_of(own, peers), "goal": None, "met": None,
                       "reason": None, "is_ratio": True}


def number(value):
    return "" if value is None else f"{value:,.1f}" if value % 1 else f"{value:,.0f}"


def verdict(entry):
    if entry["reason"]:
        return f"missed: {entry['reason']}"
    return {True: "met", False: "MISSED", None: ""}[entry["met"]]


def show(entry, what):
    ratio = "" if entry["ratio"] is None else f"{entry['ratio']:.3f}"
    goal = "" if entry["goal"] is None else f"{entry['goal']:.3f}" if entry["is_ratio"] else number(entry["goal"])
    print(f"{what:<48} {number(entry['library']):>15} {entry['unit']:<17} {entry['against'] or '':<44} "
          f"{number(entry['peer']):>15} {ratio:>8} {goal:>9}  {verdict(entry)}".rstrip())


def show_all(table, reasons):
    """The table, and below it the reasons to which its verdicts refer."""
    print(f"{'what':<48} {'library':>15} {'':<17} {'against':<44} {'peer':>15} {'ratio':>8} {'goal':>9}")
    last = None
    for entry in table:
        show(entry, "" if entry["what"] == last else entry["what"])
        last = entry["what"]
    for name in dict.fromkeys(entry["reason"] for entry in table if entry["reason"]):
        print(f"{name}: {reasons[name]}")


def rounded(value, unit):
    """For a reader: three digits at least, and a time in the unit that suits it."""
    if unit != "ns":
        return f"{value:,.0f} {unit}"
    name, scale = next(((name, scale) for name, scale in [("ns", 1), ("us", 1e3)] if value < 1e3 * scale), ("ms", 1e6))
    number = value / scale
    return f"{number:.{max(0, 3 - len(str(int(number))))}f} {name}"


def write_markdown(file_name, table):
    """The table for readers, without what was counted and met."""
    lines, last = ["| what | this library | against | ratio | goal | |", "|---|---|---|---|---|---|"], None
    for entry in table:
        if entry["unit"] in ("instructions", "allocations", "atomic operations") and entry["met"]:
            continue
        way, goal = (entry["against"] or "").replace("<", "&lt;").replace(">", "&gt;"), entry["goal"]
        cells = ["" if entry["what"] == last else entry["what"],
                 rounded(entry["library"], entry["unit"]) if entry["library"] is not None else entry["unit"],
                 f"{rounded(entry['peer'], entry['unit'])}, {way}" if entry["peer"] is not None else way,
                 f"{entry['ratio']:.3f}" if entry["ratio"] is not None else "",
                 "" if goal is None else str(goal) if entry["is_ratio"] else rounded(goal, entry["unit"]), verdict(entry)]
        lines.append(f"| {' | '.join(cells)} |".replace("|  |", "| |"))
        last = entry["what"]
    with open(file_name, "w", encoding="utf-8") as file:
        file.write("\n".join([*lines, ""]))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("goals")
    parser.add_argument("--costs", required=True)
    parser.add_argument("--bytes", type=int, required=True)
    parser.add_argument("--exports", type=int, required=True)
    parser.add_argument("--counted", action="store_true")
    parser.add_argument("--json")
    parser.add_argument("--markdown")
    parser.add_argument("results", nargs="*")
    arguments = parser.parse_intermixed_args()

    goals, reasons = read_goals(arguments.goals)
    with open(arguments.costs, encoding="utf-8") as file:
        costs = json.load(file)
    times = {} if arguments.counted else samples(arguments.results)
    values = {measure: times if measure in TIMED else by_row(costs, measure)
              for measure in ["time", "nanoseconds", "instructions", "atomics", "allocations"]}
    values["bytes"] = {"stripped library": {"library": [arguments.bytes]}}
    values["exports"] = {"exports that no header marks": {"library": [arguments.exports]}}

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
    if arguments.markdown:
        write_markdown(arguments.markdown, table)
    print(f"{met} goals met, {missed} missed")
    unexcused = sum(entry["met"] is False and not entry["reason"] for entry in table)
    return 0 if met > 0 and unexcused == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
