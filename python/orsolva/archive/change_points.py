"""Where a daily series changes for good: levels that step, and slopes that begin.

Notation: y daily values, n their number, s the day-to-day scatter of y in its own unit.

Single bad days are pulled to the median of their neighbours first. Then the days are divided into segments, each a level
or a line, so that the sum of squared residuals over s^2 plus a penalty for every parameter is least: optimal partitioning
(Jackson et al. 2005, IEEE Signal Processing Letters 12(2)), solved exactly. The scatter comes from differences of
neighbouring days, which a step does not disturb.

Real series wander: weather, seasons and satellites come and go. A change counts only if its size is beyond what matters in
practice, which every figure says of itself, and beyond `_SCATTERS` times the scatter.
"""
from __future__ import annotations

from dataclasses import dataclass

import numpy as np
import numpy.typing as npt

Series = npt.NDArray[np.float64]

# The shortest segment, days. A shorter episode is bad days, not a change.
SHORTEST = 5
# Penalty per segment in units of ln(n), for a level (its begin and its value) and for a line (also its slope).
_LEVEL_PENALTY = 6.0
_LINE_PENALTY = 9.0
# A step is at least so many times the scatter of single days.
_SCATTERS = 3.0
# A line has at least this length to be called a drift, days.
_SHORTEST_DRIFT = 20


@dataclass(frozen=True)
class Change:
    """A change within a series.

    Attributes:
        place: index of the first day after it
        kind: "step" or "drift"
        before, after: level on both sides; of a drift at its two ends
        size: after minus before
        per_day: slope of a drift, else 0
        certainty: size in units of the scatter
        end: index after its last day; of a step its place
    """

    place: int
    kind: str
    before: float
    after: float
    per_day: float
    certainty: float
    end: int

    @property
    def size(self) -> float:
        """How much it is."""
        return self.after - self.before


@dataclass(frozen=True)
class _Segment:
    begin: int
    end: int
    first: float
    last: float
    slope: float


def changes(values: Series, least: float) -> list[Change]:
    """The changes of a series without gaps (days without a value are left out of it).

    Args:
        values: one per day, in order of time
        least: steps that are smaller do not matter, in the unit of the values
    """
    if len(values) < 2 * SHORTEST:
        return []
    smooth = without_outliers(values)
    scatter = max(scatter_of(smooth), least / 10.0, 1e-12)
    segments = _segments(smooth, scatter)
    return _joined(segments, smooth, max(least, _SCATTERS * scatter), scatter)


def scatter_of(values: Series) -> float:
    """Standard deviation of single days from the differences of neighbours (1.4826 times their MAD, over sqrt(2))."""
    steps = np.diff(values)
    if len(steps) == 0:
        return 0.0
    return float(1.4826 * np.median(np.abs(steps - np.median(steps))) / np.sqrt(2.0))


def without_outliers(values: Series) -> Series:
    """Days that are off on their own, or two in a row, take the median of the days around them."""
    reach = 3
    padded = np.concatenate([values[reach:0:-1], values, values[-2 : -2 - reach : -1]])
    around = np.median(np.lib.stride_tricks.sliding_window_view(padded, 2 * reach + 1), axis=1)
    limit = 4.0 * max(scatter_of(values), 1e-12)
    return np.where(np.abs(values - around) > limit, around, values)


def _segments(values: Series, scatter: float) -> list[_Segment]:
    """The best division into levels and lines."""
    n = len(values)
    sums = _Sums(values / scatter)
    level, line = _LEVEL_PENALTY * np.log(n), _LINE_PENALTY * np.log(n)
    best = np.full(n + 1, np.inf)
    best[0] = -level
    came_from = np.zeros(n + 1, dtype=np.int64)
    is_line = np.zeros(n + 1, dtype=bool)
    for end in range(SHORTEST, n + 1):
        begins = np.arange(0, end - SHORTEST + 1)
        of_level, of_line = sums.costs(begins, end)
        as_line = of_line + line < of_level + level
        totals = best[begins] + np.where(as_line, of_line + line, of_level + level)
        place = int(np.argmin(totals))
        best[end], came_from[end], is_line[end] = totals[place], begins[place], as_line[place]
    return _traced(values, came_from, is_line)


