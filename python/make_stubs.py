#!/usr/bin/env python3
"""Writes the types of the native module, _core.pyi, and of the records of a report, _records.pyi.

usage: make_stubs.py PACKAGE_FOLDER

PACKAGE_FOLDER holds the built module; the files are written next to it. The members of the records are the figures
that the module lists: a new figure of the program is a new attribute there without a change here.
"""
import ast
import pathlib
import re
import subprocess
import sys

TEXT, TEXTS, POSITION = "str | None", "list[str]", "tuple[float, float, float] | None"
# What is no figure, by class: name and type.
OTHERS = {
    "RunFacts": {
        "observation_file": "str",
        "navigation_files": TEXTS,
        "rinex_version": "float | None",
        "marker": TEXT,
        "receiver": TEXT,
        "antenna": TEXT,
        "first_epoch_gpst": TEXT,
        "last_epoch_gpst": TEXT,
        "interval_source": "str",
        "selection": "dict[str, Any] | None",
        "joined_files": TEXTS,
        "stream": "dict[str, Any] | None",
        "systems": "str",
        "excluded_satellites": TEXTS,
        "library_version": "str",
    },
    "Headline": {},
    "AnalysisFigures": {
        "with_orbits": "bool",
        "solution_ecef_m": POSITION,
        "without_orbit": TEXTS,
        "further_events": "int",
    },
    "LibraryHeadline": {},
    "LibraryRun": {
        "absence": "dict[str, str] | None",
        "position_ecef_m": POSITION,
        "position_source": "str",
    },
    "LibraryTotal": {},
    "Verdict": {"grade": "str", "text": "str"},
    "ProfileVerdict": {
        "profile": "str",
        "title": "str",
        "grade": "str",
        "passed": "bool",
        "remarks": TEXTS,
        "satellites_observed": "int | None",
        "satellites_judged": "int | None",
    },
    "Comparison": {
        "file": "str",
        "observation_file": "str",
        "first_epoch_gpst": TEXT,
        "last_epoch_gpst": TEXT,
        "statements": "list[dict[str, str]]",
        "signals_appeared": TEXTS,
        "signals_gone": TEXTS,
        "figures_compared": "int",
        "figures_changed": "int",
    },
    "StreamFacts": {
        "format": "str",
        "frames": "int",
        "crc_errors": "int",
        "skipped_bytes": "int",
        "messages": "list[dict[str, int]]",
        "coarse_systems": "str",
    },
    "Finding": {
        "id": "str",
        "severity": "str",
        "title": "str",
        "text": "str",
        "figures": "dict[str, float]",
        "satellites": TEXTS,
        "signal": TEXT,
    },
}
PARTS = {"RunFacts": "run", "Headline": "headline", "AnalysisFigures": "analysis",
         "LibraryHeadline": "library_headline", "LibraryRun": "library_run", "LibraryTotal": "library_total"}
HEAD = '''# Made by python/make_stubs.py; edits are lost.
from collections.abc import Iterator, Mapping
from typing import Any

class Record(Mapping[str, Any]):
    """{about}"""
    def __init__(self, values: Mapping[str, Any]) -> None: ...
    def __getitem__(self, name: str) -> Any: ...
    def __iter__(self) -> Iterator[str]: ...
    def __len__(self) -> int: ...
'''


def docstrings():
    """What the classes of records say of themselves, by name."""
    source = pathlib.Path(__file__).parent / "orsolva" / "_records.py"
    tree = ast.parse(source.read_text(encoding="utf-8"))
    return {node.name: ast.get_docstring(node) for node in tree.body if isinstance(node, ast.ClassDef)}


def class_text(name, members):
    lines = [f"class {name}(Record):", f'    """{docstrings()[name]}"""']
    for key, kind in OTHERS[name].items():
        lines += ["    @property", f"    def {key}(self) -> {kind}: ..."]
    for part, key, kind, unit, title in members:
        if part != PARTS.get(name):
            continue
        about = f"{title} ({unit})" if unit else title
        lines += ["    @property", f"    def {key}(self) -> {kind} | None:", f'        """{about}"""']
    return "\n".join(lines) + "\n"


def write_core(folder):
    """nanobind writes collections without what is in them, which strict checkers refuse."""
    command = [sys.executable, "-m", "nanobind.stubgen", "-q", "-m", "_core", "-i", str(folder), "-O", str(folder)]
    subprocess.run(command, check=True)
    stub = folder / "_core.pyi"
    text = stub.read_text(encoding="utf-8")
    for bare, whole in (("dict", "dict[str, Any]"), ("list", "list[Any]"), ("tuple", "tuple[Any, ...]")):
        text = re.sub(rf"(?<=-> ){bare}(?=:)|(?<=: ){bare}(?=[,)])", whole, text)
    text = re.sub(r"(?<=-> )object(?=:)", "Any", text)
    stub.write_text("from typing import Any\n" + text, encoding="utf-8")


def main():
    folder = pathlib.Path(sys.argv[1]).resolve()
    write_core(folder)
    sys.path.insert(0, str(folder))
    import _core

    members = _core.figure_members()
    about = docstrings()["Record"].replace("\n", "\n    ").replace("    \n", "\n")
    text = HEAD.replace("{about}", about) + "".join("\n" + class_text(name, members) for name in OTHERS)
    (folder / "_records.pyi").write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main()
