"""Station, time and kind of a RINEX file, or of a recording named like one, from its name, long (RINEX 3.05, appendix A1) or short (RINEX 2.11, section 4)."""
from __future__ import annotations

import datetime
import re
from dataclasses import dataclass

_COMPRESSED = r"(?:\.(?:gz|z|zip|bz2|xz|zst))?"
_LONG = re.compile(
    r"(?P<stem>(?P<station>[A-Z0-9]{4}(?:[A-Z0-9]{5})?)_[RSU]_(?P<year>\d{4})(?P<day>\d{3})(?P<hour>\d\d)(?P<minute>\d\d)"
    r"_\d\d[SMHDYU](?:_\d\d[CZSMHDU])?_[GREJCISM](?P<kind>[ON]))\.(?:rnx|crx|rtcm3|sbf|ubx)" + _COMPRESSED,
    re.IGNORECASE,
)
_SHORT = re.compile(
    r"(?P<station>[A-Z0-9]{4})(?P<day>\d{3})(?P<session>[0-9a-x])(?P<minute>\d\d)?\.(?P<year>\d\d)(?P<kind>[odnglpqhfci])" + _COMPRESSED,
    re.IGNORECASE,
)


@dataclass(frozen=True)
class FileName:
    """What a name says.

    Attributes:
        station: nine or four characters, upper case
        start: begin of the data
        observations: whether the file holds observations, else navigation
        stem: the name without the endings of compression; files of one stem hold the same data
    """

    station: str
    start: datetime.datetime
    observations: bool
    stem: str

    @property
    def date(self) -> datetime.date:
        """The day on which the data begin."""
        return self.start.date()


def parse(name: str) -> FileName | None:
    """What the name of a file says; None when it is no RINEX name, nor one of a recording."""
    if found := _LONG.fullmatch(name):
        start = _day(int(found["year"]), int(found["day"]), int(found["hour"]), int(found["minute"]))
        stem = found["stem"].upper()
        return FileName(found["station"].upper(), start, found["kind"].upper() == "O", stem) if start else None
    if found := _SHORT.fullmatch(name):
        year = int(found["year"])
        session = found["session"].lower()
        hour = ord(session) - ord("a") if session.isalpha() else 0
        start = _day(year + (1900 if year >= 80 else 2000), int(found["day"]), hour, int(found["minute"] or 0))
        observations = found["kind"].lower() in "od"
        kind = "o" if observations else found["kind"].lower()
        stem = f"{found['station']}{found['day']}{session}{found['minute'] or ''}.{found['year']}{kind}".upper()
        return FileName(found["station"].upper(), start, observations, stem) if start else None
    return None


def _day(year: int, day: int, hour: int, minute: int) -> datetime.datetime | None:
    if not (1980 <= year <= 2199 and 1 <= day <= 366 and hour < 24 and minute < 60):
        return None
    start = datetime.datetime(year, 1, 1, hour, minute) + datetime.timedelta(days=day - 1)
    return start if start.year == year else None