def _traced(values: Series, came_from: npt.NDArray[np.int64], is_line: npt.NDArray[np.bool_]) -> list[_Segment]:
    segments: list[_Segment] = []
    end = len(values)
    while end > 0:
        begin = int(came_from[end])
        part = values[begin:end]
        if is_line[end]:
            slope, start = np.polyfit(np.arange(len(part)), part, 1)
            segments.append(_Segment(begin, end, float(start), float(start + slope * (len(part) - 1)), float(slope)))
        else:
            mean = float(part.mean())
            segments.append(_Segment(begin, end, mean, mean, 0.0))
        end = begin
    return segments[::-1]


class _Sums:
    """Residual sums of squares of any segment from running sums."""

    def __init__(self, y: Series) -> None:
        x = np.arange(len(y), dtype=np.float64)
        self._y, self._yy, self._xy = (np.concatenate([[0.0], np.cumsum(part)]) for part in (y - y.mean(), (y - y.mean()) ** 2, x * (y - y.mean())))

    def costs(self, begins: npt.NDArray[np.int64], end: int) -> tuple[Series, Series]:
        """Of segments from each begin to the end: about their mean, and about their line."""
        m = (end - begins).astype(np.float64)
        y, yy, xy = (sums[end] - sums[begins] for sums in (self._y, self._yy, self._xy))
        about_mean = np.maximum(yy - y * y / m, 0.0)
        middle = begins + (m - 1.0) / 2.0
        covariance = xy - middle * y
        about_line = np.maximum(about_mean - covariance**2 * 12.0 / (m * (m * m - 1.0)), 0.0)
        return about_mean, about_line


def _joined(segments: list[_Segment], values: Series, least: float, scatter: float) -> list[Change]:
    """Changes between segments that are large enough; what is not counts as one level with what was before."""
    found: list[Change] = []
    level, level_begin = segments[0].first, 0
    for after in _drifts_joined(segments):
        if _is_drift(after, least):
            begin = after.begin
            if begin > 0 and abs(after.first - level) > least:
                found.append(_step(begin, level, after.first, scatter))
            elif begin > 0:
                begin = _begin_of_drift(values, level_begin, after)
            found.append(Change(begin, "drift", after.first, after.last, after.slope, abs(after.last - after.first) / scatter, after.end))
            level, level_begin = after.last, after.end
            continue
        now = float(np.mean(values[after.begin : after.end]))
        if after.begin == 0:
            level = now
        elif abs(now - level) > least:
            found.append(_step(after.begin, level, now, scatter))
            level, level_begin = now, after.begin
    return found


def _drifts_joined(segments: list[_Segment]) -> list[_Segment]:
    """Lines that follow each other with slopes of the same sign, one at most three times the other, are one."""
    joined: list[_Segment] = []
    for segment in segments:
        last = joined[-1] if joined else None
        if last is not None and last.slope * segment.slope > 0 and 1 / 3 < last.slope / segment.slope < 3:
            days = segment.end - last.begin - 1
            joined[-1] = _Segment(last.begin, segment.end, last.first, segment.last, (segment.last - last.first) / days)
        else:
            joined.append(segment)
    return joined


def _is_drift(segment: _Segment, least: float) -> bool:
    return segment.end - segment.begin >= _SHORTEST_DRIFT and abs(segment.last - segment.first) > least


def _begin_of_drift(values: Series, level_begin: int, drift: _Segment) -> int:
    """Where a level bends into a line that goes on from it: the day that leaves the least residuals."""
    days = np.arange(level_begin, drift.end)
    y = values[level_begin : drift.end]

    def residuals(bend: int) -> float:
        design = np.column_stack([np.ones(len(days)), np.maximum(0, days - bend)])
        solved = np.linalg.lstsq(design, y, rcond=None)[0]
        return float(np.sum((y - design @ solved) ** 2))

    # The line leaves the level at `bend`: the day after it is the first that is different.
    return min(range(level_begin + 1, drift.end - SHORTEST), key=residuals) + 1


def _step(place: int, before: float, after: float, scatter: float) -> Change:
    return Change(place, "step", before, after, 0.0, abs(after - before) / scatter, place)
