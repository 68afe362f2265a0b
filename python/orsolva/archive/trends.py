"""Daily series of every station, what changed in them, and what explains it."""
from __future__ import annotations

import datetime
from collections.abc import Iterable, Iterator, Sequence
from dataclasses import dataclass, field
from typing import TYPE_CHECKING, Any

import numpy as np

from .change_points import SHORTEST, Change, Series, changes, scatter_of
from .figures import BY_KEY, FIGURES, Figure
from .network import NetworkChange, Steps, network_change_of
from .reading import Archive
from .reading import open as open_store

if TYPE_CHECKING:
    import polars

# A station is compared with its own days: so many before today make its baseline.
BASELINE_DAYS = 45
# A figure is off when so many of the last days are so many MAD from the baseline: one bad day is no trend.
_RECENT_DAYS, _OFF_DAYS, _OFF_MADS = 4, 3, 4.0
# A change is explained by new equipment at most so many days from it.
_NEAR_DAYS = 2
# Changes of several series at most so many days apart are one. A drift shows in each when it is out of its scatter.
_SAME_DAYS = {"step": 2, "drift": 10}
# Changes of the last days make a state.
_RECENT_CHANGE_DAYS = 30
_SILENT_DAYS = 3

EQUIPMENT = {
    "receiver": "receiver",
    "receiver_serial": "receiver number",
    "receiver_firmware": "firmware",
    "antenna": "antenna",
    "radome": "radome",
    "antenna_serial": "antenna number",
    "antenna_height_m": "antenna height",
}
# Worst first.
STATES = ("failing", "silent", "off", "changed", "drifting", "network", "explained", "good")


@dataclass(frozen=True)
class Key:
    """Which series: a figure, and of the figures of signals the signal with its system in front, such as G1C."""

    figure: str
    signal: str = ""


@dataclass
class Daily:
    """A series: its days and a value for each."""

    days: list[datetime.date]
    values: Series


@dataclass(frozen=True)
class Part:
    """A change of one series.

    Attributes:
        last_day: of a drift its last; of a step the first one after it
        goes_on: whether it is a drift that reaches the end of the series
    """

    key: Key
    change: Change
    last_day: datetime.date
    goes_on: bool

    @property
    def text(self) -> str:
        """Such as "SNR G1C: 45.02 to 42.01 dB-Hz"."""
        figure, change = BY_KEY[self.key.figure], self.change
        values = f"{change.before:.{figure.digits}f} to {change.after:.{figure.digits}f} {figure.unit}".strip()
        return f"{figure.title} {self.key.signal}".rstrip() + f": {values}"


@dataclass
class StationChange:
    """What changed at a station on a day, in any of its series.

    Attributes:
        day: the first one after the change
        parts: the series that changed, most certain first
        explanation: the equipment that is new; None when the headers say nothing
        network: the step of the whole network that it belongs to; None when it is the station's own
    """

    day: datetime.date
    parts: list[Part]
    explanation: str | None = None
    network: NetworkChange | None = None

    @property
    def kind(self) -> str:
        """Step or drift."""
        return self.parts[0].change.kind

    @property
    def last_day(self) -> datetime.date:
        """Of a drift the last day in any of its series, of a step its day."""
        return max(part.last_day for part in self.parts) if self.kind == "drift" else self.day

    @property
    def goes_on(self) -> bool:
        """Whether it is a drift that has not ended in one of its series."""
        return any(part.goes_on for part in self.parts)

    def __str__(self) -> str:
        others = f" and {len(self.parts) - 1} more series" if len(self.parts) > 1 else ""
        until = f" to {self.last_day}" if self.kind == "drift" and not self.goes_on else ""
        return f"{self.day}{until} {self.kind} of {self.parts[0].text}{others}; {self.why}"

    @property
    def why(self) -> str:
        """Explained, of the network, or unexplained."""
        if self.explanation:
            return f"explained by {self.explanation}"
        if self.network:
            return f"network-wide, at {self.network.stations} of {self.network.watched} stations"
        return "unexplained"


@dataclass
class StationTrend:
    """A station: its series, changes and state.

    Attributes:
        equipment: (day, what is new) from the headers
        equipment_first: what the first header names
        state: one of STATES
        reason: of the state, for people
        runs: a dictionary per day: name, source, verdict, state, error
    """

    station: str
    position: tuple[float, float, float] | None
    series: dict[Key, Daily]
    runs: list[dict[str, Any]]
    equipment: list[tuple[datetime.date, str]]
    equipment_first: str = ""
    changes: list[StationChange] = field(default_factory=list)
    state: str = "good"
    reason: str = ""


