"""Reports and the calls that make them."""
from __future__ import annotations

import html
import json
import os
import pathlib
import warnings
from collections.abc import Callable, Iterator, Sequence
from dataclasses import dataclass
from typing import TYPE_CHECKING, Any, Literal, Union

from . import _core
from ._errors import ArgumentError, ArgumentTypeError, RunError
from ._navigation import Navigation, NavigationLike, navigation_of
from ._records import (
    AnalysisFigures,
    Comparison,
    Finding,
    Headline,
    LibraryHeadline,
    LibraryRun,
    LibraryTotal,
    ProfileVerdict,
    RunFacts,
    StreamFacts,
    Verdict,
)
from ._settings import Position, Time, Window, kept_arguments, path_of, run_arguments
from ._table import Table, imported

if TYPE_CHECKING:
    from IPython.display import IFrame

PathLike = Union[str, "os.PathLike[str]"]
Progress = Callable[[int], object]
FigureChoice = Literal["both", "analysis", "library"]
Join = Literal["none", "day", "all"]


class DataLostWarning(UserWarning):
    """Part of an input could not be read; `Report.notices` and `Report.read_error` say what."""


class Library:
    """The figures of the judging library, whose definitions do not change between versions."""

    __slots__ = ("_data",)

    def __init__(self, data: _core.ReportData) -> None:
        self._data = data

    @property
    def headline(self) -> LibraryHeadline:
        """The figures a file is known by."""
        return LibraryHeadline(self._data.library_headline())

    @property
    def run(self) -> LibraryRun:
        """How the library judged, or why it did not."""
        return LibraryRun(self._data.library_run())

    @property
    def total(self) -> LibraryTotal:
        """Over all systems."""
        return LibraryTotal(self._data.library_total())

    @property
    def systems(self) -> Table:
        """A row per system, for its optimal combination."""
        return Table(self._data.table("library_systems"))

    @property
    def signals(self) -> Table:
        """A row per system and signal."""
        return Table(self._data.table("library_signals"))

    @property
    def satellites(self) -> Table:
        """A row per satellite with figures."""
        return Table(self._data.table("library_satellites"))

    @property
    def bands(self) -> Table:
        """A row per band of the total ("all"), of each system and of each satellite."""
        return Table(self._data.table("library_bands"))


