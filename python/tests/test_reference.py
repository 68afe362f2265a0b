"""The API reference has everything public, with types, also the members of records that only the stubs know."""
import html
import pathlib
import re
import subprocess
import sys

import pytest

import orsolva

SCRIPT = pathlib.Path(__file__).resolve().parents[1] / "make_reference.py"
PACKAGE = pathlib.Path(orsolva.__file__).parent


@pytest.fixture(scope="module")
def page(tmp_path_factory):
    pytest.importorskip("pdoc")
    folder = tmp_path_factory.mktemp("reference")
    done = subprocess.run([sys.executable, SCRIPT, PACKAGE, folder], capture_output=True, text=True)
    assert done.returncode == 0, done.stderr
    return (folder / "orsolva.html").read_text(encoding="utf-8")


def test_everything_public_is_there(page):
    for name in orsolva.__all__:
        assert f'id="{name}"' in page, name


def test_members_of_records_have_type_and_meaning(page, report):
    for record in (report.run, report.headline, report.analysis, report.library.total):
        for name in record:
            assert f'id="{type(record).__name__}.{name}"' in page, name
    text = html.unescape(re.sub(r"<[^>]+>", "", page))
    assert "cutoff_completeness_ratio: float | None" in text
    assert "epochs: int | None" in text


def test_members_of_reports_have_their_types(page):
    text = html.unescape(re.sub(r"<[^>]+>", "", page))
    for line in ("systems: Table", "arcs: Table | None", "comparison: Comparison | None", "findings: list[Finding]"):
        assert line in text.replace("orsolva._table.", "").replace("orsolva._records.", ""), line
