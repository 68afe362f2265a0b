"""One file from its bytes to rows: what a worker does. Workers write nothing."""
from __future__ import annotations

import atexit
import contextlib
import functools
import io
import os
import tempfile
import warnings
from collections.abc import Sequence
from typing import Any

import pyarrow as pa
import pyarrow.compute as pc

import orsolva

from .places import content_now, local_copy
from .plan import Job
from .settings import Settings
from .tables import ALL_TABLES, TABLES, fitted

Rows = dict[str, pa.Table]

# Events besides slips that say something about a station. Interruptions, outliers and waves of the ionosphere are
# counted in the other tables; a row each would outweigh everything else.
_EVENTS = ("unstable_signal", "satellite_clock", "clock_reset_ms", "code_clock_jump", "receiver_restart", "power_failure")


class Changed(Exception):
    """A file is not what it was when it was listed."""


class Unjudged(Exception):
    """A file that gives no report."""


def judge_chunk(jobs: Sequence[Job], settings: Settings) -> dict[str, bytes]:
    """The rows of some files, in the order given, as Arrow streams by table.

    A file that changes while it is judged, or that is gone, gives no rows: the next run sees it as it is then.
    """
    pa.set_cpu_count(1)
    judge = _Judge(settings)
    parts: dict[str, list[pa.Table]] = {table: [] for table in ALL_TABLES}
    for job in jobs:
        with contextlib.suppress(Changed):
            for table, rows in _rows_or_failure(judge, job, settings).items():
                parts[table].append(rows)
    return {table: to_bytes(rows) for table, rows in parts.items() if rows}


def _rows_or_failure(judge: _Judge, job: Job, settings: Settings) -> Rows:
    """A fault of this program or a lack of memory costs the file at which it shows, not the others of the run."""
    try:
        return judge.rows_of(job)
    except Changed:
        raise
    except Exception as error:
        return failure(job, settings, f"{job.path}: {type(error).__name__}: {error}")


def to_bytes(tables: Sequence[pa.Table]) -> bytes:
    """Tables of one schema as an Arrow stream."""
    sink = io.BytesIO()
    with pa.ipc.new_stream(sink, tables[0].schema) as stream:
        for table in tables:
            stream.write_table(table)
    return sink.getvalue()


def from_bytes(data: bytes) -> pa.Table:
    """The table of an Arrow stream."""
    return pa.ipc.open_stream(data).read_all()


class _Judge:
    """Judges files in turn; keeps the navigation of the last one."""

    def __init__(self, settings: Settings) -> None:
        self._settings = settings
        self._navigation: tuple[tuple[str, ...], orsolva.Navigation | None] = ((), None)
        self._profile = settings.judging.get("profile")
        if settings.profile_text is not None:
            self._profile = _written(settings.profile_text)

    def rows_of(self, job: Job) -> Rows:
        """The rows of one file. @throws Changed"""
        kind = job.content.partition(":")[0]
        try:
            self._check(job, kind)
            report, header = self._report(job)
            self._check(job, kind)
        except (Unjudged, orsolva.OrsolvaError, OSError) as error:
            with contextlib.suppress(OSError):
                self._check(job, kind)
            return failure(job, self._settings, str(error))
        tables = _tables(report)
        rows = {name: _fitted(name, tables[name], job) for name in TABLES if name not in self._settings.without}
        run = {**_facts(job, self._settings), **_header_facts(header), **_report_facts(report)}
        run |= {f"{name}_rows": table.num_rows for name, table in rows.items()}
        rows["runs"] = fitted("runs", {key: [value] for key, value in run.items()}, 1)
        return rows

    @staticmethod
    def _check(job: Job, kind: str) -> None:
        if content_now(job.path, kind) != job.content:
            raise Changed(job.path)

    def _report(self, job: Job) -> tuple[orsolva.Report, dict[str, Any]]:
        arguments = {**self._settings.judging, "profile": self._profile}
        with local_copy(job.path) as path, warnings.catch_warnings():
            warnings.simplefilter("ignore", orsolva.DataLostWarning)  # `state`, `error` and `notices` say so
            try:
                report = orsolva.qc(path, self._navigation_of(job.navigation), page=False, **arguments)
                header = dict(next(iter(orsolva.iter_obs(path, epochs=1))).header)
            except orsolva.OrsolvaError as error:
                # A copy has a name of its own every time.
                raise Unjudged(str(error).replace(path, job.path)) from error
        return report, header

    def _navigation_of(self, files: tuple[str, ...]) -> orsolva.Navigation | list[str]:
        if not files:
            return []
        if self._navigation[0] != files or self._navigation[1] is None:
            with contextlib.ExitStack() as copies:
                self._navigation = files, orsolva.read_nav([copies.enter_context(local_copy(file)) for file in files])
        assert self._navigation[1] is not None
        return self._navigation[1]


@functools.cache
def _written(profile: str) -> str:
    """A file with a profile's text, for the life of this process. It is new: the folder is everybody's."""
    handle, path = tempfile.mkstemp(prefix="orsolva-profile-", suffix=".toml")
    atexit.register(_remove, path)
    with open(handle, "w", encoding="utf-8") as file:
        file.write(profile)
    return path


def _remove(path: str) -> None:
    with contextlib.suppress(OSError):
        os.unlink(path)