class Report:
    """The quality of one observation file. It never changes; None means that there are no data.

    `run`, `headline` and `analysis` hold single values, `library` the figures of the judging library, and the tables
    everything that is listed. `figures` has every figure of the report in one table.
    """

    __slots__ = ("_data",)

    def __init__(self, data: _core.ReportData) -> None:
        if not isinstance(data, _core.ReportData):
            raise ArgumentTypeError("reports come from qc(), qc_many() and Checker; there is no other way to make one")
        self._data = data

    @property
    def run(self) -> RunFacts:
        """What was read and with which settings it was judged."""
        return RunFacts(self._data.run())

    @property
    def headline(self) -> Headline:
        """The figures a file is known by."""
        return Headline(self._data.headline())

    @property
    def analysis(self) -> AnalysisFigures:
        """Figures of the whole file: epochs, position, receiver clock."""
        return AnalysisFigures(self._data.analysis())

    @property
    def library(self) -> Library:
        """The figures of the judging library."""
        return Library(self._data)

    @property
    def verdict(self) -> Verdict:
        """What the report says in one line."""
        return Verdict(self._data.verdict())

    @property
    def profile(self) -> ProfileVerdict | None:
        """How the report compares with the profile; None without one."""
        record = self._data.profile()
        return None if record is None else ProfileVerdict(record)

    @property
    def comparison(self) -> Comparison | None:
        """What differs from the earlier report named by `compare`; None without one."""
        record = self._data.comparison()
        return None if record is None else Comparison(record)

    @property
    def stream(self) -> StreamFacts | None:
        """What a recording of a stream was made of; None for other files."""
        record = self._data.stream()
        return None if record is None else StreamFacts(record)

    @property
    def findings(self) -> list[Finding]:
        """What to look at first, in order of harm."""
        return [Finding(record) for record in self._data.findings()]

    def _table(self, name: str) -> Table:
        return Table(self._data.table(name))

    @property
    def systems(self) -> Table:
        """A row per system, with the figures of the analysis."""
        return self._table("systems")

    @property
    def signals(self) -> Table:
        """A row per system and signal, over all its satellites."""
        return self._table("signals")

    @property
    def satellites(self) -> Table:
        """A row per satellite observed."""
        return self._table("satellites")

    @property
    def satellite_signals(self) -> Table:
        """A row per satellite and signal."""
        return self._table("satellite_signals")

    @property
    def wide_lanes(self) -> Table:
        """A row per system and pair of signals: how phases and codes of two bands agree."""
        return self._table("wide_lanes")

    @property
    def by_elevation(self) -> Table:
        """Signal strength and multipath in ranges of elevation, of systems (satellite is None) and satellites."""
        return self._table("by_elevation")

    @property
    def events(self) -> Table:
        """Cycle slips, interruptions and clock events in order of time; `size_cycles` in the order of `signals`.

        At most 20,000, unless the report was made with `events=True`; `analysis.further_events` counts the others.
        """
        return self._table("events")

    @property
    def arcs(self) -> Table | None:
        """Times of tracking without a break; None where the report was made with `page=False`."""
        data = self._data.table("arcs")
        return None if data is None else Table(data)

    @property
    def windows(self) -> Table:
        """A row per window of time; empty without `window`."""
        return self._table("windows")

    @property
    def window_systems(self) -> Table:
        """A row per window of time and system."""
        return self._table("window_systems")

    @property
    def window_signals(self) -> Table:
        """A row per window of time, system and signal."""
        return self._table("window_signals")

    @property
    def gaps(self) -> Table:
        """Times without any observation."""
        return self._table("gaps")

    @property
    def strength_drops(self) -> Table:
        """Times during which a signal was weaker than usual at its elevation."""
        return self._table("strength_drops")

    @property
    def never_observed(self) -> Table:
        """Satellites that were above the cut-off and of which the data hold nothing."""
        return self._table("never_observed")

    @property
    def contradictions(self) -> Table:
        """Statements of the header or file name that the data contradict."""
        return self._table("contradictions")

    @property
    def navigation_coverage(self) -> Table:
        """A row per satellite observed: what the broadcast records say about it."""
        return self._table("navigation_coverage")

    @property
    def outcomes(self) -> Table:
        """A row per criterion of the profile and figure; empty without a profile."""
        return self._table("outcomes")

    @property
    def changes(self) -> Table:
        """Figures that differ from the earlier report's by more than their limit; empty without `compare`."""
        return self._table("changes")

    @property
    def notes(self) -> Table:
        """Caveats about figures."""
        return self._table("notes")

    @property
    def notices(self) -> Table:
        """Oddities of the input that were passed over or repaired."""
        return self._table("notices")

    @property
    def figures(self) -> Table:
        """Every figure of the report as a row: scope, subject, signal, key, unit, value."""
        return self._table("figures")

    @property
    def detail(self) -> Table | None:
        """A row per epoch, satellite and signal, as `orsolva qc --detail`; None unless made with `detail=True`."""
        data = self._data.detail()
        return None if data is None else Table(data)

    @property
    def series(self) -> Table | None:
        """Figures over time in bins of five minutes, as `orsolva qc --series`; None unless made with `series=True`."""
        data = self._data.series()
        return None if data is None else Table(data)

    @property
    def read_error(self) -> str | None:
        """Why reading ended before the end of the file; None when it did not."""
        return self._data.read_error() or None

    @property
    def sum_lines(self) -> str:
        """The SUM line and the =KEY rows, as `orsolva qc --sum`."""
        return self._data.sum_lines()

    def to_dict(self, *, satellites: bool = False) -> dict[str, Any]:
        """The JSON report as a dictionary. `satellites` adds those of single satellites, as `--sats` does."""
        value: dict[str, Any] = json.loads(self.to_json(satellites=satellites))
        return value

    def to_json(self, path: PathLike | None = None, *, satellites: bool = False) -> str:
        """The report as JSON, byte for byte that of `orsolva qc --json`; also written to a file if one is named."""
        return _written(self._data.json(satellites), path)

    def to_text(self, path: PathLike | None = None, *, width: int = 80, satellites: bool = False) -> str:
        """The report as text, no line wider than `width` columns (at least 40)."""
        return _written(self._data.text(width, satellites), path)

    def to_csv(self, path: PathLike | None = None) -> str:
        """Every figure as a row of CSV, as `orsolva qc --csv`."""
        return _written(self._data.csv(), path)

    def to_html(self, path: PathLike | None = None) -> str:
        """The report with plots as one page that needs no network.

        Raises:
            RunError: when the report was made with `page=False`
        """
        return _written(self._data.html(), path)

    def to_parquet(self, folder: PathLike) -> list[pathlib.Path]:
        """Writes every table of the report that has rows into a folder, as NAME.parquet. Needs pyarrow.

        Each file appears when it is complete; one of that name is replaced.

        Returns:
            the files written
        """
        parquet = imported("pyarrow.parquet", "to_parquet()")
        target = pathlib.Path(path_of("folder", folder))
        target.mkdir(parents=True, exist_ok=True)
        files = []
        for name, table in self.tables().items():
            if len(table) == 0:
                continue
            files.append(target / f"{name}.parquet")
            unfinished = target / f".part-{name}.parquet"
            try:
                parquet.write_table(table.to_arrow(), unfinished)
                os.replace(unfinished, files[-1])
            finally:
                unfinished.unlink(missing_ok=True)
        return files

    def tables(self) -> dict[str, Table]:
        """Every table of the report by name, those of the library as `library_NAME`."""
        tables = {name: getattr(self, name) for name in _TABLES}
        tables |= {f"library_{name}": getattr(self.library, name) for name in _LIBRARY_TABLES}
        tables |= {name: getattr(self, name) for name in _KEPT_TABLES if getattr(self, name) is not None}
        return tables

    def show(self, width: int | str = "100%", height: int = 700) -> IFrame:
        """The page of the report inside a notebook cell; needs IPython."""
        display = imported("IPython.display", "show()")
        source = html.escape(self.to_html(), quote=True)
        frame: IFrame = display.HTML(
            f'<iframe srcdoc="{source}" width="{width}" height="{height}" frameborder="0"></iframe>'
        )
        return frame

    def __repr__(self) -> str:
        run = self.run
        return f"<orsolva.Report of {run.observation_file}: {run.epochs} epochs, {run.first_epoch_gpst} to {run.last_epoch_gpst}>"

    def _repr_html_(self) -> str:
        run = self.run
        facts = [
            ("File", pathlib.Path(run.observation_file).name),
            ("Marker", run.marker),
            ("Receiver", run.receiver),
            ("Antenna", run.antenna),
            ("First epoch", run.first_epoch_gpst),
            ("Last epoch", run.last_epoch_gpst),
            ("Interval", f"{run.interval_s:g} s"),
            ("Verdict", f"{self.verdict.grade}: {self.verdict.text}"),
        ]
        rows = "".join(
            f"<tr><th>{name}</th><td>{html.escape(str(value))}</td></tr>" for name, value in facts if value is not None
        )
        findings = "".join(f"<li>{html.escape(finding.title)}</li>" for finding in self.findings[:3])
        return f"<table>{rows}</table><ul>{findings}</ul>{self.systems._repr_html_()}"


