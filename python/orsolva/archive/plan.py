"""What is new or changed: the difference of a listing of sources and the runs of a store.

Listings are kept in a temporary SQLite file, so that memory does not grow with their length.
"""
from __future__ import annotations

import datetime
import json
import pathlib
import sqlite3
import tempfile
import zlib
from collections.abc import Callable, Iterator, Sequence
from dataclasses import dataclass
from typing import Any

from .. import __version__
from .file_names import FileName, parse
from .places import UNREADABLE, Found, content_now, place
from .settings import ArchiveError, digest
from .store import Bundle, DamagedBundle, Store, bucket_of, runs_with_rows_missing

_BATCH = 2000
# Navigation of a whole network or day, as the usual archives name it.
_NETWORK_NAVIGATION = ("BRD", "IGS")


@dataclass(frozen=True)
class Job:
    """A file to be judged."""

    run_id: str
    name: str
    station: str
    start: datetime.datetime
    path: str
    size: int
    content: str
    navigation: tuple[str, ...]


@dataclass
class Counts:
    """What a plan found."""

    observations: int = 0
    navigation: int = 0
    other: int = 0
    doubles: int = 0
    new: int = 0
    changed: int = 0
    repaired: int = 0
    done: int = 0
    unreadable: int = 0
    first_unreadable: str = ""

    @property
    def to_do(self) -> int:
        """Files to be judged."""
        return self.new + self.changed + self.repaired


@dataclass(frozen=True)
class Choice:
    """Which of the listed files a run is about.

    Attributes:
        since, until: days, both included
        shard: (k, n): every bundle belongs to one of n shards, counted from 1
        retry: files that failed are judged again
        repair: the rows of all runs are counted, not only where a writing did not end
    """

    since: datetime.date | None = None
    until: datetime.date | None = None
    shard: tuple[int, int] = (1, 1)
    retry: bool = False
    repair: bool = False

    def takes(self, date: datetime.date) -> bool:
        """Whether files of a day are meant."""
        return (self.since is None or date >= self.since) and (self.until is None or date <= self.until)

    def has(self, bundle: Bundle) -> bool:
        """Whether a bundle is of this shard."""
        return zlib.crc32(bundle.name.encode()) % self.shard[1] == self.shard[0] - 1


