"""What the tests share: real files next to the checkout, a simulated day, the command."""
import os
import pathlib
import signal
import subprocess

import pytest

import orsolva

ROOT = pathlib.Path(__file__).resolve().parents[2]
SHARED = pathlib.Path(os.environ.get("ORSOLVA_SHARED", ROOT.parent / "shared"))
COMMAND = os.environ.get("ORSOLVA_COMMAND", str(ROOT / "build/bin/orsolva"))

# A shell that starts a job in the background has it ignore SIGINT, and so would the programs that the tests interrupt.
if signal.getsignal(signal.SIGINT) is signal.SIG_IGN:
    signal.signal(signal.SIGINT, signal.default_int_handler)


def pytest_sessionfinish(session):
    """With ORSOLVA_NO_SKIPS a test that is skipped, as without a package that it needs, fails the run."""
    reporter = session.config.pluginmanager.get_plugin("terminalreporter")
    if os.environ.get("ORSOLVA_NO_SKIPS") and reporter.stats.get("skipped"):
        session.exitstatus = 1


@pytest.fixture(scope="session")
def data() -> pathlib.Path:
    """The folder of real files."""
    folder = SHARED / "data"
    if not folder.is_dir():
        if os.environ.get("ORSOLVA_NO_SKIPS"):
            pytest.fail(f"{folder} is missing")
        pytest.skip(f"{folder} is missing")
    return folder


@pytest.fixture(scope="session")
def day() -> orsolva.Day:
    """Three hours of a station with faults."""
    return orsolva.simulate("station-day", seed=7, hours=3)


@pytest.fixture(scope="session")
def folder(day, tmp_path_factory) -> pathlib.Path:
    """The same as files."""
    folder = tmp_path_factory.mktemp("day")
    day.write(folder)
    return folder


@pytest.fixture(scope="session")
def observations(folder) -> pathlib.Path:
    return next(folder.glob("*_MO.rnx"))


@pytest.fixture(scope="session")
def navigation(folder) -> pathlib.Path:
    return next(folder.glob("*_MN.rnx"))


@pytest.fixture(scope="session")
def report(observations, navigation) -> orsolva.Report:
    return orsolva.qc(observations, navigation, detail=True)


@pytest.fixture(scope="session")
def command():
    """Runs the command. @return what it writes to standard output"""

    def run(*arguments, good=(0,)) -> bytes:
        done = subprocess.run([COMMAND, *map(str, arguments)], capture_output=True, check=False)
        assert done.returncode in good, done.stderr.decode()
        return done.stdout

    return run
