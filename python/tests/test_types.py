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


def test_mypy_is_content_with_the_package(tmp_path):
    pytest.importorskip("mypy")
    arguments = ["--strict", "--python-version", "3.11", "--ignore-missing-imports", "--cache-dir", str(tmp_path)]
    command = [sys.executable, "-m", "mypy", *arguments, "-p", "orsolva"]
    done = subprocess.run(command, capture_output=True, text=True, cwd=PACKAGE.parent)
    assert done.returncode == 0, done.stdout + done.stderr


@pytest.mark.parametrize("right", [True, False])
@pytest.mark.parametrize("checker", ["mypy", "pyright"])
def test_checkers_follow_the_types_in_an_example(tmp_path, checker, right):
    pytest.importorskip(checker)
    example = tmp_path / "example.py"
    example.write_text(EXAMPLE if right else EXAMPLE.replace("epochs: int | None", "epochs: str"))
    (tmp_path / "pyrightconfig.json").write_text(json.dumps({"extraPaths": [str(PACKAGE.parent)], "typeCheckingMode": "strict"}))
    arguments = ["--strict", "--ignore-missing-imports"] if checker == "mypy" else ["--pythonpath", sys.executable]
    environment = {**os.environ, "MYPYPATH": str(PACKAGE.parent), "PYRIGHT_PYTHON_IGNORE_WARNINGS": "1"}
    command = [sys.executable, "-m", checker, *arguments, str(example)]
    done = subprocess.run(command, capture_output=True, text=True, cwd=tmp_path, env=environment)
    assert (done.returncode == 0) == right, done.stdout + done.stderr


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
