#!/usr/bin/env python3
"""Prints the tables of the benchmark from what bench/run.sh measured. Usage: report.py RESULTS_DIRECTORY"""
import datetime
import json
import math
import platform
import re
import statistics
import sys
from pathlib import Path

results = Path(sys.argv[1])

EIGHT_PORTS = [("eight-query", "`/q`"), ("eight-update", "`/update`"), ("eight-auto", "`/auto /update`")]
CURVES = [("ports-query", "ports, `/q`"), ("ports-preview", "ports, `/p /update`"),
          ("ports-auto", "ports, `/auto /p /update`"), ("ports-update", "ports, `/update`"),
          ("images", "images, `/auto /p /update`"), ("matrix", "table lines, `/p /update`"),
          ("listing", "listing bytes, `/q`")]
FORCED = {"ports-preview", "ports-auto", "ports-update"}  # each download is spread by a walk over all ports
MOST_FLOORS, MOST_MS, MOST_MB = 1.25, 2, 2
STEEPEST = 1.2
MOST_QUERY_MS = 150
LISTINGS, MORE_MB = 3, 2


class Run:
    """The figures of one run: milliseconds, instructions, megabytes."""

    def __init__(self, name, size):
        result = str(results / f"{name}-{size}")
        own, floor = [], []
        for file in sorted(results.glob(f"{name}-{size}.time*")):
            commands = json.loads(file.read_text())["results"]
            own += commands[0]["times"]
            floor += commands[1]["times"]
        self.size = size
        self.minimum, self.median = 1000 * min(own), 1000 * statistics.median(own)
        self.floor_minimum, self.floor_median = 1000 * min(floor), 1000 * statistics.median(floor)
        profile = Path(result + ".callgrind").read_text()
        self.instructions = int(re.search(r"^(?:summary|totals): (\d+)", profile, re.MULTILINE)[1])
        self.memory = int(Path(result + ".memory").read_text()) * 1024 / 1e6
        self.listing = int(Path(result + ".listing").read_text()) / 1e6


def runs_of(name):
    sizes = [int(file.stem.rpartition("-")[2]) for file in results.glob(f"{name}-*.memory")]
    return [Run(name, size) for size in sorted(sizes)]


def fitted_exponent(sizes, costs):
    """The slope of the straight line through the logarithms."""
    x, y = [math.log(size) for size in sizes], [math.log(cost) for cost in costs]
    mean_x, mean_y = statistics.mean(x), statistics.mean(y)
    return sum((a - mean_x) * (b - mean_y) for a, b in zip(x, y)) / sum((a - mean_x) ** 2 for a in x)


def exponents(runs, cost):
    """Over all sizes, and over the last two, where what each run costs anyhow counts least."""
    sizes, costs = [run.size for run in runs], [cost(run) for run in runs]
    return fitted_exponent(sizes, costs), fitted_exponent(sizes[-2:], costs[-2:])


def verdict(met):
    return "met" if met else "**missed**"


def row(*cells):
    print("| " + " | ".join(cells) + " |")


def head(*cells):
    row(*cells)
    print("|" + "---|" * len(cells))


def print_eight_ports():
    print("\n### 8 ports on 4 boards, beside the floor\n")
    head("Run", "Minimum ms", "Floor", "Ratio", "Median ms", "Floor", "Ratio", "Memory MB", "Instructions",
         f"{MOST_FLOORS} floors", f"{MOST_MS} ms", f"{MOST_MB} MB")
    for name, title in EIGHT_PORTS:
        run = Run(name, 8)
        ratio, median_ratio = run.minimum / run.floor_minimum, run.median / run.floor_median
        within_floor = verdict(max(ratio, median_ratio) <= MOST_FLOORS)
        within_ms = "floor above it" if run.floor_minimum > MOST_MS else verdict(run.minimum <= MOST_MS)
        within_mb = verdict(run.memory <= MOST_MB)
        row(title, f"{run.minimum:.3f}", f"{run.floor_minimum:.3f}", f"{ratio:.2f}", f"{run.median:.3f}",
            f"{run.floor_median:.3f}", f"{median_ratio:.2f}", f"{run.memory:.2f}", f"{run.instructions:,}",
            within_floor, within_ms, within_mb)
    print("\nThe ratio is judged by minimum and median, the time by the minimum.")


def print_growth(curves):
    print("\n### Growth: instructions of the program itself\n")
    head("Grows", "Instructions at each size", "Exponent", "of the last step", "Target")
    for name, title in CURVES:
        runs = curves[name]
        fitted, last = exponents(runs, lambda run: run.instructions)
        met = verdict(max(fitted, last) <= STEEPEST)
        row(title, ", ".join(f"{run.size:,}: {run.instructions / 1e6:.2f} M" for run in runs), f"{fitted:.2f}",
            f"{last:.2f}", met if met == "met" or name not in FORCED else "steeper, as it must be")
    print("\n### Growth: milliseconds of the whole run, and what is left without the floor's (minimum of each)\n")
    head("Grows", "Milliseconds at each size", "Exponent", "of the last step")
    for name, title in CURVES:
        runs = curves[name]
        fitted, last = exponents(runs, lambda run: run.minimum)
        sizes = [f"{run.size:,}: {run.minimum:.2f} ({run.minimum - run.floor_minimum:.2f})" for run in runs]
        row(title, ", ".join(sizes), f"{fitted:.2f}", f"{last:.2f}")


def print_memory(curves):
    print("\n### Peak memory\n")
    head("Grows", "Size", "Listing MB", "Memory MB", "Allowed MB", "Target")
    for name, title in CURVES:
        run = curves[name][-1]
        allowed = LISTINGS * run.listing + MORE_MB
        row(title, f"{run.size:,}", f"{run.listing:.2f}", f"{run.memory:.2f}", f"{allowed:.2f}",
            verdict(run.memory <= allowed))


def cpu_name():
    found = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    return found[1] if found else platform.machine()


def main():
    curves = {name: runs_of(name) for name, _ in CURVES}
    print(f"Measured {datetime.date.today()} on {cpu_name()}, Linux {platform.release()}.")
    print_eight_ports()
    print_growth(curves)
    query = curves["ports-query"][-1]
    own = query.minimum - query.floor_minimum
    print(f"\n{query.size:,} ports queried in {own:.1f} ms without the floor's "
          f"(target {MOST_QUERY_MS} ms): {verdict(own <= MOST_QUERY_MS)}.")
    print_memory(curves)


main()
