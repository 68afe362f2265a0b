#!/usr/bin/env python3
"""Counts the instructions of small cases under callgrind and compares them with their budgets.

usage: bench/check_instructions.py BUILD [--write] [CASE...]

Two pairs are held against each other by satellite-epoch, too: a longer span of one sky against a shorter one,
so that nothing grows with what has gone before, and epochs with holes between them against epochs in a row.

Counts repeat to a small fraction of a percent, unlike times. A case fails when it takes more than its budget;
--write sets the budgets to what is counted now plus the margin, for a change that is meant to cost more (or
has made things cheaper). A count below half the budget fails as well: the budget has ceased to guard. Where
cases are named, only these are run.
"""
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
BUDGETS = HERE / "instruction_budgets.json"
# The C library selects variants by processor; the plain ones make counts comparable between machines.
PLAIN = {"GLIBC_TUNABLES": "glibc.cpu.hwcaps=-AVX,-AVX2,-AVX512F,-FMA,-FMA4,-ERMS"}
MARGIN = 1.05  # compilers and C libraries of one kind differ by less

SHORT_SPAN, LONG_SPAN = "six-hours-120s", "two-days-120s"
MOST_GROWTH = 1.08  # of the cost per satellite-epoch from the short span to the long one

WHOLE, HOLES = "whole-1s", "holes-1s"
MOST_FOR_HOLES = 2.9  # times the cost per satellite-epoch in a row; the searches a satellite has at its start weigh most


def instructions(build: pathlib.Path, case: str) -> tuple[int, int]:
    """Instructions and satellite-epochs of a case."""
    with tempfile.TemporaryDirectory() as folder:
        command = [
            "valgrind", "--tool=callgrind", "--toggle-collect=CountedRun*",
            f"--callgrind-out-file={folder}/out", str(build / "bin" / "instruction_case"), case,
        ]
        done = subprocess.run(command, capture_output=True, text=True, check=True, env={**os.environ, **PLAIN})
    counted = re.search(r"Collected : (\d+)", done.stderr).group(1)
    return int(counted), int(re.search(r"(\d+) satellite-epochs", done.stdout).group(1))


def judge(counted: int, budget: int) -> str:
    if counted > budget:
        return "OVER BUDGET"
    return "FAR BELOW ITS BUDGET, which guards nothing: run with --write" if counted < budget / 2 else ""


def main() -> int:
    build = pathlib.Path(sys.argv[1])
    write = "--write" in sys.argv[2:]
    chosen = [word for word in sys.argv[2:] if word != "--write"]
    budgets = json.loads(BUDGETS.read_text())
    over = 0
    costs = {}
    for case, budget in budgets.items():
        if chosen and case not in chosen:
            continue
        counted, satellite_epochs = instructions(build, case)
        costs[case] = counted / satellite_epochs
        if write:
            budgets[case] = int(counted * MARGIN)
        verdict = "" if write else judge(counted, budget)
        over += verdict != ""
        print(f"{case:20} {counted:>14,} of {budgets[case]:>14,} {verdict}")
    for case, base, most in ((LONG_SPAN, SHORT_SPAN, MOST_GROWTH), (HOLES, WHOLE, MOST_FOR_HOLES)):
        if case in costs and base in costs:
            ratio = costs[case] / costs[base]
            over += ratio > most
            print(f"{case} against {base} per satellite-epoch: {ratio:.3f} of {most}", "TOO MUCH" if ratio > most else "")
    if write:
        BUDGETS.write_text(json.dumps(budgets, indent=2) + "\n")
    return 1 if over else 0


if __name__ == "__main__":
    sys.exit(main())
