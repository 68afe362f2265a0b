"""What a store is set to: buckets, tables, how content is identified, and how files are judged."""
from __future__ import annotations

import hashlib
import json
import math
from dataclasses import asdict, dataclass, field
from typing import Any

FORMAT = 1
# Stations in a bucket so that the files of a month in it take a core about six minutes.
STATIONS_PER_BUCKET = 47
NAME = "store.json"


class ArchiveError(Exception):
    """What is wrong and what can be done about it."""


@dataclass(frozen=True)
class Settings:
    """Written by `init` and never changed.

    Attributes:
        buckets: stations are spread over so many files per table and month
        content: "time": size and modification time (or the ETag of an object store) say whether a file is the same;
            "sha256": its bytes do
        without: tables that are not kept
        judging: arguments of `orsolva.qc`
        profile_text: the profile's text when it is not a built-in one
    """

    buckets: int = 1
    content: str = "time"
    without: tuple[str, ...] = ()
    judging: dict[str, Any] = field(default_factory=dict)
    profile_text: str | None = None

    @property
    def id(self) -> str:
        """Of everything that changes what a run gives."""
        return digest({"judging": self.judging, "profile": self.profile_text, "without": self.without})

    def to_json(self) -> str:
        """The text of store.json."""
        return json.dumps({"format": FORMAT, **asdict(self)}, indent=1, sort_keys=True) + "\n"


def from_json(text: str) -> Settings:
    """The settings of a store.json."""
    try:
        values = json.loads(text)
        version = values.pop("format")
        if version == FORMAT:
            values["without"] = tuple(values["without"])
            return Settings(**values)
    except (ValueError, KeyError, TypeError, AttributeError) as error:
        raise ArchiveError(f"{NAME}: not the settings of a store ({error})") from None
    raise ArchiveError(f"{NAME}: format {version}, and this version knows {FORMAT}. Use a later version of Orsolva.")


def buckets_for(stations: int) -> int:
    """A power of two, so that no bucket has much more than STATIONS_PER_BUCKET."""
    return 1 << max(0, math.ceil(math.log2(max(1, stations) / STATIONS_PER_BUCKET)))


def digest(value: Any) -> str:
    """First 16 hexadecimal digits of the SHA-256 of a value as JSON."""
    text = json.dumps(value, sort_keys=True, separators=(",", ":"))
    return hashlib.sha256(text.encode()).hexdigest()[:16]