_TABLES = (
    "systems",
    "signals",
    "satellites",
    "satellite_signals",
    "wide_lanes",
    "by_elevation",
    "windows",
    "window_systems",
    "window_signals",
    "events",
    "gaps",
    "strength_drops",
    "never_observed",
    "contradictions",
    "navigation_coverage",
    "outcomes",
    "changes",
    "notes",
    "notices",
    "figures",
)
_KEPT_TABLES = ("arcs", "series", "detail")
_LIBRARY_TABLES = ("systems", "signals", "satellites", "bands")


def _written(text: str, path: PathLike | None) -> str:
    if path is not None:
        pathlib.Path(path_of("path", path)).write_text(text, encoding="utf-8", newline="\n")
    return text


@dataclass(frozen=True)
class Failure:
    """A file of `qc_many` that could not be judged.

    Attributes:
        file: path of the file
        error: what happened and what to do
    """

    file: str
    error: str

    def __bool__(self) -> bool:
        return False


def qc(
    observations: PathLike | Sequence[PathLike],
    nav: NavigationLike = None,
    *,
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
    snr_from_strength: bool = False,
    strict: bool = False,
    max_size: int | None = None,
    page: bool = True,
    series: bool = False,
    events: bool = False,
    detail: bool = False,
    detail_satellites: Sequence[str] | None = None,
    detail_signals: str | Sequence[str] | None = None,
    html: PathLike | None = None,
    progress: Progress | None = None,
) -> Report:
    """Judges the quality of one observation file, or of consecutive files of a station as one span.

    Args:
        observations: RINEX 2, 3 or 4, plain or Hatanaka-compressed (CRINEX), or a recording of a stream (RTCM 3,
            Septentrio SBF, u-blox UBX), also inside gzip, .Z, zip, bzip2, xz or zstd; a list: files of one station and interval that are joined
        nav: a navigation file or folder, a list of them, or what `read_nav` returned; None takes those next to the
            observation file
        elevation_deg: elevation cut-off, degrees, 0 to 90
        interval_s: nominal interval, seconds; None takes the header's, else that of the data
        position: "spp" computes the position, "header" takes the header's, or Earth-centred (x, y, z) in metres
        systems: letters of the systems: G GPS, R GLONASS, E Galileo, J QZSS, C BDS, I NavIC, S SBAS
        exclude: satellites to leave out, such as ["G04", "R12"]
        start: first time, GPS time: "2026-01-31T06:00", or "06:00" on the day of the first epoch, or datetime64
        end: epochs from this time on are left out
        sampling_s: takes only epochs at multiples of so many seconds of GPS time
        signals: such as ["1C", "5Q"], of one system "G1C", of a whole band "5", or as the command takes them
            ("G:1C,2W,E:1C"); of systems that are not named all are taken
        window: gives figures per window of time as well: "15m", "1h", "1d" or seconds, see `Report.windows`
        figures: what texts and pages of the report show: "both", "analysis" or "library"
        profile: limits to grade the figures by: "network", "station", "reference", "rtk", "phone" or a file;
            "history:FOLDER" takes the earlier JSON reports of the station in a folder
        compare: an earlier report of the station, or its JSON file, see `Report.comparison`
        snr_from_strength: estimates a missing SNR from the signal strength digit of its phase
        strict: raises RunError where the library cannot judge, instead of reporting what there is
        max_size: bytes that a compressed file may expand to; None allows 8 GiB
        page: keeps what `Report.to_html` and `Report.arcs` need
        series: keeps figures over time, see `Report.series`
        events: keeps every event, not only the first 20,000
        detail: keeps a row per epoch, satellite and signal, see `Report.detail`
        detail_satellites: of these only, such as ["G05", "R"]
        detail_signals: of these only, written as `signals`
        html: also writes the page to this file
        progress: called with the number of epochs read, at most ten times a second; what it raises ends the run

    Raises:
        FileError: when a file cannot be read; a file that ends early gives a report with `read_error`
        RunError: when there is nothing to judge
        ArgumentError, ProfileError, EarlierReportError: when an argument is wrong; nothing has been judged

    Warns:
        DataLostWarning: once, when part of the input was lost
    """
    if html is not None and not page:
        raise ArgumentError("html: the page needs page=True")
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
        snr_from_strength=snr_from_strength,
        strict=strict,
        max_size=max_size,
    )
    kept = kept_arguments(page, series, events, detail, detail_satellites, detail_signals)
    files = _paths_of(observations)
    data = _core.qc(files, navigation_of(nav, max_size), arguments, kept, _callback(progress))
    report = Report(data)
    _warn_of_losses(data)
    if html is not None:
        report.to_html(html)
    return report