def failure(job: Job, settings: Settings, error: str) -> Rows:
    """The row of a file without a report."""
    facts = {**_facts(job, settings), "state": "failed", "error": error}
    facts |= {f"{name}_rows": 0 for name in TABLES if name not in settings.without}
    return {"runs": fitted("runs", {name: [value] for name, value in facts.items()}, 1)}


def _facts(job: Job, settings: Settings) -> dict[str, Any]:
    return {
        "run_id": job.run_id,
        "station": job.station,
        "date": job.start.date(),
        "start": job.start,
        "name": job.name,
        "source": job.path,
        "source_size": job.size,
        "source_id": job.content,
        "navigation": list(job.navigation),
        "orsolva_version": orsolva.__version__,
        "settings_id": settings.id,
        "state": "judged",
    }


def _header_facts(header: dict[str, Any]) -> dict[str, Any]:
    names = {"rinex_version": "rinex_version", "marker": "marker", "receiver": "receiver"}
    names |= {"receiver_firmware": "receiver_firmware", "receiver_serial": "receiver_number"}
    names |= {"antenna_serial": "antenna_number", "antenna_height_m": "antenna_height_m"}
    facts = {ours: header.get(theirs) for ours, theirs in names.items()}
    # Columns 1 to 16 of the type are the antenna's, 17 to 20 the radome's (IGS rcvr_ant.tab).
    antenna = header.get("antenna") or ""
    return {**facts, "antenna": antenna[:16].strip() or None, "radome": antenna[16:].strip() or None}


def _report_facts(report: orsolva.Report) -> dict[str, Any]:
    library, profile = report.library, report.profile
    known = {**report.run, **report.analysis, **report.headline, **library.run}
    names = [column.name for column in ALL_TABLES["runs"]]
    facts = {name: known[name] for name in names if name in known}
    for name in ("rinex_version", "marker", "receiver", "antenna"):
        facts.pop(name, None)
    position = report.analysis.solution_ecef_m or library.run.get("position_ecef_m") or (None, None, None)
    facts |= {f"{axis}_m": value for axis, value in zip("xyz", position)}
    facts |= {name: library.headline.get(name) for name in ("completeness_ratio", "mp1_rms_m", "mp2_rms_m")}
    for name in ("first_epoch", "last_epoch"):
        facts[name] = _time(report.run.get(f"{name}_gpst"))
    facts["state"] = "incomplete" if report.read_error else "judged"
    facts["error"] = report.read_error
    facts["verdict"], facts["verdict_text"] = report.verdict.get("grade"), report.verdict.get("text")
    facts["profile_passed"] = None if profile is None else profile.passed
    facts["notices"] = len(report.notices)
    return facts


def _time(text: str | None) -> Any:
    return None if text is None else pc.cast(pa.scalar(text.replace(" ", "T")), pa.timestamp("ms"))


def _fitted(table: str, columns: dict[str, Any], job: Job) -> pa.Table:
    rows = len(next(iter(columns.values())))
    key = {"run_id": job.run_id, "station": job.station, "date": job.start.date()}
    return fitted(table, {**columns, **{name: [value] * rows for name, value in key.items()}}, rows)


def _tables(report: orsolva.Report) -> dict[str, dict[str, Any]]:
    """Columns of every table by name, those of the analysis and of the library next to each other."""
    library = report.library
    systems = _columns(library.systems)
    systems["combination"] = systems.pop("optimal_combination")
    satellites = _columns(library.satellites)
    bands = library.bands.to_arrow()
    bands = bands.filter(pc.greater(pc.utf8_length(bands["subject"].cast(pa.string())), 1))
    bands = bands.filter(pc.not_equal(bands["subject"].cast(pa.string()), "all")).rename_columns({"subject": "satellite"})
    events = report.events.to_arrow()
    listed = pc.is_in(events["kind"].cast(pa.string()), value_set=pa.array(_EVENTS))
    return {
        "systems": _joined(_columns(report.systems), systems, ["system"]),
        "signals": _joined(_columns(report.signals), _columns(library.signals), ["system", "signal"]),
        "satellites": _joined(_columns(report.satellites), satellites, ["satellite"]),
        "bands": dict(zip(bands.column_names, bands.columns)),
        "events": _plain(events.filter(pc.or_(events["is_slip"], listed))),
    }


def _columns(table: orsolva.Table) -> dict[str, Any]:
    return _plain(table.to_arrow())


def _plain(table: pa.Table) -> dict[str, Any]:
    """Columns with names as texts."""
    return {
        name: column.cast(pa.string()) if pa.types.is_dictionary(column.type) else column
        for name, column in zip(table.column_names, table.columns)
    }


def _joined(ours: dict[str, Any], theirs: dict[str, Any], keys: list[str]) -> dict[str, Any]:
    """Rows with the same keys become one; rows of the analysis first, then what only the library has."""
    our_keys = list(zip(*(ours[key].to_pylist() for key in keys)))
    their_keys = list(zip(*(theirs[key].to_pylist() for key in keys)))
    rows = list(dict.fromkeys([*our_keys, *their_keys]))
    joined = _taken(ours, our_keys, rows) | {name: column for name, column in _taken(theirs, their_keys, rows).items() if name not in ours}
    return joined | {key: [row[place] for row in rows] for place, key in enumerate(keys)}


def _taken(columns: dict[str, Any], keys: list[Any], rows: list[Any]) -> dict[str, Any]:
    places = {key: place for place, key in enumerate(keys)}
    index = pa.array([places.get(row) for row in rows], pa.int64())
    return {name: column.take(index) for name, column in columns.items()}
