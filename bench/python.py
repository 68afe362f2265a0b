#!/usr/bin/env python3
"""Rates of the Python package: reading observations, judging, handing tables over.

usage: bench/python.py FILE...   with the package installed or on PYTHONPATH

The best of five of each, by the clock and by processor time, which other work on the machine changes less; MB are those
of the file as it is on disk. The last column is the processor time of reading over that of getting the same bytes into
memory and adding them up (numpy.fromfile and sum): what slows the machine slows both. The instructions per byte have a
budget in python/tests/test_speed.py.
"""
import pathlib
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


def main():
    print(f"{'file':40} {'MB':>6} {'read ms':>8} {'MB/s':>6} {'Mrows/s':>8} {'CPU ms':>7} {'MB/s':>6} {'qc ms':>7} {'CPU ms':>7} {'/bytes':>6}")
    for name in sys.argv[1:]:
        path = pathlib.Path(name)
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
