"""What the tests of the archive share: a simulated network, stores, runs of the command."""
import contextlib
import datetime
import hashlib
import io
import os
import pathlib
import subprocess
import sys
import time

import pytest

import orsolva
from orsolva.archive.command import main

FIRST_DAY = datetime.date(2026, 1, 30)


def simulate_file(folder, station, day, seed=1, hours=0.2, **more):
    """A short file of GPS at 60 s, with its navigation, in FOLDER/YEAR/DAY. @return the observation file"""
    place = pathlib.Path(folder) / f"{day:%Y/%j}"
    settings = {"interval_s": 60, "systems": "G", "start": str(day), "station": station, "seed": seed, "hours": hours}
    written = orsolva.simulate("quiet", **{**settings, **more}).write(place)
    written[2].unlink()
    return written[0]


def simulate_network(folder, stations=3, days=4, **more):
    """Files across the end of a month. @return the observation files"""
    return [
        simulate_file(folder, f"ST{station:02}00DNK", FIRST_DAY + datetime.timedelta(days=day), seed=100 * station + day + 1, **more)
        for station in range(stations)
        for day in range(days)
    ]


@pytest.fixture(scope="session")
def network(tmp_path_factory):
    """Three stations and four days: not to be changed."""
    folder = tmp_path_factory.mktemp("network")
    simulate_network(folder)
    return folder


@pytest.fixture
def own_network(tmp_path):
    """The same for one test, which may change it."""
    simulate_network(tmp_path / "source")
    return tmp_path / "source"


def archive(*arguments, good=(0,)):
    """Runs a command in this process; `run` without workers unless the test says how many. @return what it prints"""
    arguments = [str(argument) for argument in arguments]
    if arguments[:1] == ["run"] and not {"--workers", "--dask"} & set(arguments):
        arguments += ["--workers", "0"]
    printed = io.StringIO()
    with contextlib.redirect_stdout(printed), contextlib.redirect_stderr(printed):
        try:
            code = main(arguments)
        except SystemExit as end:
            code = end.code
    assert code in good, printed.getvalue()
    return printed.getvalue()


def program(*arguments, good=(0,), **more):
    """Runs `python -m orsolva.archive`. @return what it prints, errors included"""
    command = [sys.executable, "-m", "orsolva.archive", *map(str, arguments)]
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=300, **more)
    assert done.returncode in good, done.stdout
    return done.stdout


class Started:
    """A run of the program that goes on next to the test."""

    def __init__(self, process):
        self.process = process

    def workers(self, count):
        """The process numbers of its workers, once there are so many."""
        for _ in range(6000):
            found = self.workers_now()
            if len(found) >= count:
                return found
            if self.process.poll() is not None:
                break
            time.sleep(0.01)
        raise AssertionError(f"no {count} workers: {self.printed()}")

    def workers_now(self):
        """The process numbers of its workers."""
        found = []
        with contextlib.suppress(FileNotFoundError, ProcessLookupError):
            for child in pathlib.Path(f"/proc/{self.process.pid}/task/{self.process.pid}/children").read_text().split():
                if b"spawn_main" in pathlib.Path(f"/proc/{child}/cmdline").read_bytes():
                    found.append(int(child))
        return found

    def wait_for_runs(self, store):
        """Until a bundle is written."""
        for _ in range(6000):
            if any(pathlib.Path(store).glob("runs/*/*/*/data.parquet")):
                return
            time.sleep(0.01)
        raise AssertionError(f"nothing was written: {self.printed()}")

    def printed(self):
        """What it printed. Ends it."""
        self.process.kill()
        return self.process.stdout.read()


@contextlib.contextmanager
def started(*arguments):
    """Begins a command in a process of its own, which does not outlive the test."""
    command = [sys.executable, "-m", "orsolva.archive", *map(str, arguments)]
    process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    try:
        yield Started(process)
    finally:
        process.kill()
        process.wait()
        process.stdout.close()


def sums(store):
    """SHA-256 of every file of a store but leases, by name."""
    files = sorted(path for path in pathlib.Path(store).rglob("*") if path.is_file() and "lease" not in path.parts)
    return {os.path.relpath(path, store): hashlib.sha256(path.read_bytes()).hexdigest() for path in files}


@pytest.fixture(scope="session")
def undisturbed(network, tmp_path_factory):
    """A store of the network, judged in one process. Not to be changed."""
    store = tmp_path_factory.mktemp("undisturbed") / "store"
    archive("init", store, "--buckets", 2)
    archive("run", store, network)
    return store
