"""Judging your own data as they come."""
from __future__ import annotations

import types
from collections.abc import Callable, Sequence
from typing import Any, Union

import numpy as np
import numpy.typing as npt

from . import _core
from ._errors import ArgumentError, ArgumentTypeError
from ._navigation import NavigationLike, navigation_of
from ._observations import Observations
from ._report import FigureChoice, PathLike, Progress, Report, _callback, earlier
from ._settings import Position, Time, Window, in_nanoseconds, kept_arguments, run_arguments, text
from ._table import Table

Names = Union[str, Sequence[str], npt.NDArray[Any]]
Numbers = Union[Sequence[float], npt.NDArray[Any]]


class Checker:
    """Judges data of your own: arrays, or Arrow tables, of one epoch or of many.

        with orsolva.Checker(nav, interval_s=1) as run:
            run.push(time, satellites, signals, pseudorange, phase, snr)
            report = run.report()

    Rows are in order of time; those of an epoch and satellite follow each other, each signal once. However they are
    split in calls, down to single rows, the report is the same to the bit. Memory does not grow with the data. The
    work is done on another thread; calls may come from several, one after the other.

    Args:
        nav: navigation as in `qc`; None leaves out what needs orbits
        name: what the report calls the data
        header: what is known of the receiver: Observations whose header is taken

    The other arguments are those of `qc`.
    """

    __slots__ = ("_data", "_on_detail", "_report")

    def __init__(
        self,
        nav: NavigationLike = None,
        *,
        name: str = "data",
        header: Observations | None = None,
        elevation_deg: float = 10.0,
        interval_s: float | None = None,
        position: Position = "spp",
        systems: str = "GREJCIS",
        exclude: Sequence[str] = (),
        start: Time | None = None,
        end: Time | None = None,
        sampling_s: float | None = None,
        signals: str | Sequence[str] | None = None,
        window: Window | None = None,
        figures: FigureChoice = "both",
        profile: PathLike | None = None,
        compare: Report | PathLike | None = None,
        strict: bool = False,
        page: bool = True,
        series: bool = False,
        events: bool = False,
        detail: bool = False,
        detail_satellites: Sequence[str] | None = None,
        detail_signals: str | Sequence[str] | None = None,
    ) -> None:
        arguments = run_arguments(
            elevation_deg=elevation_deg,
            interval_s=interval_s,
            position=position,
            systems=systems,
            exclude=exclude,
            start=start,
            end=end,
            sampling_s=sampling_s,
            signals=signals,
            window=window,
            figures=figures,
            profile=profile,
            compare=earlier(compare),
            strict=strict,
        )
        if header is not None and not isinstance(header, Observations):
            raise ArgumentTypeError(f"header: found {type(header).__name__}, expected Observations")
        navigation = _core.NavigationData.none() if nav is None else navigation_of(nav, None)
        header_data = None if header is None else header._header_data
        kept = kept_arguments(page, series, events, detail, detail_satellites, detail_signals)
        self._data = _core.CheckerData(text("name", name), navigation, arguments, header_data, kept)
        self._report: Report | None = None
        self._on_detail: Callable[[Table], object] | None = None

    @property
    def on_detail(self) -> Callable[[Table], object] | None:
        """Called with a table of the rows of `Report.detail` whenever a batch of epochs has been judged.

        The judging takes a batch of 2,880 epochs, then of 720; the last comes with `report()`. It is called by `push`,
        `push_table` and `report` on their thread, after they have taken their rows; what it raises comes out of them.

        Raises:
            RunError: when it is set after the first rows
            ArgumentTypeError: when it cannot be called
        """
        return self._on_detail

    @on_detail.setter
    def on_detail(self, callback: Callable[[Table], object]) -> None:
        if not callable(callback):
            raise ArgumentTypeError(f"on_detail: found {type(callback).__name__}, expected a callable")
        self._data.watch_detail()
        self._on_detail = callback

    def _pass_detail(self) -> None:
        if self._on_detail is None:
            return
        for data in self._data.take_detail():
            self._on_detail(Table(data))

    def __enter__(self) -> Checker:
        return self

    def __exit__(
        self,
        kind: type[BaseException] | None,
        error: BaseException | None,
        trace: types.TracebackType | None,
    ) -> None:
        self.close()

    def push(
        self,
        time: npt.NDArray[np.datetime64] | np.datetime64,
        satellites: Names,
        signals: Names,
        pseudorange: Numbers | None = None,
        phase: Numbers | None = None,
        snr: Numbers | None = None,
        *,
        doppler: Numbers | None = None,
        loss_of_lock: Sequence[int] | npt.NDArray[Any] | None = None,
    ) -> None:
        """Adds rows, each of one epoch, satellite and signal. NaN, None and 0 are missing values.

        Args:
            time: datetime64 on the GPS time scale (no leap seconds), one of all rows or one per row
            satellites: "G05", one per row
            signals: RINEX 3 names such as "1C", one per row
            pseudorange: metres
            phase: cycles
            snr: carrier-to-noise density, dB-Hz
            doppler: Hz, positive for an approaching satellite
            loss_of_lock: bits as in RINEX: 1 lock lost, 2 half-cycle ambiguity

        Raises:
            ArgumentError: for a wrong type, shape, unit or order; nothing of the call has been taken
            FileError, RunError: when the run has ended with an error
        """
        satellite_places, satellite_words = _names("satellites", satellites)
        rows = len(satellite_places)
        signal_places, signal_words = _names("signals", signals)
        self._data.push(
            _times(time, rows),
            satellite_places,
            satellite_words,
            signal_places,
            signal_words,
            _reals("pseudorange", pseudorange, rows),
            _reals("phase", phase, rows),
            _reals("doppler", doppler, rows),
            _reals("snr", snr, rows),
            _flags(loss_of_lock, rows),
        )
        self._pass_detail()

    def push_table(self, table: object) -> None:
        """Adds the rows of anything with `__arrow_c_stream__`, such as `Observations.table` or a polars DataFrame.

        Columns are those of `Observations.table`: `time` (timestamp), `satellite` and `signal` (texts), and as far as
        there are any `pseudorange_m`, `phase_cycles`, `doppler_hz`, `snr_dbhz` and `loss_of_lock`. Others are passed
        over.

        Raises:
            ArgumentError: as `push`; batches before the wrong one have been taken
        """
        if isinstance(table, Observations):
            table = table.table
        stream = getattr(table, "__arrow_c_stream__", None)
        if stream is None:
            raise ArgumentTypeError(f"table: found {type(table).__name__}, expected one with __arrow_c_stream__")
        self._data.push_stream(stream())
        self._pass_detail()

    def add_navigation(self, nav: NavigationLike) -> None:
        """Adds broadcast records that were not there at the beginning: files, or what `read_nav` gives.

        They count from the next epoch on; an epoch of which rows have been pushed is judged without them. Figures of the
        library take them from the beginning of the batch on, the first of 2,880 epochs, later ones of 720. Records that are
        known already are passed over, so that a file that grows may be given again and again. Records given before the
        first epoch are as good as those given to the constructor.

        Add records before the first epoch that they concern, and the figures are those of a run that had them from the
        beginning. What comes later leaves satellites without elevation until then. A satellite that has no record before
        the first epoch is not expected by the analysis when it is not observed; a run that has none at all stays without
        orbits, and without the library's figures unless some come within its first batch.

        Raises:
            ArgumentError: for a wrong type, for None, and for precise orbits, which belong into the constructor
            FileError: when a file cannot be read; nothing has been added
            RunError: when the run has ended
        """
        if nav is None:
            raise ArgumentError("nav: found None, expected files or what read_nav() gives")
        self._data.add_navigation(navigation_of(nav, None))

    def report(self, *, progress: Progress | None = None) -> Report:
        """Ends the data and waits for the report; further calls return the same one.

        Raises:
            RunError: when there is nothing to judge
        """
        if self._report is None:
            self._report = Report(self._data.result(_callback(progress)))
            self._pass_detail()
        return self._report

    def close(self) -> None:
        """Ends a run that has given no report."""
        self._data.stop()


