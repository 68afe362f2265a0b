#!/usr/bin/env python3
"""Rates of the Python package: reading observations, judging, handing tables over.

usage: bench/python.py FILE...   with the package installed or on PYTHONPATH

The best of five of each; MB are those of the file as it is on disk.
"""
import pathlib
import sys
import time

import orsolva


def best(call, times=5):
    """The shortest time of several, s, and what the call returned."""
    shortest = float("inf")
    for _ in range(times):
        begin = time.perf_counter()
        result = call()
        shortest = min(shortest, time.perf_counter() - begin)
    return shortest, result


def main():
    print(f"{'file':44} {'MB':>6} {'read ms':>8} {'MB/s':>6} {'Mrows/s':>8} {'qc ms':>7}")
    for name in sys.argv[1:]:
        path = pathlib.Path(name)
        size = path.stat().st_size / 1e6
        read_s, observations = best(lambda: orsolva.read_obs(path))
        qc_s, _ = best(lambda: orsolva.qc(path, page=False), 3)
        rows = len(observations) / 1e6
        print(f"{path.name:44.44} {size:6.1f} {read_s * 1e3:8.1f} {size / read_s:6.0f} {rows / read_s:8.2f} {qc_s * 1e3:7.0f}")


if __name__ == "__main__":
    main()
