"""What the tests of the archive share: a simulated network, stores, runs of the command."""
import datetime
import hashlib
import os
import pathlib
import subprocess
import sys

import pytest

import orsolva

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


def archive(*arguments, good=(0,), **more):
    """Runs `python -m orsolva.archive`. @return what it prints, errors included"""
    command = [sys.executable, "-m", "orsolva.archive", *map(str, arguments)]
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=300, **more)
    assert done.returncode in good, done.stdout
    return done.stdout


def sums(store):
    """SHA-256 of every file of a store but leases, by name."""
    files = sorted(path for path in pathlib.Path(store).rglob("*") if path.is_file() and "lease" not in path.parts)
    return {os.path.relpath(path, store): hashlib.sha256(path.read_bytes()).hexdigest() for path in files}


@pytest.fixture(scope="session")
def undisturbed(network, tmp_path_factory):
    """A store of the network, judged in one process. Not to be changed."""
    store = tmp_path_factory.mktemp("undisturbed") / "store"
    archive("init", store, "--buckets", 2)
    archive("run", store, network, "--workers", 1)
    return store
