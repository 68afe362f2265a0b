"""orsolva qc --parquet: the tables of Report.to_parquet, with the options of the command; words where it cannot."""
import os
import pathlib
import re
import signal
import subprocess
import sys
import time

import pytest
from conftest import COMMAND

import orsolva
from orsolva import _parquet

pq = pytest.importorskip("pyarrow.parquet")


def run(*arguments, **environment):
    """The command with this interpreter, unless it has one in its own folder."""
    variables = {**os.environ, **environment}
    variables["PYTHONPATH"] = os.pathsep.join(
        [environment.get("PYTHONPATH", ""), *(str(pathlib.Path(p).resolve()) for p in os.environ.get("PYTHONPATH", "").split(os.pathsep) if p)]
    ).strip(os.pathsep)
    if not (pathlib.Path(COMMAND).parent / "python3").exists():
        variables.setdefault("ORSOLVA_PYTHON", sys.executable)
    return subprocess.run([COMMAND, "qc", *map(str, arguments)], capture_output=True, text=True, env=variables)


def same_tables(folder, expected):
    names = sorted(path.name for path in folder.iterdir())
    assert names == sorted(path.name for path in expected.iterdir())
    for name in names:
        assert pq.read_table(folder / name).equals(pq.read_table(expected / name)), name
    return names


def test_tables_are_those_of_a_report(observations, navigation, tmp_path):
    done = run(observations, "--nav", navigation, "--parquet", tmp_path / "out")
    assert (done.returncode, done.stdout, done.stderr) == (0, "", "")
    orsolva.qc(observations, navigation, series=True, events=True, page=False).to_parquet(tmp_path / "expected")
    names = same_tables(tmp_path / "out" / observations.stem, tmp_path / "expected")
    assert {"signals.parquet", "events.parquet", "series.parquet", "library_systems.parquet"} <= set(names)


def test_options_of_the_command_hold(observations, navigation, tmp_path):
    config = tmp_path / "config.toml"
    config.write_text("[qc]\nelevation = 15\nsystems = 'GE'\n")
    options = ["--config", config, "--start", "00:30", "--sampling", "60", "--signals", "G:1C,2W", "--window", "30m"]
    options += ["--exclude", "G05,G07", "--interval", "auto", "--max-size", "1G", "--snr-from-strength", "--position", "header"]
    done = run(observations, "--nav", navigation, *options, "--parquet", tmp_path / "out")
    assert (done.returncode, done.stderr) == (0, "")
    report = orsolva.qc(
        observations, navigation, elevation_deg=15, systems="GE", start="00:30", sampling_s=60, signals=["G1C", "G2W"], window=1800,
        exclude=["G05", "G07"], max_size=2**30, snr_from_strength=True, position="header", series=True, events=True, page=False,
    )
    report.to_parquet(tmp_path / "expected")
    assert "windows.parquet" in same_tables(tmp_path / "out" / observations.stem, tmp_path / "expected")


def test_every_option_of_the_analysis_is_an_argument():
    text = subprocess.run([COMMAND, "qc", "--help"], capture_output=True, text=True, check=True).stdout
    analysis = text[text.index("\nAnalysis:") : text.index("\nOutput:")]
    options = set(re.findall(r"^  --([a-z-]+)", analysis, flags=re.M))
    assert options == set(_parquet.ARGUMENTS) | _parquet.ELSEWHERE


def test_other_reports_are_written_as_well(observations, navigation, tmp_path):
    done = run(observations, "--nav", navigation, "--parquet", tmp_path / "out", "--json")
    assert done.stdout == orsolva.qc(observations, navigation).to_json() and done.returncode == 0
    assert (tmp_path / "out" / observations.stem / "signals.parquet").exists()


def test_a_file_that_fails_costs_only_itself(observations, navigation, tmp_path):
    junk = tmp_path / "junk.rnx"
    junk.write_text("     3.05           OBSERVATION DATA    M                   RINEX VERSION / TYPE\nnothing\n")
    done = run(junk, observations, "--nav", navigation, "--parquet", tmp_path / "out")
    assert done.returncode == 1 and "junk.rnx" in done.stderr
    assert [path.name for path in (tmp_path / "out").iterdir()] == [observations.stem]


def test_a_failed_verdict_is_the_exit_code(observations, navigation, tmp_path):
    limits = tmp_path / "limits.toml"
    limits.write_text('name = "limits"\ntitle = "limits"\n[[criterion]]\nname = "MP1"\nfigure = "mp_rms_m"\nscope = "system"\nat_most = {good = 0.001, fair = 0.001}\nsource = "test"\n')
    done = run(observations, "--nav", navigation, "--profile", limits, "--parquet", tmp_path / "out")
    assert (done.returncode, done.stderr) == (3, "")
    assert (tmp_path / "out" / observations.stem / "outcomes.parquet").exists()


@pytest.mark.parametrize("missing", ["pyarrow", "orsolva"])
def test_a_missing_package_is_named_with_the_line_that_installs_it(observations, tmp_path, missing):
    package = tmp_path / "blocked" / missing
    package.mkdir(parents=True)
    (package / "__init__.py").write_text("raise ImportError('not here')\n")
    done = run(observations, "--parquet", tmp_path / "out", PYTHONPATH=str(tmp_path / "blocked"))
    assert done.returncode == 1 and "-m pip install orsolva pyarrow" in done.stderr
    assert not (tmp_path / "out").exists()


def test_a_missing_interpreter_is_named(observations, tmp_path):
    done = run(observations, "--parquet", tmp_path / "out", ORSOLVA_PYTHON=str(tmp_path / "it's not"))
    assert done.returncode == 1 and "it's not" in done.stderr and "ORSOLVA_PYTHON" in done.stderr


def test_standard_input_is_refused(tmp_path):
    done = run("-", "--parquet", tmp_path / "out")
    assert done.returncode == 2 and "--parquet" in done.stderr


def test_an_interrupt_ends_it(observations, navigation, tmp_path):
    fifo = tmp_path / "waits.rnx"
    os.mkfifo(fifo)
    command = [COMMAND, "qc", observations, "--nav", navigation, fifo, "--parquet", tmp_path / "out"]
    environment = {**os.environ, "ORSOLVA_PYTHON": sys.executable}
    running = subprocess.Popen(list(map(str, command)), env=environment, start_new_session=True, stderr=subprocess.DEVNULL)
    time.sleep(2)
    os.killpg(running.pid, signal.SIGINT)
    try:
        os.close(os.open(fifo, os.O_WRONLY | os.O_NONBLOCK))
    except OSError:  # nobody waits any more
        pass
    assert running.wait(30) == 130
