"""The command line: usage, errors, exit codes."""
import pytest

from conftest import archive, program
from orsolva.archive.command import _since, _until, parser


@pytest.mark.parametrize("arguments", [[], ["run"], ["run", "store"], ["nonsense"], ["run", "s", "x", "--workers", "-1"], ["run", "s", "x", "--workers", "2", "--dask", "tcp://x"]])
def test_wrong_usage(arguments):
    assert "usage: orsolva archive" in archive(*arguments, good=(2,))


def test_every_command_has_help():
    for command in ("init", "plan", "run", "check"):
        assert "STORE" in archive(command, "--help")


def test_dates_may_be_years_or_months():
    assert [str(_since(text)) for text in ("2020", "2020-02", "2020-02-29")] == ["2020-01-01", "2020-02-01", "2020-02-29"]
    assert [str(_until(text)) for text in ("2020", "2020-02", "2020-12", "2020-02-03")] == ["2020-12-31", "2020-02-29", "2020-12-31", "2020-02-03"]


def test_a_source_that_is_not_there_is_an_error(tmp_path):
    archive("init", tmp_path / "store")
    assert "there is no such folder" in archive("run", tmp_path / "store", tmp_path / "nowhere", good=(1,))


def test_the_module_is_a_program():
    assert "usage: orsolva archive" in program("--help")


def test_defaults():
    options = parser().parse_args(["run", "store", "source"])
    assert options.workers is None and options.dask is None and not options.retry
