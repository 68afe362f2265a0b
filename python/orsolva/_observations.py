"""Observation files as tables."""
from __future__ import annotations

import os
import warnings
from collections.abc import Iterator, Sequence
from typing import TYPE_CHECKING, Any, Union

import numpy as np

from . import _core
from ._errors import ArgumentError, ArgumentTypeError
from ._records import Record, StreamFacts
from ._report import DataLostWarning, Progress, _callback
from ._settings import Time, _size, nanoseconds, path_of, real, text, texts
from ._table import Table, imported

if TYPE_CHECKING:
    import xarray

PathLike = Union[str, "os.PathLike[str]"]

_ALL_FIELDS = ("pseudorange", "phase", "doppler", "snr")
_ALL_SYSTEMS = "GREJCIS"
# First letter of a RINEX type, by column.
_TYPE_LETTERS = {"pseudorange_m": "C", "phase_cycles": "L", "doppler_hz": "D", "snr_dbhz": "S"}
_MOST_EPOCHS = 2**62


class Header(Record):
    """What the header of an observation file states; None where it states nothing."""


class Observations:
    """Observations with every signal of every system.

    Attributes:
        header: what the header states
        table: a row per epoch, satellite and signal with `time` (datetime64[ns], GPS time), `satellite` ("G05"),
            `signal` ("1C"), and of the fields asked for `pseudorange_m`, `phase_cycles`, `doppler_hz` (positive for an
            approaching satellite), `snr_dbhz`; with flags `loss_of_lock` (bits: 1 lock lost, 2 half-cycle ambiguity,
            4 BOC tracking) and `strength_digit` (1 to 9, 0 none). What is missing is NaN, in Arrow null.
        epochs: a row per epoch with `time`, `satellites`, `events` (bits: 1 power failure, 2 antenna moves, 4 new
            site, 8 external event, 16 slip records) and `receiver_clock_offset_s`
        notices: oddities that were passed over or repaired
        read_error: why reading ended before the end of the file; None when it did not
        stream: of a recording of a stream, what it was made of up to here; None for other files
    """

    __slots__ = ("_header_data", "epochs", "header", "notices", "read_error", "stream", "table")

    def __init__(
        self,
        table: Table,
        epochs: Table,
        header: Header,
        notices: Table | None = None,
        read_error: str | None = None,
        header_data: _core.HeaderData | None = None,
        stream: StreamFacts | None = None,
    ) -> None:
        self.table = table
        self.epochs = epochs
        self.header = header
        self.notices = notices
        self.read_error = read_error
        self._header_data = header_data
        self.stream = stream

    def __len__(self) -> int:
        return len(self.table)

    def to_xarray(self) -> xarray.Dataset:
        """A rectangle per field and signal over `time` and `sv`, named like RINEX types: "C1C", "L1C", "D1C", "S1C".

        NaN where there is no value. Needs xarray.
        """
        xr = imported("xarray", "to_xarray()")
        times, row = np.unique(self.table["time"], return_inverse=True)
        satellites, names = self.table.codes("satellite")
        signals, codes = self.table.codes("signal")
        order = np.argsort(np.array(names, dtype=np.str_), kind="stable")
        column = np.empty(len(names), dtype=np.intp)
        column[order] = np.arange(len(names))
        variables: dict[str, Any] = {}
        for field, letter in _TYPE_LETTERS.items():
            if field not in self.table:
                continue
            values = self.table[field]
            for place in np.argsort(np.array(codes, dtype=np.str_), kind="stable"):
                here = signals == place
                grid = np.full((len(times), len(names)), np.nan)
                grid[row[here], column[satellites[here]]] = values[here]
                variables[letter + codes[place]] = (("time", "sv"), grid)
        sv = np.array(names, dtype=np.str_)[order] if names else np.empty(0, dtype=np.str_)
        attributes = {"time_scale": "GPST", **{k: v for k, v in self.header.items() if isinstance(v, (str, float))}}
        dataset: xarray.Dataset = xr.Dataset(variables, coords={"time": times, "sv": sv}, attrs=attributes)
        return dataset

    def __repr__(self) -> str:
        return f"<orsolva.Observations: {len(self.epochs)} epochs, {len(self.table)} rows>"


def _time_ns(name: str, value: object, missing: int) -> int:
    if value is None:
        return missing
    if not isinstance(value, (str, np.datetime64)):
        raise ArgumentTypeError(f"{name}: found {type(value).__name__}, expected a text or datetime64, GPS time")
    try:
        return nanoseconds(name, np.datetime64(value))
    except ValueError as error:
        if isinstance(error, ArgumentError):
            raise
        raise ArgumentError(f"{name}: found {value!r}, expected a time such as '2020-06-25T06:00'") from None