def trends(store: Archive | str, since: datetime.date | None = None, until: datetime.date | None = None) -> Iterator[StationTrend]:
    """Every station of a store, one after the other.

    The store is read twice: whether a change is one of the whole network depends on all stations. States are those of its
    last day; files that are named after days in the future are left out.

    Args:
        store: an open archive, or its address
        since, until: days, both included; by default all
    """
    archive = store if isinstance(store, Archive) else open_store(store)
    today = archive.last_day(until)
    if today is None:
        return
    days = f"date BETWEEN '{since or '0001-01-01'}' AND '{today}'"
    known: dict[str, list[StationChange]] = {}
    steps = Steps()
    for trend in _stations(archive, days):
        trend.changes = station_changes(trend.series, trend.equipment)
        known[trend.station] = trend.changes
        _gather(steps, trend)
    network = steps.network_changes()
    for trend in _stations(archive, days):
        if trend.station not in known:
            continue  # written since the first reading
        trend.changes = known.pop(trend.station)
        mark(trend.changes, network)
        trend.state, trend.reason = _state(trend, today)
        yield trend


def _stations(archive: Archive, days: str) -> Iterator[StationTrend]:
    """Every station with its series, without changes and state."""
    for bucket in range(archive.store.settings.buckets):
        runs = archive.frame(_DAILY_RUNS.format(where=f"bucket = {bucket} AND {days}"))
        rows = archive.frame(_SIGNALS.format(where=f"bucket = {bucket} AND {days}"))
        by_station = {station: part for (station,), part in rows.group_by(["station"], maintain_order=True)}
        for (station,), of_station in runs.group_by(["station"], maintain_order=True):
            yield trend_of(str(station), of_station, by_station.get(station, rows.clear()))


def _columns(table: str) -> str:
    return ", ".join(f"{figure.sql} AS {figure.key}" for figure in FIGURES if figure.table == table)


# The longest file of a day stands for it, so that hourly files next to daily ones count once.
_DAILY_RUNS = (
    f"SELECT *, {_columns('runs')} FROM runs WHERE {{where}} "
    "QUALIFY row_number() OVER (PARTITION BY station, date ORDER BY epochs DESC NULLS LAST, name) = 1 ORDER BY station, date"
)
_SIGNALS = f"SELECT station, date, run_id, system || signal AS code, {_columns('signals')} FROM signals WHERE {{where}} ORDER BY station, code, date"


def trend_of(station: str, runs: polars.DataFrame, signals: polars.DataFrame) -> StationTrend:
    """The series of one station from its rows."""
    series = _series(runs, signals)
    facts = runs.select("date", "name", "source", "verdict", "state", "error", "cycle_slips").to_dicts()
    trend = StationTrend(station, _position(runs), series, facts, equipment_changes(runs.to_dicts()))
    trend.equipment_first = ", ".join(f"{title} {runs[name][0]}" for name, title in EQUIPMENT.items() if runs[name][0] is not None)
    return trend


def _series(runs: polars.DataFrame, signals: polars.DataFrame) -> dict[Key, Daily]:
    series: dict[Key, Daily] = {}
    chosen = signals.join(runs.select("run_id"), on="run_id", how="semi", maintain_order="left")
    for (code,), rows in chosen.group_by(["code"], maintain_order=True):
        for figure in FIGURES:
            if figure.table == "signals":
                _add(series, Key(figure.key, str(code)), rows)
    for figure in FIGURES:
        if figure.table == "runs":
            _add(series, Key(figure.key), runs)
    return series


def _add(series: dict[Key, Daily], key: Key, rows: polars.DataFrame) -> None:
    known = rows.select("date", key.figure).drop_nulls()
    known = known.filter(known[key.figure].cast(float).is_finite())
    if known.height > 0:
        series[key] = Daily(known["date"].to_list(), known[key.figure].cast(float).to_numpy())


def _position(runs: polars.DataFrame) -> tuple[float, float, float] | None:
    known = runs.select("x_m", "y_m", "z_m").drop_nulls()
    return tuple(known.median().row(0)) if known.height else None


def equipment_changes(runs: Sequence[dict[str, Any]]) -> list[tuple[datetime.date, str]]:
    """Days on which headers name other equipment than on the day before."""
    found: list[tuple[datetime.date, str]] = []
    judged = [run for run in runs if run["state"] != "failed"]
    for before, after in zip(judged, judged[1:]):
        new = [f"{title} {_said(before[name])} to {_said(after[name])}" for name, title in EQUIPMENT.items() if before[name] != after[name]]
        if new:
            found.append((after["date"], ", ".join(new)))
    return found


def _said(value: Any) -> str:
    return "none" if value is None else str(value)