class Plan:
    """A listing next to the runs of a store. To be closed, which removes the temporary file.

    Attributes:
        left_out: bundles that cannot be read, with the error; their files count neither as to do nor as done
    """

    def __init__(self, store: Store, choice: Choice = Choice()) -> None:
        self.store = store
        self.choice = choice
        self.counts = Counts()
        self.left_out: dict[Bundle, str] = {}
        self._folder = tempfile.TemporaryDirectory(prefix="orsolva-plan-")
        self._rows = sqlite3.connect(pathlib.Path(self._folder.name) / "listing.sqlite", isolation_level=None)
        self._rows.executescript(
            """
            PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA cache_size = -16000; PRAGMA temp_store = FILE;
            CREATE TABLE files (year INT, month INT, bucket INT, name TEXT, source INT, path TEXT, station TEXT,
                                start TEXT, size INT, content TEXT, PRIMARY KEY (year, month, bucket, name)) WITHOUT ROWID;
            CREATE TABLE doubles (path TEXT, taken TEXT);
            CREATE TABLE navigation (day TEXT, station TEXT, name TEXT, source INT, path TEXT, content TEXT,
                                     PRIMARY KEY (day, station, name)) WITHOUT ROWID;
            CREATE TABLE jobs (year INT, month INT, bucket INT, day TEXT, name TEXT, job TEXT,
                               PRIMARY KEY (year, month, bucket, day, name)) WITHOUT ROWID;
            BEGIN;
            """
        )

    def close(self) -> None:
        """Removes the temporary file."""
        self._rows.close()
        self._folder.cleanup()

    def __enter__(self) -> Plan:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def take(self, sources: Sequence[str], navigation: Sequence[str] = (), listed: Callable[[int], object] = lambda _: None) -> None:
        """Lists sources, then navigation sources; the latter alone give navigation when there are any.

        Args:
            listed: called with the number of names from time to time
        """
        names = 0
        for source, address in enumerate([*sources, *navigation]):
            is_source = source < len(sources)
            for found in place(address).listing(self._leave_out):
                self._take_file(found, source, is_source, is_source != bool(navigation))
                names += 1
                if names % _BATCH == 0:
                    listed(names)
        self._rows.execute("COMMIT")

    def _leave_out(self, error: OSError) -> None:
        self.counts.first_unreadable = self.counts.first_unreadable or str(error)
        self.counts.unreadable += 1

    def _take_file(self, found: Found, source: int, observations: bool, navigation: bool) -> None:
        name = parse(found.path.rpartition("/")[2])
        if name is None:
            self.counts.other += 1
        elif name.observations and observations:
            self._take_observations(found, source, name)
        elif not name.observations and navigation:
            self._take_navigation(found, source, name)

    def _take_observations(self, found: Found, source: int, name: FileName) -> None:
        bundle = Bundle(name.date.year, name.date.month, bucket_of(name.station, self.store.settings.buckets))
        if not self.choice.takes(name.date) or not self.choice.has(bundle):
            return
        self.counts.observations += 1
        key = (bundle.year, bundle.month, bundle.bucket, name.stem)
        row = (*key, source, found.path, name.station, name.start.isoformat(), found.size, found.content)
        if self._rows.execute("INSERT OR IGNORE INTO files VALUES (?,?,?,?,?,?,?,?,?,?)", row).rowcount > 0:
            return
        # Whatever the order of the listing, the first source and then the first path is taken.
        self.counts.doubles += 1
        other = self._rows.execute("SELECT source, path FROM files WHERE year=? AND month=? AND bucket=? AND name=?", key).fetchone()
        first, second = sorted([tuple(other), (source, found.path)])
        self._rows.execute("INSERT INTO doubles VALUES (?, ?)", (second[1], first[1]))
        if first != tuple(other):
            self._rows.execute("INSERT OR REPLACE INTO files VALUES (?,?,?,?,?,?,?,?,?,?)", row)

    def _take_navigation(self, found: Found, source: int, name: FileName) -> None:
        self.counts.navigation += 1
        row = (name.date.isoformat(), name.station, name.stem, source, found.path, found.content)
        query = (
            "INSERT INTO navigation VALUES (?,?,?,?,?,?) ON CONFLICT DO UPDATE SET source=excluded.source, path=excluded.path, "
            "content=excluded.content WHERE (excluded.source, excluded.path) < (source, path)"
        )
        self._rows.execute(query, row)

    def doubles(self) -> Iterator[tuple[str, str]]:
        """Files of the same name as another, and that other, which is judged."""
        yield from self._rows.execute("SELECT path, taken FROM doubles ORDER BY path")

    def compare(self, own_navigation: bool) -> Counts:
        """Sets apart what is to be judged.

        Args:
            own_navigation: of the listed navigation files of a day, a station's own are taken if it has any, else those
                of the network; otherwise all of the day
        """
        unfinished = self.store.unfinished()
        self._rows.execute("BEGIN")
        for bundle in list(self._bundles("files")):
            try:
                known = self._known(bundle, self.choice.repair or bundle.name in unfinished)
            except (DamagedBundle, OSError) as error:
                self.left_out[bundle] = f"{bundle.name} is left out: {error}"
                continue
            self._compare_bundle(bundle, known, own_navigation)
        self._rows.execute("COMMIT")
        return self.counts

    def _bundles(self, table: str) -> Iterator[Bundle]:
        for row in self._rows.execute(f"SELECT DISTINCT year, month, bucket FROM {table} ORDER BY 1, 2, 3").fetchall():
            yield Bundle(*row)

    def _known(self, bundle: Bundle, unfinished: bool) -> dict[str, tuple[str, bool]]:
        """Run and whether it holds, by name."""
        runs = self.store.read("runs", bundle)
        missing = runs_with_rows_missing(self.store, bundle) if unfinished else set()
        rows = zip(runs["name"].to_pylist(), runs["run_id"].to_pylist(), runs["state"].to_pylist())
        return {name: (run, run not in missing and not (self.choice.retry and state == "failed")) for name, run, state in rows}

    def _compare_bundle(self, bundle: Bundle, known: dict[str, tuple[str, bool]], own_navigation: bool) -> None:
        key = (bundle.year, bundle.month, bundle.bucket)
        query = "SELECT name, station, start, path, size, content FROM files WHERE year=? AND month=? AND bucket=? ORDER BY name"
        navigation: dict[tuple[str, str], list[tuple[str, str]]] = {}
        for name, station, start, path, size, content in self._rows.execute(query, key).fetchall():
            day = start[:10]
            if (day, station) not in navigation:
                navigation[day, station] = self._navigation(day, station, own_navigation)
            used = navigation[day, station]
            if self.store.settings.content == "sha256":
                content = _sum_of(path)
            run_id = run_key(name, size, content, [mark for _, mark in used], self.store.settings.id)
            if not self._is_due(known.get(name), run_id):
                continue
            job = [run_id, name, station, start, path, size, content, [file for file, _ in used]]
            self._rows.execute("INSERT INTO jobs VALUES (?,?,?,?,?,?)", (*key, day, name, json.dumps(job)))

    def _is_due(self, run: tuple[str, bool] | None, run_id: str) -> bool:
        if run is None:
            self.counts.new += 1
        elif run[0] != run_id:
            self.counts.changed += 1
        elif not run[1]:
            self.counts.repaired += 1
        else:
            self.counts.done += 1
            return False
        return True

    def _navigation(self, day: str, station: str, own: bool) -> list[tuple[str, str]]:
        rows = self._rows.execute("SELECT station, path, content FROM navigation WHERE day=? ORDER BY name", (day,)).fetchall()
        if own:
            of_station = [row for row in rows if row[0] == station or row[0][:4] == station[:4]]
            rows = of_station or [row for row in rows if row[0].startswith(_NETWORK_NAVIGATION)]
        return [(path, self._content(path, content)) for _, path, content in rows]

    def _content(self, path: str, listed: str) -> str:
        """What identifies a file as the store is set to; computed once."""
        if self.store.settings.content == "time" or listed.startswith("sha256:"):
            return listed
        content = _sum_of(path)
        self._rows.execute("UPDATE navigation SET content=? WHERE path=?", (content, path))
        return content

    def jobs(self) -> Iterator[tuple[Bundle, list[Job]]]:
        """What is to be judged, bundle by bundle; within one day by day, so that navigation is read once."""
        for bundle in self._bundles("jobs"):
            query = "SELECT job FROM jobs WHERE year=? AND month=? AND bucket=? ORDER BY day, name"
            rows = self._rows.execute(query, (bundle.year, bundle.month, bundle.bucket))
            yield bundle, [_job(json.loads(text)) for (text,) in rows.fetchall()]


def _sum_of(path: str) -> str:
    try:
        return content_now(path, "sha256") or "gone"
    except OSError:  # its run fails, and says why
        return UNREADABLE


def _job(values: list[Any]) -> Job:
    run_id, name, station, start, path, size, content, navigation = values
    return Job(run_id, name, station, datetime.datetime.fromisoformat(start), path, size, content, tuple(navigation))


def run_key(name: str, size: int, content: str | None, navigation: Sequence[str], settings_id: str) -> str:
    """Of everything that a run depends on."""
    return digest([name, size, content, list(navigation), __version__, settings_id])


def shard_of(text: str) -> tuple[int, int]:
    """(k, n) of "K/N"."""
    first, _, second = text.partition("/")
    if first.isdigit() and second.isdigit() and 1 <= int(first) <= int(second):
        return int(first), int(second)
    raise ArchiveError(f"--shard {text}: expected K/N, such as 1/8, with K from 1 to N")
