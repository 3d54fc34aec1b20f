"""benchplot.py FILE RESULTS...: draws how the cost grows with controls, observers, the length of lists and the size of
images, from what Google Benchmark wrote into RESULTS."""

import re
import sys
from statistics import median

import matplotlib
from benchtable import samples

matplotlib.use("svg")
import matplotlib.pyplot as plot  # noqa: E402

# A panel: its title, what is counted along it, the rows with that number in them, and the ways.
PANELS = [
    ("Creating controls", "controls", r"creation of (\d+) controls", ["library", "by hand"]),
    ("One notification", "observers", r"progress to (\d+)",
     ["library", "raw loop", "Qt direct connection", "boost::signals2"]),
    ("Frequency segments to the SDK", "segments", r"segments to the SDK, (\d+)", ["library", "push_back"]),
    ("Writing an image", "KiB", r"write an image of (\d+) KiB", ["library", "memcpy"]),
]


def draw(axes, times, panel):
    title, unit, rows, ways = panel
    for way in ways:
        points = sorted((int(match[1]), median(by_way[way])) for row, by_way in times.items()
                        if (match := re.fullmatch(rows, row)) and way in by_way)
        axes.loglog(*zip(*points), marker="o", label=way)
    axes.set(title=title, xlabel=unit, ylabel="ns")
    axes.grid(alpha=0.3)
    axes.legend()


def main():
    file, *results = sys.argv[1:]
    times = samples(results)
    matplotlib.rcParams.update({"svg.hashsalt": "performance", "svg.fonttype": "none"})  # the same picture for the same figures
    figure, grid = plot.subplots(2, 2, figsize=(11, 8), layout="constrained")
    for axes, panel in zip(grid.flat, PANELS):
        draw(axes, times, panel)
    figure.savefig(file, metadata={"Date": None})


main()
