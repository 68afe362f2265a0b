#!/usr/bin/env python3
"""Measures the processor time that compiling the tests and the fuzz replays takes.

usage: tests/compile_time.py BUILD_FOLDER [-j JOBS]

Runs every compile command of tests/ and fuzz/ of a configured build folder once, without a compiler cache and into
its usual place, precompiled headers first. Prints user seconds per file, the dearest last, and their sum.
"""
import argparse
import concurrent.futures
import json
import os
import pathlib
import shlex
import subprocess

LAUNCHERS = ("ccache", "sccache", "distcc")


def command_of(entry):
    words = shlex.split(entry["command"])
    return words[1:] if pathlib.Path(words[0]).name in LAUNCHERS else words


def user_seconds(entry):
    folder = pathlib.Path(entry["directory"])
    words = command_of(entry)
    (folder / words[words.index("-o") + 1]).parent.mkdir(parents=True, exist_ok=True)
    process = subprocess.Popen(words, cwd=folder, env={**os.environ, "CCACHE_DISABLE": "1"})
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        raise SystemExit(f"{entry['file']} does not compile")
    return usage.ru_utime, entry["file"]


def is_of_tests(entry, build):
    source = os.path.realpath(pathlib.Path(entry["directory"]) / entry["file"])
    return source.startswith(tuple(os.path.realpath(p) + os.sep for folder in ("tests", "fuzz")
                                   for p in (build / folder, pathlib.Path(__file__).parents[1] / folder)))


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    arguments.add_argument("build", type=pathlib.Path)
    arguments.add_argument("-j", type=int, default=os.cpu_count())
    given = arguments.parse_args()
    entries = [e for e in json.loads((given.build / "compile_commands.json").read_text())
               if is_of_tests(e, given.build)]
    headers = [e for e in entries if "cmake_pch" in e["file"]]
    sources = [e for e in entries if "cmake_pch" not in e["file"]]
    with concurrent.futures.ThreadPoolExecutor(given.j) as pool:
        times = list(pool.map(user_seconds, headers)) + list(pool.map(user_seconds, sources))
    for seconds, name in sorted(times):
        print(f"{seconds:8.2f} {os.path.relpath(name)}")
    print(f"{sum(t for t, _ in times):8.2f} user seconds in all, {len(times)} files")


main()