def station_changes(series: dict[Key, Daily], equipment: Sequence[tuple[datetime.date, str]]) -> list[StationChange]:
    """Changes of all series; those that are close to each other are one."""
    parts: list[tuple[datetime.date, Part]] = []
    for key, daily in series.items():
        level = float(np.median(daily.values))
        for change in changes(daily.values, BY_KEY[key.figure].matters(level)):
            parts.append((daily.days[change.place], part_of(key, daily, change)))
    found: list[StationChange] = []
    # The most certain ones first: the others gather about their days.
    for day, part in sorted(parts, key=lambda one: (-one[1].change.certainty, one[0], one[1].key.figure, one[1].key.signal)):
        same = next((one for one in found if abs((one.day - day).days) <= _SAME_DAYS[part.change.kind] and one.kind == part.change.kind), None)
        if same is None:
            found.append(StationChange(day, [part], _explanation(day, equipment)))
        elif part.key not in (other.key for other in same.parts):
            same.parts.append(part)
    return sorted(found, key=lambda one: one.day)


def part_of(key: Key, daily: Daily, change: Change) -> Part:
    """A change with its days. A level that begins in the last days is too short to be distinguished from the drift before it."""
    drift = change.kind == "drift"
    last_day = daily.days[change.end - 1 if drift else change.place]
    return Part(key, change, last_day, drift and change.end >= len(daily.days) - SHORTEST)


def _explanation(day: datetime.date, equipment: Sequence[tuple[datetime.date, str]]) -> str | None:
    near = [(abs(when - day), what) for when, what in equipment if abs((when - day).days) <= _NEAR_DAYS]
    return min(near)[1] if near else None


def _gather(steps: Steps, trend: StationTrend) -> None:
    """Adds the steps of a station to those of the network."""
    for key, daily in trend.series.items():
        steps.watch(trend.station, key.figure, daily.days[0], daily.days[-1])
    for change in trend.changes:
        for part in change.parts if change.kind == "step" and change.explanation is None else []:
            steps.add(trend.station, change.day, part.key.figure, part.change.before, part.change.size)


def mark(changes: Sequence[StationChange], network: Sequence[NetworkChange]) -> None:
    """A step is the network's when at least half of its series step with the network, and no new equipment explains it."""
    for change in changes:
        if change.kind != "step" or change.explanation is not None:
            continue
        of_parts = [network_change_of(network, change.day, part.key.figure, part.change.before, part.change.size) for part in change.parts]
        shared = [one for one in of_parts if one is not None]
        if 2 * len(shared) >= len(of_parts):
            change.network = shared[0]


def network_changes(stations: Iterable[StationTrend]) -> list[NetworkChange]:
    """Steps of the whole network that changes of these stations belong to, by day."""
    found = {change.network for trend in stations for change in trend.changes if change.network is not None}
    return sorted(found, key=lambda one: (one.day, one.figure, one.size))


def _state(trend: StationTrend, today: datetime.date) -> tuple[str, str]:
    last = trend.runs[-1]
    silent = (today - last["date"]).days
    if silent >= _SILENT_DAYS:
        return "silent", f"no file for {silent} days"
    if last["state"] == "failed":
        return "failing", last["error"] or "the last file cannot be judged"
    recent = [one for one in trend.changes if (today - one.last_day).days <= _RECENT_CHANGE_DAYS]
    over = [one for one in recent if not one.goes_on]
    if off := _off(trend):
        return "off", off
    if unexplained := [one for one in over if one.explanation is None and one.network is None]:
        return "changed", str(unexplained[-1])
    if drifts := [one for one in recent if one.goes_on]:
        return "drifting", str(drifts[-1])
    if shared := [one for one in over if one.network is not None]:
        return "network", str(shared[-1])
    if over:
        return "explained", str(over[-1])
    return "good", ""


def _off(trend: StationTrend) -> str:
    """The figure that is off its baseline on most of the last days; empty when there is none."""
    splits = [change.day for change in trend.changes] + [day for day, _ in trend.equipment]
    for key, daily in trend.series.items():
        off = off_baseline(daily, BY_KEY[key.figure], splits)
        if off is not None:
            figure = BY_KEY[key.figure]
            return f"{figure.title} {key.signal}".rstrip() + f": {daily.values[-1]:.{figure.digits}f}, baseline {off:.{figure.digits}f}"
    return ""


def off_baseline(daily: Daily, figure: Figure, splits: Sequence[datetime.date]) -> float | None:
    """The baseline (median of 45 days since the last change) when the last days are off it, else None."""
    if len(daily.values) < _RECENT_DAYS + 10:
        return None
    recent_day = daily.days[-_RECENT_DAYS]
    begin = max([day for day in splits if day < recent_day], default=datetime.date.min)
    old = [value for day, value in zip(daily.days[:-_RECENT_DAYS], daily.values) if day >= begin][-BASELINE_DAYS:]
    if len(old) < 10:
        return None
    baseline = float(np.median(old))
    mad = float(np.median(np.abs(np.array(old) - baseline)))
    limit = max(_OFF_MADS * 1.4826 * max(mad, scatter_of(np.array(old))), figure.matters(baseline))
    return baseline if int(np.sum(np.abs(daily.values[-_RECENT_DAYS:] - baseline) > limit)) >= _OFF_DAYS else None
