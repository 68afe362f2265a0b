"""Records: the single values of a part of a report, as attributes."""
from __future__ import annotations

from collections.abc import Iterator, Mapping
from typing import Any


class Record(Mapping[str, Any]):
    """Values by name, as attributes and as a read-only mapping. None means that there are no data.

    Names end in the unit where there is one; `orsolva.explain(name)` says how a figure is computed.
    """

    __slots__ = ("_values",)

    def __init__(self, values: Mapping[str, Any]) -> None:
        object.__setattr__(self, "_values", dict(values))

    def __getattr__(self, name: str) -> Any:
        try:
            return self._values[name]
        except KeyError:
            raise AttributeError(f"{type(self).__name__} has no {name!r}") from None

    def __setattr__(self, name: str, value: object) -> None:
        raise AttributeError("a record does not change")

    def __getitem__(self, name: str) -> Any:
        return self._values[name]

    def __iter__(self) -> Iterator[str]:
        return iter(self._values)

    def __len__(self) -> int:
        return len(self._values)

    def __dir__(self) -> list[str]:
        return [*super().__dir__(), *self._values]

    def __reduce__(self) -> tuple[type[Record], tuple[dict[str, Any]]]:
        return type(self), (self._values,)

    def __repr__(self) -> str:
        rows = "".join(f"\n  {name}: {value!r}" for name, value in self._values.items())
        return f"<{type(self).__name__}>{rows}"


class RunFacts(Record):
    """What was read and with which settings it was judged."""


class Headline(Record):
    """The figures a file is known by."""


class AnalysisFigures(Record):
    """Figures of the whole file by the analysis of every signal."""


class LibraryHeadline(Record):
    """The figures of the library that a file is known by."""


class LibraryRun(Record):
    """How the library judged: its position and epochs; `absence` says why it did not (`id` and `text`), or is None."""


class LibraryTotal(Record):
    """Figures of the library over all systems."""


class Verdict(Record):
    """What the report says in one line: its grade and why."""


class ProfileVerdict(Record):
    """How the report compares with a profile of limits; `Report.outcomes` has every criterion."""


class Comparison(Record):
    """What an earlier report of the station had otherwise; `Report.changes` has the figures."""


class StreamFacts(Record):
    """What a recorded stream was made of; `messages` has a dictionary per type of message."""


class Finding(Record):
    """Something to look at first."""
