"""Types: the package and its examples pass the strict checkers, and the stubs name what there is."""
import ast
import json
import os
import pathlib
import subprocess
import sys

import pytest

import orsolva

PACKAGE = pathlib.Path(orsolva.__file__).parent

EXAMPLE = '''
import numpy as np
import orsolva

report = orsolva.qc("day.crx.gz", "brdc.rnx.gz", elevation_deg=7.5, position=(1.0, 2.0, 3.0))
epochs: int | None = report.run.epochs
ratio: float | None = report.headline.cutoff_completeness_ratio
for outcome in orsolva.qc_many(["archive"]):
    if isinstance(outcome, orsolva.Failure):
        print(outcome.file, outcome.error)
    else:
        print(outcome.systems["system"])
observations = orsolva.read_obs("day.rnx", start=np.datetime64("2020-06-25"))


def watch(rows: orsolva.Table) -> None:
    print(len(rows))


with orsolva.Checker(interval_s=1) as run:
    run.push_table(observations)
    run.on_detail = watch
    print(run.report().to_dict())
part = orsolva.qc(["a.rnx", "b.rnx"], start="06:00", sampling_s=30, signals=["G1C"], window="1h", compare=report, series=True)
changed: int | None = part.comparison.figures_changed if part.comparison is not None else None
print(part.series, part.stream.crc_errors if part.stream is not None else "no stream")
print(orsolva.compare(report, orsolva.simulate(hours=1)), orsolva.explain("mp1"))
'''


# What they found out of NumPy, pandas and others, which takes most of their time, serves the next run too.
@pytest.fixture(scope="module")
def mypy(tmp_path_factory):
    pytest.importorskip("mypy")
    cache = tmp_path_factory.mktemp("mypy")
    return [sys.executable, "-m", "mypy", "--strict", "--python-version", "3.11", "--ignore-missing-imports", "--cache-dir", str(cache)]


@pytest.fixture()
def examples(tmp_path):
    """A right use of the package and a wrong one."""
    (tmp_path / "right.py").write_text(EXAMPLE)
    (tmp_path / "wrong.py").write_text(EXAMPLE.replace("epochs: int | None", "epochs: str"))
    return tmp_path


def test_mypy_is_content_with_the_package(mypy):
    done = subprocess.run([*mypy, "-p", "orsolva"], capture_output=True, text=True, cwd=PACKAGE.parent)
    assert done.returncode == 0, done.stdout + done.stderr


@pytest.mark.parametrize("name", ["right", "wrong"])
def test_mypy_follows_the_types_in_an_example(mypy, examples, name):
    environment = {**os.environ, "MYPYPATH": str(PACKAGE.parent)}
    done = subprocess.run([*mypy, f"{name}.py"], capture_output=True, text=True, cwd=examples, env=environment)
    assert (done.returncode == 0) == (name == "right"), done.stdout + done.stderr


def test_pyright_follows_the_types_in_an_example(examples):
    pytest.importorskip("pyright")
    (examples / "pyrightconfig.json").write_text(json.dumps({"extraPaths": [str(PACKAGE.parent)], "typeCheckingMode": "strict"}))
    environment = {**os.environ, "PYRIGHT_PYTHON_IGNORE_WARNINGS": "1"}
    command = [sys.executable, "-m", "pyright", "--pythonpath", sys.executable, "--outputjson", "right.py", "wrong.py"]
    done = subprocess.run(command, capture_output=True, text=True, cwd=examples, env=environment)
    errors = [d for d in json.loads(done.stdout)["generalDiagnostics"] if d["severity"] == "error"]
    assert {pathlib.Path(d["file"]).name for d in errors} == {"wrong.py"}, done.stdout + done.stderr


def members(name):
    tree = ast.parse((PACKAGE / "_records.pyi").read_text())
    classes = {node.name: node for node in tree.body if isinstance(node, ast.ClassDef)}
    return {node.name for node in classes[name].body if isinstance(node, ast.FunctionDef)}


def test_stubs_name_every_member_of_the_records(report, observations, navigation):
    verdict = orsolva.qc(observations, navigation, profile="station").profile
    compared = orsolva.qc(observations, navigation, compare=report)
    for record in (report.run, report.headline, report.analysis, report.library.total, report.library.run, report.library.headline, report.verdict, report.findings[0], verdict, compared.comparison):
        assert members(type(record).__name__) == set(record), type(record)


def test_stubs_name_every_member_of_the_facts_of_a_stream(data):
    stream = orsolva.read_obs(data.parent / "rtcm" / "sept.rtcm").stream
    assert members("StreamFacts") == set(stream)


def test_everything_public_has_a_docstring():
    for name in orsolva.__all__:
        thing = getattr(orsolva, name)
        if not callable(thing):
            continue
        assert thing.__doc__, name
        for member in dir(thing) if isinstance(thing, type) else []:
            if not member.startswith("_") and callable(getattr(thing, member)) and member in vars(thing):
                assert getattr(thing, member).__doc__, (name, member)
