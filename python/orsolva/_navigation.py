"""Navigation files: broadcast records and precise orbits."""
from __future__ import annotations

import os
from collections.abc import Sequence
from typing import Union

from . import _core
from ._errors import ArgumentError, ArgumentTypeError
from ._settings import path_of, text
from ._table import Table


class Navigation:
    """Broadcast records and precise orbits, read once and usable by any number of runs."""

    __slots__ = ("_data",)

    def __init__(self, data: _core.NavigationData) -> None:
        if not isinstance(data, _core.NavigationData):
            raise ArgumentTypeError("navigation comes from read_nav() or simulate(); there is no other way to make one")
        self._data = data

    @property
    def files(self) -> list[str]:
        """The files read."""
        return self._data.files()

    def table(self, systems: str = "GEJCI") -> Table:
        """Broadcast records as a table, one row each, in the order of the files.

        Args:
            systems: letters out of GEJCI for Keplerian elements, or out of RS for the state vectors of GLONASS and
                SBAS; not of both kinds

        Times are on the GPS time scale, lengths metres, angles radians (IS-GPS-200, table 20-III, and its likes).

        Raises:
            ArgumentError: when the letters are others, or of both kinds
        """
        letters = set(text("systems", systems))
        if letters and letters <= set("GEJCI"):
            return Table(self._data.kepler(systems))
        if letters and letters <= set("RS"):
            return Table(self._data.state_vectors(systems))
        raise ArgumentError(f"systems: found {systems!r}, expected letters out of GEJCI, or out of RS")

    @property
    def precise_orbits(self) -> Table:
        """The points of precise orbits (SP3) as a table; empty where none were read."""
        return Table(self._data.precise_orbits())

    def __repr__(self) -> str:
        return f"<orsolva.Navigation: {', '.join(self.files) or 'simulated'}>"


PathLike = Union[str, "os.PathLike[str]"]
NavigationLike = Union[PathLike, Sequence[PathLike], Navigation, None]


def _paths(nav: object) -> list[str]:
    named = nav if isinstance(nav, (list, tuple)) else [nav]
    return [path_of("nav", path) for path in named]


def read_nav(files: PathLike | Sequence[PathLike], *, max_size: int | None = None) -> Navigation:
    """Reads navigation files: RINEX 2, 3 and 4, and precise orbits (SP3), compressed or not.

    Args:
        files: a file, a folder, or a list of them
        max_size: bytes that a compressed file may expand to; None allows 8 GiB

    Raises:
        FileError: when a file cannot be read
    """
    navigation = Navigation(_core.NavigationData.of_files(_paths(files), max_size or 0))
    navigation._data.read()
    return navigation


def navigation_of(nav: NavigationLike, max_size: int | None) -> _core.NavigationData:
    """What a run takes as navigation; that of None is empty."""
    if isinstance(nav, Navigation):
        return nav._data
    return _core.NavigationData.of_files([] if nav is None else _paths(nav), max_size or 0)