def _selection(
    systems: object,
    signals: object,
    fields: object,
    start: object,
    end: object,
    every_s: object,
    flags: object,
) -> _core.Selection:
    selection = _core.Selection()
    letters = "" if systems is None else text("systems", systems)
    if set(letters) - set(_ALL_SYSTEMS) or (systems is not None and not letters):
        raise ArgumentError(f"systems: found {systems!r}, expected letters out of {_ALL_SYSTEMS}")
    selection.systems = letters
    selection.signals = [] if signals is None else texts("signals", signals)
    selection.fields = texts("fields", fields)
    if len(set(selection.fields)) != len(selection.fields):
        raise ArgumentError("fields: each may be given once")
    selection.start_ns = _time_ns("start", start, -(2**63))
    selection.end_ns = _time_ns("end", end, 2**63 - 1)
    if selection.start_ns >= selection.end_ns:
        raise ArgumentError("end: expected a time after start")
    every = 0.0 if every_s is None else real("every_s", every_s)
    if every_s is not None and not 1e-3 <= every <= 86400:
        raise ArgumentError(f"every_s: found {every}, expected 0.001 to 86400")
    selection.every_ns = round(every * 1e9)
    if not isinstance(flags, bool):
        raise ArgumentTypeError(f"flags: found {type(flags).__name__}, expected True or False")
    selection.flags = flags
    return selection


def _observations(file: _core.ObservationFile, rows: _core.TableData, epochs: _core.TableData) -> Observations:
    stream = file.stream()
    return Observations(
        Table(rows),
        Table(epochs),
        Header(file.header()),
        Table(file.notices()),
        file.failure() or None,
        file.header_data(),
        None if stream is None else StreamFacts(stream),
    )


def _warn(error: str | None) -> None:
    if error is not None:
        warnings.warn(error, DataLostWarning, stacklevel=3)


def read_obs(
    path: PathLike,
    *,
    systems: str | None = None,
    signals: Sequence[str] | None = None,
    fields: Sequence[str] = _ALL_FIELDS,
    start: Time | None = None,
    end: Time | None = None,
    every_s: float | None = None,
    flags: bool = False,
    max_size: int | None = None,
    progress: Progress | None = None,
) -> Observations:
    """Reads an observation file: every satellite, signal and flag.

    Args:
        path: RINEX 2, 3 or 4, plain or Hatanaka-compressed (CRINEX), or a recording of a stream (RTCM 3,
            Septentrio SBF, u-blox UBX), also inside gzip, .Z, zip, bzip2, xz or zstd
        systems: letters of the systems to keep, such as "GE"; None keeps all
        signals: such as ["1C", "5Q"], or of one system "G1C"; None keeps all
        fields: out of "pseudorange", "phase", "doppler", "snr"
        start: first time, GPS time, such as "2020-06-25T06:00"
        end: epochs from this time on are left out
        every_s: keeps epochs at whole multiples of so many seconds, within half a millisecond
        flags: adds the columns `loss_of_lock` and `strength_digit`
        max_size: bytes that a compressed file may expand to; None allows 8 GiB
        progress: called with the number of epochs read, at most ten times a second; what it raises ends the reading

    Raises:
        FileError: when nothing can be read; a file that ends early gives what there is, with `read_error`
        ArgumentError: when an argument is wrong; nothing has been read

    Warns:
        DataLostWarning: when the file ends early
    """
    selection = _selection(systems, signals, fields, start, end, every_s, flags)
    size = 0 if max_size is None else _size(max_size)
    file = _core.ObservationFile(path_of("path", path), selection, size)
    rows, epochs = file.read(_MOST_EPOCHS, _callback(progress))
    observations = _observations(file, rows, epochs)
    _warn(observations.read_error)
    return observations


def iter_obs(
    path: PathLike,
    epochs: int = 2880,
    *,
    systems: str | None = None,
    signals: Sequence[str] | None = None,
    fields: Sequence[str] = _ALL_FIELDS,
    start: Time | None = None,
    end: Time | None = None,
    every_s: float | None = None,
    flags: bool = False,
    max_size: int | None = None,
) -> Iterator[Observations]:
    """Reads an observation file in pieces of so many epochs: memory does not grow with the file.

    The arguments are those of `read_obs`, which are checked, and the file opened, at once.

    Args:
        epochs: epochs of a piece, at least 1; the last may have fewer

    Returns:
        an iterator over Observations
    """
    if isinstance(epochs, bool) or not isinstance(epochs, int):
        raise ArgumentTypeError(f"epochs: found {type(epochs).__name__}, expected a whole number")
    if not 1 <= epochs <= _MOST_EPOCHS:
        raise ArgumentError(f"epochs: found {epochs}, expected at least 1")
    selection = _selection(systems, signals, fields, start, end, every_s, flags)
    size = 0 if max_size is None else _size(max_size)
    return _pieces(_core.ObservationFile(path_of("path", path), selection, size), epochs)


def _pieces(file: _core.ObservationFile, most: int) -> Iterator[Observations]:
    while True:
        rows, epochs = file.read(most, None)
        if len(epochs) == 0:
            break
        yield _observations(file, rows, epochs)
    _warn(file.failure() or None)


__all__ = ["Header", "Observations", "iter_obs", "read_obs"]
