"""Every block of docs/user/python.md runs as it is."""
import os
import pathlib
import re
import subprocess
import sys

import pytest

import orsolva

PAGE = pathlib.Path(__file__).resolve().parents[2] / "docs/user/python.md"


def blocks():
    found = re.split(r"^## ", PAGE.read_text(encoding="utf-8"), flags=re.M)[1:]
    return [
        pytest.param(block, id=part.splitlines()[0])
        for part in found
        for block in re.findall(r"^```python\n(.*?)^```", part, flags=re.M | re.S)
    ]


@pytest.fixture(scope="module")
def workplace(tmp_path_factory):
    folder = tmp_path_factory.mktemp("recipes")
    day = orsolva.simulate("slips", seed=7, hours=2)
    for place, names in ((folder, ("day.rnx", "nav.rnx")), (folder / "archive", (None, None))):
        observations, navigation, _ = day.write(place)
        if names[0]:
            observations.rename(place / names[0])
            navigation.rename(place / names[1])
    return folder


def test_there_are_ten_recipes():
    assert len(blocks()) >= 10


@pytest.mark.parametrize("block", blocks())
def test_block_runs(block, workplace):
    environment = {**os.environ, "MPLBACKEND": "Agg"}
    paths = os.environ.get("PYTHONPATH", "").split(os.pathsep)
    environment["PYTHONPATH"] = os.pathsep.join(str(pathlib.Path(path).resolve()) for path in paths if path)
    done = subprocess.run([sys.executable, "-W", "error::DeprecationWarning", "-c", block], capture_output=True, text=True, cwd=workplace, env=environment)
    assert done.returncode == 0, done.stderr
    assert "print(" not in block or done.stdout.strip()
