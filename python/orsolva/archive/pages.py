"""Pages that need no server: one of the network, one per station. Each holds its data and loads nothing."""
from __future__ import annotations

import base64
import datetime
import importlib.resources
import json
import math
import pathlib
import re
import string
from collections import Counter
from collections.abc import Callable, Sequence
from typing import Any

import numpy as np
import numpy.typing as npt

from .figures import BY_KEY, FIGURES, Figure
from .network import NetworkChange
from .places import PART
from .reading import Archive
from .settings import ArchiveError
from .trends import STATES, Daily, Key, StationChange, StationTrend, trends

_EPOCH = datetime.date(1970, 1, 1)
_EVENTS_SHOWN = 200
_FILES_SHOWN = 400
_NO_DATA = 255


def write_pages(
    archive: Archive,
    folder: pathlib.Path,
    since: datetime.date | None = None,
    until: datetime.date | None = None,
    heat_days: int = 400,
    report: str | None = None,
    done: Callable[[str], object] = lambda _: None,
) -> Counter[str]:
    """Writes index.html and stations/NAME.html.

    Args:
        heat_days: the heat map has the last so many days
        report: address of a day's report with {station}, {name}, {year}, {day} (of the year) and {date} in it
        done: called with the name of every station whose page is written

    Returns:
        stations by state
    """
    if report is not None:
        _check_address(report)
    rows: list[dict[str, Any]] = []
    heats: list[dict[str, npt.NDArray[np.float64]]] = []
    shared: set[NetworkChange] = set()
    last = archive.last_day(until)
    if last is None:
        raise ArchiveError(f"{archive.store.address}: there are no runs to show")
    first_of = archive.rows(f"SELECT min(date) FROM runs WHERE date >= '{since or '0001-01-01'}'")[0][0]
    if first_of is None or first_of > last:
        raise ArchiveError(f"{archive.store.address}: there are no runs from {since} to {until or last}. Choose another --since or --until.")
    (folder / "stations").mkdir(parents=True, exist_ok=True)
    first = max(first_of, last - datetime.timedelta(days=heat_days - 1))
    for trend in trends(archive, since, until):
        page = f"stations/{_file_name(trend.station)}.html"
        _write(folder / page, _station_page(archive, trend, report))
        rows.append(_row(trend, page))
        shared |= {change.network for change in trend.changes if change.network is not None}
        heats.append({figure.key: _daily_medians(trend, figure, first, last) for figure in FIGURES})
        done(trend.station)
    order = sorted(range(len(rows)), key=lambda place: (STATES.index(rows[place]["state"]), rows[place]["name"]))
    data = {
        "first": _number(first),
        "days": (last - first).days + 1,
        "states": STATES,
        "stations": [rows[place] for place in order],
        "changes": [_network_change(change) for change in sorted(shared, key=lambda one: (one.day, one.figure), reverse=True)],
        "figures": [_heat(figure, [heats[place][figure.key] for place in order]) for figure in FIGURES],
    }
    left_out = archive.in_the_future(until)
    subtitle = f"{len(rows)} stations, {first_of} to {last}" + (f"; {left_out}" if left_out else "")
    _write(folder / "index.html", _page("Network", subtitle, "", "network.js", data))
    return Counter(row["state"] for row in rows)


def _write(path: pathlib.Path, text: str) -> None:
    """Whoever reads the page sees the old one or the new one, also when the disk is full."""
    part = path.with_name(path.name + PART)
    try:
        part.write_text(text, encoding="utf-8")
        part.replace(path)
    except BaseException:
        part.unlink(missing_ok=True)
        raise


def _page(title: str, subtitle: str, back: str, script: str, data: dict[str, Any]) -> str:
    text = json.dumps(data, allow_nan=False, separators=(",", ":")).replace("<", "\\u003c")
    parts = {"title": _plain(title), "subtitle": _plain(subtitle), "back": back, "style": _part("page.css"), "data": text}
    return string.Template(_part("page.html")).substitute(parts, script=_part("common.js") + _part(script))


def _part(name: str) -> str:
    return (importlib.resources.files(__package__) / "page" / name).read_text(encoding="utf-8")


def _plain(text: str) -> str:
    return text.replace("&", "&amp;").replace("<", "&lt;").replace('"', "&quot;")


def _file_name(station: str) -> str:
    return re.sub(r"[^A-Za-z0-9_-]", "_", station)


def _number(day: datetime.date) -> int:
    """Days since 1970."""
    return (day - _EPOCH).days


def _row(trend: StationTrend, page: str) -> dict[str, Any]:
    latitude, longitude = (None, None) if trend.position is None else geographic(*trend.position)
    week = trend.runs[-1]["date"] - datetime.timedelta(days=6)
    return {
        "name": trend.station,
        "page": page,
        "state": trend.state,
        "reason": trend.reason,
        "last": str(trend.runs[-1]["date"]),
        "runs": len(trend.runs),
        "latitude": latitude,
        "longitude": longitude,
        "figures": [_median_since(trend, figure, week) for figure in FIGURES],
    }


def _median_since(trend: StationTrend, figure: Figure, day: datetime.date) -> float | None:
    medians = _daily_medians(trend, figure, day, trend.runs[-1]["date"])
    known = medians[~np.isnan(medians)]
    return round(float(np.median(known)), figure.digits) if len(known) else None


def _daily_medians(trend: StationTrend, figure: Figure, first: datetime.date, last: datetime.date) -> npt.NDArray[np.float64]:
    """The median over signals of every day; NaN without data."""
    series = [daily for key, daily in trend.series.items() if key.figure == figure.key]
    table = np.full((max(1, len(series)), (last - first).days + 1), np.nan)
    for row, daily in enumerate(series):
        places = np.array([(day - first).days for day in daily.days])
        inside = (places >= 0) & (places < table.shape[1])
        table[row, places[inside]] = daily.values[inside]
    some = ~np.all(np.isnan(table), axis=0)
    medians = np.full(table.shape[1], np.nan)
    medians[some] = np.nanmedian(table[:, some], axis=0)
    return medians