def _paths_of(observations: object) -> list[str]:
    named = observations if isinstance(observations, (list, tuple)) else [observations]
    if not named:
        raise ArgumentError("observations: found no file")
    return [path_of("observations", path) for path in named]


def earlier(compare: Report | PathLike | None) -> Any:
    """An earlier report as the native module takes it: a file, or its text and what to call it."""
    if isinstance(compare, Report):
        return compare.to_json(), compare.run.observation_file
    return compare


def _callback(progress: Progress | None) -> Progress | None:
    if progress is not None and not callable(progress):
        raise ArgumentTypeError(f"progress: found {type(progress).__name__}, expected a callable")
    return progress


def _warn_of_losses(data: _core.ReportData) -> None:
    error = data.read_error()
    lost = [error] if error else data.lost_data()
    if lost:
        more = f" ({len(lost) - 1} further kinds, see Report.notices)" if len(lost) > 1 else ""
        warnings.warn(lost[0] + more, DataLostWarning, stacklevel=3)


class Reports(Iterator[Union[Report, Failure]]):
    """The outcomes of `qc_many`, in the order of the files. Dropping it ends what has not been judged."""

    def __init__(self, many: _core.ManyFiles) -> None:
        self._many = many

    def __len__(self) -> int:
        """How many files there are in all."""
        return len(self._many)

    def __next__(self) -> Report | Failure:
        file, data, error = self._many.next()
        return Failure(file, error) if data is None else Report(data)


