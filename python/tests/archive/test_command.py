"""The command line: usage, errors, exit codes."""
import os
import pathlib
import shutil
import subprocess
import sys

import pytest

from conftest import archive, program
from orsolva.archive.command import _since, _until, parser

COMMAND = os.environ.get("ORSOLVA_COMMAND", str(pathlib.Path(__file__).resolve().parents[3] / "build/bin/orsolva"))


@pytest.mark.parametrize("arguments", [[], ["run"], ["run", "store"], ["nonsense"], ["run", "s", "x", "--workers", "-1"], ["run", "s", "x", "--workers", "2", "--dask", "tcp://x"]])
def test_wrong_usage(arguments):
    assert "usage: orsolva archive" in archive(*arguments, good=(2,))


def test_every_command_has_help():
    for command in ("init", "plan", "run", "check", "trends", "page"):
        assert "STORE" in archive(command, "--help")


def test_dates_may_be_years_or_months():
    assert [str(_since(text)) for text in ("2020", "2020-02", "2020-02-29")] == ["2020-01-01", "2020-02-01", "2020-02-29"]
    assert [str(_until(text)) for text in ("2020", "2020-02", "2020-12", "2020-02-03")] == ["2020-12-31", "2020-02-29", "2020-12-31", "2020-02-03"]


@pytest.mark.parametrize("text", ["2020-13", "2020-00", "2020-06-25-9", "2021-02-29", "2020-06-00", "20", "0000", "2020-", "-2020", "x", "", "2020-06-2x"])
@pytest.mark.parametrize("option", ["--since", "--until"])
def test_dates_that_are_none_are_refused(option, text):
    printed = archive("plan", "store", "source", f"{option}={text}", good=(2,))
    assert f"{text}: expected a year, month or day of the calendar, such as 2020" in printed


def test_a_source_that_is_not_there_is_an_error(tmp_path):
    archive("init", tmp_path / "store")
    assert "there is no such folder" in archive("run", tmp_path / "store", tmp_path / "nowhere", good=(1,))


def test_the_module_is_a_program():
    assert "usage: orsolva archive" in program("--help")


def handed_over(python, *arguments):
    """What the command says that becomes this package's."""
    done = subprocess.run([COMMAND, "archive", *arguments], capture_output=True, text=True, env={**os.environ, "ORSOLVA_PYTHON": str(python)})
    return done.returncode, done.stdout + done.stderr


def test_nothing_is_imported_from_the_current_folder(tmp_path, monkeypatch):
    for name in ("json", "orsolva"):
        (tmp_path / f"{name}.py").write_text("raise SystemExit('a stranger was imported')\n")
    monkeypatch.chdir(tmp_path)
    code, output = handed_over(sys.executable, "plan", "--help")
    assert code == 0 and "stranger" not in output


def test_the_command_hands_over_to_python():
    assert handed_over(sys.executable, "plan", "--help")[0] == 0
    code, output = handed_over(sys.executable, "run")
    assert code == 2 and "usage: orsolva archive run" in output


def test_the_command_says_what_to_install(tmp_path):
    code, output = handed_over(tmp_path / "nothing")
    assert code == 1 and "cannot be run. Install Python" in output
    bare = tmp_path / "bare"
    bare.write_text(f'#!/bin/sh\nunset PYTHONPATH\nexec {sys.executable} -S "$@"\n')
    bare.chmod(0o755)
    code, output = handed_over(bare)
    assert code == 1 and "pip install 'orsolva[archive]'" in output


def test_defaults():
    options = parser().parse_args(["run", "store", "source"])
    assert options.workers is None and options.dask is None and not options.retry


def test_a_quiet_run_says_nothing_but_errors(network, tmp_path, undisturbed):
    archive("init", tmp_path / "store")
    assert program("run", tmp_path / "store", network, "--workers", "0", "--quiet") == ""
    assert program("run", tmp_path / "store", network, "--quiet") == ""
    assert len(program("run", undisturbed, network).splitlines()) == 2
    assert "there is no such folder" in program("run", tmp_path / "store", tmp_path / "nowhere", "--quiet", good=(1,))


@pytest.mark.parametrize("quiet", [[], ["--quiet"]])
def test_a_name_that_is_not_utf8_costs_only_itself(network, tmp_path, quiet):
    source = tmp_path / "source"
    first, second, *_ = sorted(network.rglob("*_MO.rnx"))
    odd = os.fsencode(source) + b"/caf\xe9"
    os.makedirs(odd)
    shutil.copy(first, source)
    shutil.copy(os.fsencode(second), odd)
    archive("init", tmp_path / "store")
    printed = program("run", tmp_path / "store", source, "--workers", "0", *quiet)
    assert "1 left out that cannot be read (the first: [Errno" in printed and "the name is not UTF-8" in printed
    assert bool(quiet) == ("1 judged" not in printed)
    assert "1 done" in archive("plan", tmp_path / "store", source)


@pytest.mark.parametrize("span", [["--since", "2031"], ["--until", "2025"], ["--since", "2026-02-02", "--until", "2026-01-31"]])
def test_a_page_of_days_without_runs_is_refused(undisturbed, tmp_path, span):
    printed = archive("page", undisturbed, "--output", tmp_path / "pages", *span, good=(1,))
    assert "there are no runs" in printed and not (tmp_path / "pages").exists()


@pytest.mark.parametrize("address", ["{foo}", "{}", "{", "{year.x}", "{year[0]}", "{name:d}"])
def test_an_address_of_reports_that_cannot_be_filled_in_is_refused(undisturbed, tmp_path, address):
    printed = archive("page", undisturbed, "--output", tmp_path / "pages", "--reports", address, good=(1,))
    assert f"--reports {address}: only {{station}}, {{name}}" in printed and not (tmp_path / "pages").exists()


def test_an_address_of_reports_is_filled_in(undisturbed, tmp_path):
    archive("page", undisturbed, "--output", tmp_path / "pages", "--reports", "{station}/{year}/{day}/{date}/{name}{{}}")
    page = (tmp_path / "pages/stations/ST0000DNK.html").read_text()
    assert '"ST0000DNK/2026/030/2026-01-30/ST0000DNK_R_20260300000_12M_01M_MO{}"' in page


def test_the_program_leaves_pandas_out():
    """pyarrow imports it where it can; each process would take a quarter of a second for it."""
    code = "import sys, orsolva.archive.workers as workers, pyarrow as pa; workers.without_pandas(); pa.array(['x']); print('pandas' in sys.modules)"
    assert subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, check=True).stdout == "False\n"
