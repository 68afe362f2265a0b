#!/usr/bin/env python3
"""Rates of the Python package: reading observations, judging, handing tables over.

usage: bench/python.py [--against COMMAND] FILE...   with the package installed or on PYTHONPATH

--against times another program that reads the same file, by turns with a process of its own that imports the package
and reads it: `--against 'other-reader {}'`, where {} stands for the file. The best of three of each, start of the
process included.

The best of five of each, by the clock and by processor time, which other work on the machine changes less; MB are those
of the file as it is on disk. The last column is the processor time of reading over that of getting the same bytes into
memory and adding them up (numpy.fromfile and sum): what slows the machine slows both. The instructions per byte have a
budget in python/tests/test_speed.py.
"""
import argparse
import pathlib
import shlex
import subprocess
import sys
import time

import numpy as np

import orsolva


def best(call, times=5):
    """The shortest time and processor time of several, s, and what the call returned."""
    shortest = processor = float("inf")
    for _ in range(times):
        begin, begin_processor = time.perf_counter(), time.process_time()
        result = call()
        processor = min(processor, time.process_time() - begin_processor)
        shortest = min(shortest, time.perf_counter() - begin)
    return shortest, processor, result


def seconds(command):
    begin = time.perf_counter()
    subprocess.run(command, stdout=subprocess.DEVNULL, check=True)
    return time.perf_counter() - begin


def against(command, path):
    """How many times as long another program takes for a file as a new process that reads it with the package."""
    other = [word.replace("{}", str(path)) for word in shlex.split(command)]
    own = [sys.executable, "-c", "import sys, orsolva; orsolva.read_obs(sys.argv[1])", str(path)]
    times = [(seconds(own), seconds(other)) for _ in range(3)]
    own_s, other_s = (min(column) for column in zip(*times))
    print(f"{path.name}: {own_s:.3f} s, other program {other_s:.3f} s, {other_s / own_s:.1f} times")


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("--against", metavar="COMMAND")
    arguments.add_argument("files", nargs="+", type=pathlib.Path)
    options = arguments.parse_args()
    if options.against:
        for path in options.files:
            against(options.against, path)
        return
    print(f"{'file':40} {'MB':>6} {'read ms':>8} {'MB/s':>6} {'Mrows/s':>8} {'CPU ms':>7} {'MB/s':>6} {'qc ms':>7} {'CPU ms':>7} {'/bytes':>6}")
    for path in options.files:
        size = path.stat().st_size / 1e6
        read_s, read_cpu_s, observations = best(lambda: orsolva.read_obs(path))
        _, bytes_cpu_s, _ = best(lambda: np.fromfile(path, np.uint8).sum(dtype=np.uint64))
        qc_s, qc_cpu_s, _ = best(lambda: orsolva.qc(path, page=False), 3)
        rows = len(observations) / 1e6
        print(
            f"{path.name:40.40} {size:6.1f} {read_s * 1e3:8.1f} {size / read_s:6.0f} {rows / read_s:8.2f} {read_cpu_s * 1e3:7.1f} "
            f"{size / read_cpu_s:6.0f} {qc_s * 1e3:7.0f} {qc_cpu_s * 1e3:7.0f} {read_cpu_s / bytes_cpu_s:6.1f}"
        )


if __name__ == "__main__":
    main()
