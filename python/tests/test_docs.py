"""Every Python block of docs/user/python.md and docs/user/archive.md runs as it is."""
import os
import pathlib
import re
import shlex
import subprocess
import sys

import pytest

import orsolva
from orsolva.archive.command import main, parser

PAGES = pathlib.Path(__file__).resolve().parents[2] / "docs/user"
# Names that a block takes from what it is pasted into.
GIVEN = {"BashOperator": "from types import SimpleNamespace as BashOperator\n"}


def blocks(page):
    found = re.split(r"^## ", (PAGES / page).read_text(encoding="utf-8"), flags=re.M)[1:]
    return [
        pytest.param(block, id=part.splitlines()[0])
        for part in found
        for block in re.findall(r"^```python\n(.*?)^```", part, flags=re.M | re.S)
    ]


def archive_commands():
    """Every `orsolva archive ...` of the page of archives, as it would be typed."""
    text = (PAGES / "archive.md").read_text(encoding="utf-8")
    found = [command for block in re.findall(r"^```.*?\n(.*?)^```", text, flags=re.M | re.S) for command in re.findall(r"orsolva archive (\w.*)", block)]
    return [re.split(r" && | *#|\",", command)[0] for command in found] + re.findall(r"`orsolva archive (\w+ [^`]+)`", text)


@pytest.fixture(scope="module")
def workplace(tmp_path_factory):
    folder = tmp_path_factory.mktemp("recipes")
    day = orsolva.simulate("slips", seed=7, hours=2)
    for place, names in ((folder, ("day.rnx", "nav.rnx")), (folder / "archive", (None, None))):
        observations, navigation, _ = day.write(place)
        if names[0]:
            observations.rename(place / names[0])
            navigation.rename(place / names[1])
    store = str(folder / "store")
    assert main(["init", store]) == 0
    assert main(["run", store, str(folder / "archive"), "--workers", "0", "--quiet"]) == 0
    return folder


def test_there_are_ten_recipes():
    assert len(blocks("python.md")) >= 10


@pytest.mark.parametrize("block", blocks("python.md") + blocks("archive.md"))
def test_block_runs(block, workplace):
    environment = {**os.environ, "MPLBACKEND": "Agg"}
    paths = os.environ.get("PYTHONPATH", "").split(os.pathsep)
    environment["PYTHONPATH"] = os.pathsep.join(str(pathlib.Path(path).resolve()) for path in paths if path)
    program = "".join(line for name, line in GIVEN.items() if name in block) + block
    done = subprocess.run([sys.executable, "-W", "error::DeprecationWarning", "-c", program], capture_output=True, text=True, cwd=workplace, env=environment)
    assert done.returncode == 0, done.stderr
    assert "print(" not in block or done.stdout.strip()


@pytest.mark.parametrize("command", archive_commands())
def test_archive_command_is_understood(command):
    environment = {"SLURM_ARRAY_TASK_ID": "1", "SLURM_CPUS_PER_TASK": "4"}
    words = shlex.split(re.sub(r"\$\(date [^)]*\)", "2026-01-01", command))
    arguments = [re.sub(r"\$(\w+)", lambda name: environment[name[1]], word) for word in words]
    assert callable(parser().parse_args(arguments).run)


def test_archive_commands_are_found():
    assert len(archive_commands()) >= 12
