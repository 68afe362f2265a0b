#!/usr/bin/env python3
"""Whatever is written to a pipe that nobody reads ends in silence, as tools do in `... | head`.

usage: closed_pipe_test.py PROGRAM [ARCHIVE_PYTHON]   an interpreter that has the Python package: its archive is tested, too

The reader is gone before the program starts, so that the first write fails, whatever it is. The exit code is that of
SIGPIPE and nothing is on standard error.
"""
import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile

ENDED = -signal.SIGPIPE


def closed(command):
    """(exit code, standard error) with standard output a pipe without a reader."""
    reader, writer = os.pipe()
    os.close(reader)
    try:
        done = subprocess.run(list(map(str, command)), stdout=writer, stderr=subprocess.PIPE, stdin=subprocess.DEVNULL, timeout=120)
    finally:
        os.close(writer)
    return done.returncode, done.stderr.decode()


def simulated(program, folder):
    """Observations, navigation, a recorded stream and a report."""
    made = [program, "simulate", "--preset", "slips", "--hours", "1", "--rtcm", "7", "--output", str(folder)]
    subprocess.run(made, check=True, stdout=subprocess.DEVNULL)
    files = [next(folder.glob(pattern)) for pattern in ("*_MO.rnx", "*_MN.rnx", "*.rtcm3")]
    report = folder / "report.json"
    with report.open("w") as output:
        subprocess.run([program, "qc", "--no-config", "--quiet", "--json", *map(str, files[:2])], check=True, stdout=output)
    return [*files, report]


def commands(folder, observations, navigation, stream, report):
    """Every kind of text that goes to standard output."""
    qc = ["qc", "--no-config", "--quiet", observations, navigation]
    kinds = {name: [*qc, f"--{name}"] for name in ("csv", "json", "sum")}
    kinds |= {f"{name} to standard output": [*qc, f"--{name}=-"] for name in ("events", "series", "network")}
    other = folder / "other.csv"
    text = ["qc", "--no-config", observations, navigation]
    return kinds | {
        "text": text,
        "JSON and a file": [*qc, "--json", f"--csv={other}"],
        "figures of both": [*text, "--figures", "both", "--sats"],
        "several files": ["qc", "--no-config", "--quiet", "--csv", "--jobs", "2", observations, stream, "--nav", navigation],
        "inspect": ["inspect", observations],
        "inspect of navigation": ["inspect", navigation],
        "inspect of a stream": ["inspect", stream],
        "explain": ["explain", "mp1"],
        "list of explain": ["explain"],
        "compare": ["compare", report, folder / "truth.json"],
        "simulate": ["simulate", "--preset", "quiet", "--hours", "0.1", "--output", folder / "again"],
        "help": ["--help"],
        "help of qc": ["qc", "--help"],
        "version": ["--version"],
        "facts of the version": ["version"],
        "completion": ["completion", "bash"],
        "events of live streams": ["live", stream, "--start", "2020-06-25"],
    }


def is_silent(name, command):
    code, error = closed(command)
    if (code, error) == (ENDED, ""):
        return True
    print(f"{name}: exit code {code}, {json.dumps(error[:300])}")
    return False


def archive_is_silent(python, folder, source):
    """The commands of the archive, which end in Python."""
    os.environ.pop("PYTHONUNBUFFERED", None)
    begin, store = [python, "-m", "orsolva.archive"], folder / "store"
    for command in (["init", store], ["run", store, source, "--workers", "1", "--quiet"]):
        subprocess.run([*map(str, begin + command)], check=True, stdout=subprocess.DEVNULL)
    kinds = {
        "help": ["--help"], "plan": ["plan", store, source, "--list"], "run": ["run", store, source], "check": ["check", store],
        "trends": ["trends", store, "--all"], "page": ["page", store, "--output", folder / "pages"],
    }
    silent = [is_silent(f"archive {name}", [*begin, *command]) for name, command in kinds.items()]
    return all(silent) and (folder / "pages/index.html").exists()


def main():
    program = sys.argv[1]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        files = simulated(program, folder / "day")
        kinds = commands(folder / "day", *files)
        silent = [is_silent(name, [program, *command]) for name, command in kinds.items()]
        python = "".join(sys.argv[2:3])  # empty where the package is not built
        archive = not python or archive_is_silent(python, folder, folder / "day")
    print(f"{sum(silent)} of {len(kinds)} kinds of output are silent")
    sys.exit(not (all(silent) and archive))


main()
