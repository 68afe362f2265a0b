#!/usr/bin/env python3
"""The command over a whole station-day against `gzip -dc` of the same observation file, in one run.

usage: bench/end_to_end.py BUILD OBS NAV [--rounds N] [--jobs-files N]

The reports are asked for alone and both in one run. Rounds of the commands alternate, so that what else the
machine does meets all alike; of wall time and of processor time (user and system, all threads) the fastest
round counts.
With --jobs-files N, as many copies of the day are processed by one process after the other and by
two at a time, and the rates are compared by the clock on the wall.
"""
import argparse
import pathlib
import resource
import subprocess
import tempfile
import time


def seconds(command, repeats):
    """Wall time and processor time of a command."""
    words = [str(part) for part in command]
    before, started = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic()
    for _ in range(repeats):
        subprocess.run(words, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
    wall, after = time.monotonic() - started, resource.getrusage(resource.RUSAGE_CHILDREN)
    processor = after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime
    return wall / repeats, processor / repeats


def ratios(tool, obs, nav, rounds, folder):
    commands = {
        "gzip -dc": ["gzip", "-dc", obs],
        "text report": [tool, "qc", "--no-config", obs, nav],
        "JSON report": [tool, "qc", "--no-config", "--json", obs, nav],
        "both reports": [tool, "qc", "--no-config", f"--text={folder}/report.txt", f"--json={folder}/report.json", obs, nav],
    }
    best = {name: (float("inf"), float("inf")) for name in commands}
    for _ in range(rounds):
        for name, command in commands.items():
            # Short commands are below the resolution of the processor clock when run alone.
            spent = seconds(command, repeats=20 if name == "gzip -dc" else 3)
            best[name] = tuple(map(min, best[name], spent))
    unit_wall, unit_processor = best["gzip -dc"]
    for name, (wall, processor) in best.items():
        print(f"{name:12} wall {wall * 1e3:8.1f} ms {wall / unit_wall:6.2f} times gzip -dc,"
              f" processor {processor * 1e3:8.1f} ms {processor / unit_processor:6.2f} times")


def wall_seconds(command, files, at_once):
    started = time.monotonic()
    running = []
    for _ in range(files):
        if len(running) == at_once:
            running.pop(0).wait()
        running.append(subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))
    for process in running:
        process.wait()
    return time.monotonic() - started


def processes(tool, obs, nav, files):
    command = [str(tool), "qc", "--no-config", str(obs), str(nav)]
    one = wall_seconds(command, files, 1)
    two = wall_seconds(command, files, 2)
    print(f"{files} days, one process at a time {one:.2f} s, two at a time {two:.2f} s: {one / two:.2f} times the rate")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("obs", type=pathlib.Path)
    parser.add_argument("nav", type=pathlib.Path)
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--jobs-files", type=int, default=0)
    options = parser.parse_args()
    tool = options.build / "bin" / "orsolva"
    with tempfile.TemporaryDirectory() as folder:
        ratios(tool, options.obs, options.nav, options.rounds, folder)
    if options.jobs_files:
        processes(tool, options.obs, options.nav, options.jobs_files)


if __name__ == "__main__":
    main()