def _heat(figure: Figure, rows: Sequence[npt.NDArray[np.float64]]) -> dict[str, Any]:
    """A figure as bytes: 0 to 254 from its 1st to its 99th percentile, 255 without data."""
    table = np.array(rows)
    known = table[~np.isnan(table)]
    low, high = (float(value) for value in np.percentile(known, (1, 99))) if len(known) else (0.0, 1.0)
    high = max(high, low + figure.least)
    with np.errstate(invalid="ignore"):
        scaled = np.clip(np.round((table - low) / (high - low) * 254), 0, 254)
    cells = np.where(np.isnan(table), _NO_DATA, scaled).astype(np.uint8)
    return {**_facts(figure), "low": low, "high": high, "cells": base64.b64encode(cells.tobytes()).decode()}


def _facts(figure: Figure) -> dict[str, Any]:
    names = ("key", "title", "unit", "least", "share", "rises_when_bad", "digits")
    return {name: getattr(figure, name) for name in names}


def _station_page(archive: Archive, trend: StationTrend, report: str | None) -> str:
    runs = trend.runs[-_FILES_SHOWN:]
    data = {
        "station": trend.station,
        "state": trend.state,
        "reason": trend.reason,
        "first": _number(trend.runs[0]["date"]),
        "last": _number(trend.runs[-1]["date"]),
        "figures": [_facts(figure) for figure in FIGURES],
        "series": [_series(key, daily) for key, daily in trend.series.items()],
        "changes": [_change(change) for change in reversed(trend.changes)],
        "equipment": [[_number(day), what] for day, what in trend.equipment],
        "equipment_first": trend.equipment_first,
        "runs": [_run(run, trend.station, report) for run in runs],
        "events": _events(archive, trend),
    }
    subtitle = f"{trend.runs[0]['date']} to {trend.runs[-1]['date']}, {len(trend.runs)} days"
    return _page(trend.station, subtitle, '<a href="../index.html">Network</a>', "station.js", data)


def _series(key: Key, daily: Daily) -> dict[str, Any]:
    digits = BY_KEY[key.figure].digits
    values = [round(value, digits + 1) for value in daily.values.tolist()]
    return {"figure": key.figure, "signal": key.signal, "days": [_number(day) for day in daily.days], "values": values}


def _network_change(change: NetworkChange) -> dict[str, Any]:
    figure = BY_KEY[change.figure]
    return {"day": _number(change.day), "figure": figure.title, "unit": figure.unit, "size": f"{change.size:+.{figure.digits}f}", "stations": f"{change.stations} of {change.watched}"}


def _change(change: StationChange) -> dict[str, Any]:
    parts = [{"figure": part.key.figure, "text": part.text} for part in change.parts]
    last = _number(change.last_day) if change.kind == "drift" and not change.goes_on else None
    facts = {"day": _number(change.day), "last": last, "kind": change.kind, "explanation": change.explanation}
    return {**facts, "why": change.why, "network": change.network is not None, "text": str(change), "parts": parts}


def _address(report: str, station: str, name: str, date: datetime.date) -> str:
    return report.format(station=station, name=name, year=date.year, day=f"{date:%j}", date=str(date))


def _check_address(report: str) -> None:
    try:
        _address(report, "", "", _EPOCH)
    except (LookupError, ValueError, AttributeError, TypeError) as error:
        raise ArchiveError(
            f"--reports {report}: only {{station}}, {{name}}, {{year}}, {{day}} and {{date}} can be filled in. A brace of the address itself is written twice."
        ) from error


def _run(run: dict[str, Any], station: str, report: str | None) -> dict[str, Any]:
    date = run["date"]
    shown = {name: run[name] for name in ("name", "verdict", "state", "error")}
    slips = run["cycle_slips"]
    address = _address(report, station, run["name"], date) if report and run["state"] != "failed" else None
    return {**shown, "date": str(date), "slips": slips, "report": address}


def _events(archive: Archive, trend: StationTrend) -> list[dict[str, Any]]:
    if "events" not in archive.tables:
        return []
    station = trend.station.replace("'", "''")
    days = f"date BETWEEN '{trend.runs[0]['date']}' AND '{trend.runs[-1]['date']}'"
    query = f"SELECT time, satellite, kind, signals, size_cycles FROM events WHERE station = '{station}' AND {days}"
    found = archive.rows(f"{query} ORDER BY time DESC, satellite LIMIT {_EVENTS_SHOWN}")
    return [
        {
            "time": str(time)[:19],
            "satellite": satellite,
            "kind": kind,
            "signals": " ".join(signals or []),
            "sizes": " ".join(f"{size:g}" for size in sizes or [] if size is not None),
        }
        for time, satellite, kind, signals, sizes in found
    ]


def geographic(x: float, y: float, z: float) -> tuple[float, float]:
    """Latitude and longitude in degrees, to a metre (WGS 84; Bowring 1976)."""
    a, f = 6378137.0, 1 / 298.257223563
    b, e2 = a * (1 - f), f * (2 - f)
    p = math.hypot(x, y)
    t = math.atan2(z * a, p * b)
    latitude = math.atan2(z + e2 / (1 - e2) * b * math.sin(t) ** 3, p - e2 * a * math.cos(t) ** 3)
    return round(math.degrees(latitude), 5), round(math.degrees(math.atan2(y, x)), 5)
