"""Tables: columns in the layout of Arrow, without a copy to NumPy, pandas, polars, pyarrow or DuckDB."""
from __future__ import annotations

import html
import importlib
from collections.abc import Iterator
from typing import TYPE_CHECKING, Any

import numpy as np
import numpy.typing as npt

from . import _core
from ._errors import ArgumentTypeError

if TYPE_CHECKING:
    import pandas
    import polars
    import pyarrow

_SHOWN_ROWS = 10
_SHOWN_COLUMNS = 12


def imported(package: str, purpose: str) -> Any:
    """A package that is no dependency of this one.

    Raises:
        ImportError: when it is not installed, with the line that installs it
    """
    try:
        return importlib.import_module(package)
    except ImportError as error:
        top = package.partition(".")[0]
        raise ImportError(f"{purpose} needs {top}: pip install {top}", name=top) from error


def _unpacked(bits: npt.NDArray[np.uint8], rows: int) -> npt.NDArray[np.bool_]:
    return np.unpackbits(bits, count=rows, bitorder="little").astype(np.bool_)


class Table:
    """A table that never changes.

    Anything that reads the Arrow PyCapsule interface takes it as it is: `pyarrow.table(t)`, `polars.DataFrame(t)`,
    `duckdb.sql("select * from t")`, `nanoarrow.ArrayStream(t)`. Times are on the GPS time scale; in Arrow they are
    `timestamp[ns]` without a zone, with the metadata `time_scale=GPST`. A missing value is a null in Arrow and NaN,
    NaT or None in NumPy.
    """

    __slots__ = ("_data", "_places")

    def __init__(self, data: _core.TableData) -> None:
        if not isinstance(data, _core.TableData):
            raise ArgumentTypeError("tables come from reports and readers; there is no other way to make one")
        self._data = data
        self._places = {name: place for place, name in enumerate(data.column_names())}

    def __len__(self) -> int:
        return len(self._data)

    @property
    def column_names(self) -> list[str]:
        """Names of the columns; they end in the unit where there is one."""
        return list(self._places)

    def __contains__(self, name: object) -> bool:
        return name in self._places

    def __getitem__(self, name: str) -> npt.NDArray[Any]:
        """A column as a read-only array of one value per row.

        Real numbers (float64), times (datetime64[ns], GPS time) and flags (uint8) are views without a copy; so are
        whole numbers (int64) of which none is missing. Whole numbers of which one is missing become float64 with
        NaN. Names and texts are copied: `str` where none is missing, else objects with None. Lists are objects.

        Raises:
            KeyError: when there is no such column
        """
        kind, data, valid, words = self._parts(name)
        rows = len(self)
        mask = None if valid is None else _unpacked(valid, rows)
        array: npt.NDArray[Any]
        if kind == "whole" and mask is not None:
            array = np.where(mask, data, np.nan)
        elif kind == "bool":
            array = data.astype(np.bool_) if mask is None else _objects(data.astype(np.bool_).tolist(), mask)
        elif kind == "time":
            array = data.view("datetime64[ns]")
        elif kind == "name":
            array = _named(data, words, mask)
        elif kind == "text" and mask is None:
            array = np.array(data, dtype=np.str_)
        elif kind in ("text", "texts", "reals"):
            array = _objects(data, None)
        else:
            array = data
        array.flags.writeable = False
        return array

    def _parts(self, name: str) -> tuple[str, Any, Any, Any]:
        if name not in self._places:
            raise KeyError(f"there is no column {name!r}; the columns are {', '.join(self._places)}")
        return self._data.parts(self._places[name])

    def codes(self, name: str) -> tuple[npt.NDArray[np.int32], list[str]]:
        """A column of names, such as satellites, without a copy: the place of each row's name, and the names.

        Where the name is missing the place means nothing; `t[name]` has None there.
        """
        kind, data, _, words = self._parts(name)
        if kind != "name":
            raise KeyError(f"{name!r} is no column of names")
        return data, words

    def __iter__(self) -> Iterator[str]:
        return iter(self._places)

    def to_numpy(self) -> dict[str, npt.NDArray[Any]]:
        """Every column as an array, by name."""
        return {name: self[name] for name in self._places}

    def to_dicts(self) -> list[dict[str, Any]]:
        """Every row as a dictionary of Python's own types; a missing value is None."""
        columns = [_plain(self[name]) for name in self._places]
        names = self.column_names
        return [dict(zip(names, row)) for row in zip(*columns)] if columns else []

    def to_pandas(self) -> pandas.DataFrame:
        """A pandas DataFrame, made from the arrays of `to_numpy`; needs pandas but not pyarrow."""
        pd = imported("pandas", "to_pandas()")
        columns: dict[str, Any] = {}
        for name in self._places:
            kind, data, valid, words = self._parts(name)
            if kind == "name":
                codes = data if valid is None else np.where(_unpacked(valid, len(self)), data, -1)
                columns[name] = pd.Categorical.from_codes(codes, categories=words)
            else:
                columns[name] = self[name]
        frame: pandas.DataFrame = pd.DataFrame(columns)
        return frame

    def to_polars(self) -> polars.DataFrame:
        """A polars DataFrame over the same memory."""
        frame: polars.DataFrame = imported("polars", "to_polars()").DataFrame(self)
        return frame

    def to_arrow(self) -> pyarrow.Table:
        """A pyarrow Table over the same memory."""
        table: pyarrow.Table = imported("pyarrow", "to_arrow()").table(self)
        return table

    def __arrow_c_stream__(self, requested_schema: object | None = None) -> object:
        """The table as an Arrow stream of one batch; a requested schema is not followed, as the protocol allows."""
        return self._data.arrow_stream()

    def __arrow_c_schema__(self) -> object:
        """The types of the columns."""
        return self._data.arrow_schema()

    def __repr__(self) -> str:
        return f"<orsolva.Table of {len(self)} rows: {', '.join(self._places)}>"

    def _repr_html_(self) -> str:
        names = self.column_names[:_SHOWN_COLUMNS]
        rows = min(len(self), _SHOWN_ROWS)
        columns = [_plain(self[name][:rows]) for name in names]
        head = "".join(f"<th>{html.escape(name)}</th>" for name in names)
        body = "".join(
            "<tr>" + "".join(f"<td>{html.escape(_shown(value))}</td>" for value in row) + "</tr>" for row in zip(*columns)
        )
        left = len(self.column_names) - len(names)
        more = f", {left} columns not shown" if left else ""
        return f"<table><thead><tr>{head}</tr></thead><tbody>{body}</tbody></table><p>{len(self)} rows{more}</p>"


def _objects(values: list[Any], mask: npt.NDArray[np.bool_] | None) -> npt.NDArray[Any]:
    array = np.empty(len(values), dtype=object)
    for row, value in enumerate(values):
        array[row] = value if mask is None or mask[row] else None
    return array


def _named(codes: npt.NDArray[np.int32], words: list[str], mask: npt.NDArray[np.bool_] | None) -> npt.NDArray[Any]:
    if mask is None:
        return np.array(words, dtype=np.str_)[codes] if words else np.empty(0, dtype=np.str_)
    lookup = np.array([*words, None], dtype=object)
    return lookup[np.where(mask, codes, len(words))]


def _plain(array: npt.NDArray[Any]) -> list[Any]:
    """Values of Python's own types; times as ISO texts, what is missing as None."""
    if array.dtype.kind == "M":
        return [None if np.isnat(value) else str(value) for value in array]
    if array.dtype.kind == "f":
        return [None if value != value else value for value in array.tolist()]
    return list(array.tolist())


def _shown(value: object) -> str:
    if value is None:
        return "-"
    return f"{value:.6g}" if isinstance(value, float) else str(value)
