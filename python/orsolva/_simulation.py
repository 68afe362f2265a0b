"""Simulated observations with known truth."""
from __future__ import annotations

import json
import os
import pathlib
from collections.abc import Mapping, Sequence
from typing import Any, Union

from . import _core
from ._errors import ArgumentTypeError
from ._navigation import Navigation
from ._observations import Header, Observations
from ._report import PathLike, Progress, Report, _callback
from ._settings import _position, path_of, real, text, texts
from ._table import Table


class Day:
    """A simulated span: observations, navigation, and the truth about both.

    Attributes:
        observations: as `read_obs` reads them from the file
        navigation: for `qc` and `Checker`
        truth: what a quality check should find, as in truth.json
    """

    __slots__ = ("_data", "navigation", "observations", "truth")

    def __init__(self, data: _core.DayData) -> None:
        self._data = data
        header = Header({"interval_s": data.interval_s()})
        self.observations = Observations(Table(data.rows()), Table(data.epochs()), header)
        self.navigation = Navigation(data.navigation())
        self.truth: dict[str, Any] = json.loads(data.truth_json())

    def write(self, folder: PathLike, *, gzip: bool = False, crinex: bool = False) -> list[pathlib.Path]:
        """Writes observations, navigation and truth into a folder, which is made if missing.

        Args:
            gzip: compresses the RINEX files
            crinex: writes Hatanaka-compressed observations

        Returns:
            the files: observations, navigation, truth.json

        Raises:
            RunError: when a file cannot be written; none is left then
        """
        return [pathlib.Path(path) for path in self._data.write(path_of("folder", folder), bool(gzip), bool(crinex))]

    def __repr__(self) -> str:
        return f"<orsolva.Day: {self.observations!r}>"


def simulate(
    preset: str = "quiet",
    *,
    scenario: PathLike | Mapping[str, Any] | None = None,
    faults: Sequence[str] = (),
    seed: int | None = None,
    start: str | None = None,
    hours: float | None = None,
    interval_s: float | None = None,
    position: Sequence[float] | None = None,
    systems: str | None = None,
    station: str | None = None,
    progress: Progress | None = None,
) -> Day:
    """Simulates a receiver. The same arguments give the same bits.

    Args:
        preset: the settings to begin with; `presets()` lists them
        scenario: further settings, as a dictionary or a file; docs/user/simulator.md lists the keys
        faults: presets whose faults are added
        seed: of the random numbers, 0 to 2**53
        start: "2020-06-25" or "2020-06-25 06:30:00", GPS time
        hours: length of the span
        interval_s: 0.1 to 60
        position: Earth-centred x, y, z of the antenna, metres
        systems: letters out of GREJC
        station: nine characters, for the file names

    Raises:
        ScenarioError: when a setting is out of its range
    """
    settings: dict[str, Any] = {}
    if isinstance(scenario, Mapping):
        settings.update(scenario)
    elif scenario is not None:
        settings.update(json.loads(pathlib.Path(path_of("scenario", scenario)).read_text(encoding="utf-8")))
    single = {
        "seed": seed,
        "start": start,
        "hours": None if hours is None else real("hours", hours),
        "interval_s": None if interval_s is None else real("interval_s", interval_s),
        "systems": systems,
        "station": station,
    }
    settings.update({name: value for name, value in single.items() if value is not None})
    if position is not None:
        receiver = dict(settings.get("receiver", {}))
        receiver["position_m"] = list(_position(position))
        settings["receiver"] = receiver
    try:
        named = json.dumps(settings)
    except TypeError as error:
        raise ArgumentTypeError(f"scenario: {error}") from None
    return Day(_core.simulate(text("preset", preset), texts("faults", faults), named, _callback(progress)))


def presets() -> dict[str, str]:
    """What each preset simulates, by name."""
    return dict(_core.presets())


Truth = Union[Day, Mapping[str, Any], str, "os.PathLike[str]"]


def compare(report: Report | PathLike, truth: Truth) -> str:
    """The figures of a report next to the truth of simulated data, as text.

    Args:
        report: a Report, or a file of `orsolva qc --json`
        truth: a Day, its `truth`, or a truth.json

    Raises:
        RunError: when the two differ in span, interval or elevation cut-off
    """
    if isinstance(report, Report):
        found, found_name = report.to_json(), "report"
    else:
        found_name = path_of("report", report)
        found = pathlib.Path(found_name).read_text(encoding="utf-8")
    if isinstance(truth, Day):
        true, true_name = truth._data.truth_json(), "truth"
    elif isinstance(truth, Mapping):
        true, true_name = json.dumps(truth), "truth"
    else:
        true_name = path_of("truth", truth)
        true = pathlib.Path(true_name).read_text(encoding="utf-8")
    return _core.compare(found, found_name, true, true_name)


__all__ = ["Day", "compare", "presets", "simulate"]
