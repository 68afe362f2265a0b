#!/usr/bin/python3
"""Plots the cost of a run against its epochs and its satellites.

usage: bench/plot_scaling.py BUILD [--rounds N] [--output FILE]

Runs `bench_long_runs epochs` and `bench_long_runs satellites`: processor time in the library, the fastest of N
rounds, since other work on the machine can only add to it. The straight line runs through the origin and the
longest run, so that a growing cost per satellite-epoch would lift the last points off a line through the first.
"""
import argparse
import pathlib
import re
import subprocess

import matplotlib

matplotlib.use("svg")
from matplotlib import pyplot as plt  # noqa: E402  after the choice of the backend

HERE = pathlib.Path(__file__).resolve().parent
ROW = re.compile(r"(?:hours|satellites)\s+(\d+):\s+([\d.]+) ms,\s+(\d+) ns")


def measured(build, what, rounds):
    """Rows of value, ms and ns per satellite-epoch."""
    command = [build / "bin" / "bench_long_runs", what, str(rounds)]
    text = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    print(text, end="")
    return [(int(value), float(ms), int(ns)) for value, ms, ns in ROW.findall(text)]


def draw(axes, rows, label, end):
    values, times, costs = zip(*rows)
    scale = times[-1] / values[-1]
    axes.plot([0, end], [0, scale * end], color="0.7", linewidth=1, label="linear")
    axes.plot(values, times, "o", color="tab:blue", label="processor time")
    axes.set(xlabel=label, ylabel="ms", xlim=(0, end), ylim=(0, 1.08 * scale * end))
    below = axes.twinx()
    below.plot(values, costs, "x", color="tab:orange", markersize=5, label="ns per satellite-epoch")
    below.set(ylabel="ns per satellite-epoch", ylim=(0, 2.2 * max(costs)))
    lines, names = (sum(both, []) for both in
                    zip(axes.get_legend_handles_labels(), below.get_legend_handles_labels()))
    axes.legend(lines, names, loc="upper left", frameon=False, fontsize=8)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--output", type=pathlib.Path, default=HERE.parent / "docs" / "internals" / "images" / "scaling.svg")
    options = parser.parse_args()
    matplotlib.rcParams["svg.hashsalt"] = "scaling"
    figure, (left, right) = plt.subplots(1, 2, figsize=(10, 3.8), layout="constrained")
    draw(left, measured(options.build, "epochs", options.rounds), "hours of 30 s epochs", 175)
    draw(right, measured(options.build, "satellites", options.rounds), "satellites, a day of 30 s epochs", 64)
    figure.savefig(options.output, metadata={"Date": None})


if __name__ == "__main__":
    main()
