"""The page of columns says what the tables have. ORSOLVA_UPDATE=1 writes it again."""
from __future__ import annotations

import os
import pathlib

from orsolva.archive.tables import ALL_TABLES, KEY, Column, text_of

PAGE = pathlib.Path(__file__).resolve().parents[3] / "docs/user/archive-columns.md"
TYPES = {
    "text": "string",
    "whole": "int64",
    "real": "double",
    "yes": "bool",
    "date": "date32",
    "time": "timestamp[ms]",
    "texts": "list<string>",
    "reals": "list<double>",
}


def _rows(columns: list[Column]) -> list[str]:
    rows = ["| column | type | |", "|---|---|---|"]
    for column in columns:
        text = text_of(column).replace("|", "\\|")
        rows.append(f"| `{column.name}` | {TYPES[column.type]} | {text} |")
    return rows


def _page() -> str:
    lines = [
        "# Columns of an archive",
        "",
        "<!-- Written by python/tests/archive/test_columns.py from python/orsolva/archive/tables.py. -->",
        "",
        "Times are GPS time; a figure without data is null. `orsolva explain NAME` has formula, source and population of a figure.",
        "",
        "Every table begins with:",
        "",
        *_rows(KEY),
    ]
    for table in ("runs", *(name for name in ALL_TABLES if name != "runs")):
        lines += ["", f"## {table}", "", *_rows([column for column in ALL_TABLES[table] if column not in KEY])]
    return "\n".join(lines) + "\n"


def test_the_page_lists_every_column() -> None:
    page = _page()
    if os.environ.get("ORSOLVA_UPDATE"):
        PAGE.write_text(page)
    assert PAGE.read_text() == page

