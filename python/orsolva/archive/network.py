"""Steps of the whole network, as opposed to those of single stations: many stations step in one figure, in one direction, at the same time.

What does that is not at the stations: GPS changes the power of its signals, navigation files are of another kind, a new
version judges differently, equipment is renewed everywhere without a word in the headers. Stations fail one by one: with
one step per station and year, that four of eight step within five days by chance happens once in thousands of years.
"""
from __future__ import annotations

import datetime
import heapq
from collections import defaultdict
from collections.abc import Iterator, Sequence
from dataclasses import dataclass, field
from typing import NamedTuple

import numpy as np

from .change_points import SHORTEST
from .figures import BY_KEY

# So many stations, and this share of those that have data before and after, make a step one of the network.
LEAST_STATIONS = 4
LEAST_SHARE = 1 / 3
# Steps at most so many days from each other are at the same time.
NEAR_DAYS = 2
# A station's step that is so many times the network's is its own, measured by what matters of the figure.
LARGEST_RATIO = 3.0


@dataclass(frozen=True)
class NetworkChange:
    """A step of the whole network.

    Attributes:
        day: that on which most of the stations step
        figure: its key
        size: median over the stations, in the unit of the figure
        stations: how many step
        watched: how many have data of the figure before and after
    """

    day: datetime.date
    figure: str
    size: float
    stations: int
    watched: int

    def __str__(self) -> str:
        figure = BY_KEY[self.figure]
        size = f"{self.size:+.{figure.digits}f} {figure.unit}".strip()
        return f"{self.day} {figure.title}: {self.stations} of {self.watched} stations step together, median {size}"


class Step(NamedTuple):
    """The largest step of a station in a figure on a day."""

    day: datetime.date
    station: str
    size: float
    weight: float  # in units of what matters


@dataclass
class Steps:
    """The steps of all stations, as they are found."""

    _steps: dict[tuple[str, bool], list[Step]] = field(default_factory=lambda: defaultdict(list))
    _spans: dict[str, dict[str, tuple[datetime.date, datetime.date]]] = field(default_factory=lambda: defaultdict(dict))

    def watch(self, station: str, figure: str, first: datetime.date, last: datetime.date) -> None:
        """A station has data of a figure from a day to another, in one of its series."""
        known = self._spans[figure].get(station, (first, last))
        self._spans[figure][station] = min(known[0], first), max(known[1], last)

    def add(self, station: str, day: datetime.date, figure: str, before: float, size: float) -> None:
        """A step of a station that its equipment does not explain."""
        self._steps[figure, size > 0].append(Step(day, station, size, abs(size) / BY_KEY[figure].matters(before)))

    def network_changes(self) -> list[NetworkChange]:
        """Those of the whole network, by day."""
        found = [change for (figure, _), steps in self._steps.items() for change in self._of_figure(figure, steps)]
        return sorted(found, key=lambda one: (one.day, one.figure, one.size))

    def _of_figure(self, figure: str, steps: Sequence[Step]) -> Iterator[NetworkChange]:
        for near in _most_together(steps):
            each = _largest(near)
            day = _day_of_most(near)
            watched = self._watched(figure, day)
            if len(each) >= LEAST_SHARE * watched:
                size = float(np.median([step.size for step in each.values()]))
                yield NetworkChange(day, figure, size, len(each), max(watched, len(each)))

    def _watched(self, figure: str, day: datetime.date) -> int:
        around = datetime.timedelta(days=SHORTEST)
        return sum(first <= day - around and last >= day + around for first, last in self._spans[figure].values())


def _most_together(steps: Sequence[Step]) -> Iterator[list[Step]]:
    """Steps at the same time, of LEAST_STATIONS or more: those of most stations first, then of most among the rest.

    Taking steps away changes the number of stations of the days around alone; a day's earlier entries on the heap then do not hold.
    """
    by_day: dict[int, list[Step]] = defaultdict(list)
    for step in sorted(steps):
        by_day[step.day.toordinal()].append(step)
    stations = {day: _stations_near(by_day, day) for day in by_day}
    heap = [(-count, day) for day, count in stations.items()]
    heapq.heapify(heap)
    while heap and -heap[0][0] >= LEAST_STATIONS:
        count, day = heapq.heappop(heap)
        if stations.get(day) != -count:
            continue
        yield _near(by_day, day)
        for taken in _around(day, NEAR_DAYS):
            by_day.pop(taken, None)
            stations.pop(taken, None)
        for changed in _around(day, 2 * NEAR_DAYS):
            if changed in by_day:
                stations[changed] = _stations_near(by_day, changed)
                heapq.heappush(heap, (-stations[changed], changed))


def _around(day: int, days: int) -> range:
    return range(day - days, day + days + 1)


def _near(by_day: dict[int, list[Step]], day: int) -> list[Step]:
    return [step for near in _around(day, NEAR_DAYS) for step in by_day.get(near, [])]


def _stations_near(by_day: dict[int, list[Step]], day: int) -> int:
    return len({step.station for step in _near(by_day, day)})


def _largest(steps: Sequence[Step]) -> dict[str, Step]:
    """By station."""
    return {step.station: step for step in sorted(steps, key=lambda one: one.weight)}


def _day_of_most(steps: Sequence[Step]) -> datetime.date:
    days = [step.day for step in steps]
    return max(sorted(set(days)), key=days.count)


def network_change_of(changes: Sequence[NetworkChange], day: datetime.date, figure: str, before: float, size: float) -> NetworkChange | None:
    """The step of the network that a station's step belongs to."""
    for change in changes:
        same = change.figure == figure and change.size * size > 0 and abs((change.day - day).days) <= NEAR_DAYS
        if same and abs(size) <= LARGEST_RATIO * max(abs(change.size), BY_KEY[figure].matters(before)):
            return change
    return None