def qc_many(
    observations: PathLike | Sequence[PathLike],
    nav: NavigationLike = None,
    *,
    jobs: int | None = None,
    join: Join = "none",
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
    snr_from_strength: bool = False,
    strict: bool = False,
    max_size: int | None = None,
    page: bool = False,
    series: bool = False,
    events: bool = False,
    detail: bool = False,
    detail_satellites: Sequence[str] | None = None,
    detail_signals: str | Sequence[str] | None = None,
    progress: Progress | None = None,
) -> Reports:
    """Judges many observation files on several threads.

    Args:
        observations: files, folders or patterns, such as ["archive/2026/176"]; navigation files among them are used
            for all
        nav: further navigation files or folders; those that `read_nav` returned are read again
        jobs: files at the same time; None is one per core
        join: judges consecutive files of one station as one span: "day" those of a day, "all" all of them
        page: keeps what `Report.to_html` and `Report.arcs` need, some megabytes per report
        progress: called with the number of epochs read of all files, while the next outcome is awaited

    The other arguments are those of `qc`.

    Returns:
        an iterator over one Report or Failure per file, or per span, in their order

    Raises:
        RunError: when there is no observation file among the paths
        ArgumentError, ProfileError, EarlierReportError: when an argument is wrong; nothing has been judged
    """
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
        snr_from_strength=snr_from_strength,
        strict=strict,
        max_size=max_size,
    )
    if jobs is not None and (isinstance(jobs, bool) or not isinstance(jobs, int)):
        raise ArgumentTypeError(f"jobs: found {type(jobs).__name__}, expected a whole number or None")
    if jobs is not None and not 1 <= jobs <= 1024:
        raise ArgumentError(f"jobs: found {jobs}, expected 1 to 1024")
    if join not in ("none", "day", "all"):
        raise ArgumentError(f"join: found {join!r}, expected 'none', 'day' or 'all'")
    kept = kept_arguments(page, series, events, detail, detail_satellites, detail_signals)
    paths = _paths_of(observations)
    navigation = navigation_of(nav, max_size).paths()
    if isinstance(nav, Navigation) and not navigation:
        raise ArgumentError("nav: qc_many takes navigation files; those of simulate() are not in a file yet")
    return Reports(_core.ManyFiles(paths, navigation, join, arguments, kept, jobs or 0, _callback(progress)))


def explain(figure: str) -> str:
    """How a figure is computed: formula, limits and source.

    Args:
        figure: a key, a column heading or a name such as "mp1"

    Raises:
        ArgumentError: when it is no figure, with the names most like it
    """
    if not isinstance(figure, str):
        raise ArgumentTypeError(f"figure: found {type(figure).__name__}, expected a name")
    return _core.explain(figure)


def figure_keys() -> list[str]:
    """The keys of all figures."""
    return _core.figure_keys()


__all__ = ["DataLostWarning", "Failure", "Library", "Report", "Reports", "RunError", "explain", "figure_keys", "qc", "qc_many"]