def _one_dimensional(name: str, array: npt.NDArray[Any], rows: int) -> None:
    if array.ndim != 1:
        raise ArgumentError(f"{name}: found an array of {array.ndim} dimensions, expected 1")
    if len(array) != rows:
        raise ArgumentError(f"{name}: found {len(array)} values, expected one per row, {rows}")


def _times(time: object, rows: int) -> npt.NDArray[np.int64]:
    array = np.asarray(time)
    if array.dtype.kind != "M":
        raise ArgumentTypeError(f"time: found {array.dtype}, expected datetime64 on the GPS time scale")
    if array.ndim == 0:
        array = np.full(rows, array)
    _one_dimensional("time", array, rows)
    if np.isnat(array).any():
        raise ArgumentError("time: a row has none")
    return np.ascontiguousarray(in_nanoseconds("time", array)).view(np.int64)


def _names(name: str, names: object) -> tuple[npt.NDArray[np.int32], list[str]]:
    array = np.asarray([names] if isinstance(names, str) else names)
    if array.dtype.kind == "O" and all(isinstance(one, str) for one in array.flat):
        array = array.astype(np.str_)
    if array.dtype.kind == "S":
        array = array.astype(np.str_)
    if array.dtype.kind != "U" and array.size > 0:
        raise ArgumentTypeError(f"{name}: found {array.dtype}, expected texts")
    if array.ndim != 1:
        raise ArgumentError(f"{name}: found an array of {array.ndim} dimensions, expected 1")
    words, places = np.unique(array.astype(np.str_), return_inverse=True)
    return np.ascontiguousarray(places.reshape(-1), dtype=np.int32), words.tolist()


def _reals(name: str, values: object, rows: int) -> npt.NDArray[np.float64] | None:
    if values is None:
        return None
    if isinstance(values, np.ma.MaskedArray):
        values = values.filled(np.nan)
    array = np.asarray(values)
    if array.dtype.kind == "O":
        array = np.asarray([np.nan if value is None else value for value in array.flat])
    if array.dtype.kind not in "fiu" and array.size > 0:
        raise ArgumentTypeError(f"{name}: found {array.dtype}, expected numbers")
    _one_dimensional(name, array, rows)
    return np.ascontiguousarray(array, dtype=np.float64)


def _flags(values: object, rows: int) -> npt.NDArray[np.uint8] | None:
    if values is None:
        return None
    array = np.asarray(values)
    if array.dtype.kind not in "iub" and array.size > 0:
        raise ArgumentTypeError(f"loss_of_lock: found {array.dtype}, expected whole numbers")
    _one_dimensional("loss_of_lock", array, rows)
    if array.size > 0 and (array.min() < 0 or array.max() > 255):
        raise ArgumentError("loss_of_lock: expected flags from 0 to 255")
    return np.ascontiguousarray(array, dtype=np.uint8)


__all__ = ["Checker"]
