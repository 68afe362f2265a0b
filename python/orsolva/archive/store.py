"""The files of a store, and how a bundle of them is written.

    store.json                                        settings
    TABLE/year=2026/month=05/bucket=00/data.parquet   one file per table and bundle
    unfinished/2026-05-00                             a bundle that is being written
    lease/1-of-1                                      who runs

A bundle is the month of a bucket of stations. Its table of runs is written last: a row of another table counts only when
`runs` has its run, so that a bundle whose writing was ended half-way loses nothing and shows nothing twice.
"""
from __future__ import annotations

import re
import zlib
from collections.abc import Callable, Iterator
from dataclasses import dataclass
from typing import Any

import pyarrow as pa
import pyarrow.compute as pc
import pyarrow.parquet as pq

from . import settings as store_settings
from .places import PART, Place, place
from .settings import ArchiveError, Settings
from .tables import ALL_TABLES, TABLES, in_order, schema_of

_UNFINISHED = "unfinished/"


class DamagedBundle(ArchiveError):
    """A file of a table cannot be read. It concerns its bundle alone."""


@dataclass(frozen=True, order=True)
class Bundle:
    """The files of one month and bucket of stations."""

    year: int
    month: int
    bucket: int

    @property
    def name(self) -> str:
        """Such as 2026-05-00."""
        return f"{self.year:04}-{self.month:02}-{self.bucket:02}"

    def path(self, table: str) -> str:
        """Where its rows of a table are, from the store on."""
        return f"{table}/year={self.year:04}/month={self.month:02}/bucket={self.bucket:02}/data.parquet"

    @staticmethod
    def has_name(text: str) -> bool:
        """Whether a text is the name of a bundle."""
        return re.fullmatch(r"\d{4}-\d{2}-\d{2,}", text, re.ASCII) is not None

    @staticmethod
    def of_name(name: str) -> Bundle:
        """The bundle of a name."""
        return Bundle(*(int(part) for part in name.split("-")))

    @staticmethod
    def of_path(path: str) -> Bundle | None:
        """The bundle of a file of a table."""
        try:
            year, month, bucket = (int(part.partition("=")[2]) for part in path.split("/")[1:4])
        except ValueError:
            return None
        return Bundle(year, month, bucket)


def bucket_of(station: str, buckets: int) -> int:
    """A station's bucket: CRC-32 of its name modulo their number."""
    return zlib.crc32(station.encode()) % buckets


class Store:
    """A store that `init` has made."""

    def __init__(self, address: str) -> None:
        self.address = address
        self.place: Place = place(address)
        text = self.place.read(store_settings.NAME)
        if text is None:
            raise ArchiveError(f"{address}: there is no store. Make one with: orsolva archive init {address}")
        self.settings: Settings = store_settings.from_json(text.decode())

    @property
    def tables(self) -> list[str]:
        """Names of the tables that it keeps, without `runs`."""
        return [name for name in TABLES if name not in self.settings.without]

    def read(self, table: str, bundle: Bundle) -> pa.Table:
        """The rows of a bundle, committed or not. @throws DamagedBundle, OSError"""
        data = self.place.read(bundle.path(table))
        if data is None:
            return schema_of(table).empty_table()
        try:
            return pq.read_table(pa.BufferReader(data), partitioning=None).select(schema_of(table).names).cast(schema_of(table))
        except (pa.ArrowException, OSError, KeyError, ValueError) as error:
            name = f"{self.address}/{bundle.path(table)}"
            raise DamagedBundle(f"{name}: cannot be read ({error}). Remove this file and run with --repair.") from error

    def bundles(self) -> Iterator[Bundle]:
        """Those with committed runs, in any order."""
        for name in self.place.names("runs"):
            bundle = Bundle.of_path(name)
            if bundle and name.endswith(".parquet"):
                yield bundle

    def unfinished(self) -> set[str]:
        """Names of bundles whose last writing did not end."""
        names = {name.removeprefix(_UNFINISHED) for name in self.place.names(_UNFINISHED)}
        return {name for name in names if Bundle.has_name(name)}

    def leftovers(self) -> list[str]:
        """Files that a writer was about to write when it was ended."""
        return [name for name in self.place.names() if name.endswith(PART)]

    def write(
        self,
        bundle: Bundle,
        judged: dict[str, pa.Table],
        still_mine: Callable[[], None] = lambda: None,
    ) -> None:
        """Adds runs to a bundle; a run of the same name is replaced.

        Args:
            judged: rows of every table, among them `runs`
            still_mine: raises when somebody else has taken the store over
        """
        old = self.read("runs", bundle)
        added = judged["runs"]
        replaced = pc.is_in(old["name"], value_set=added["name"].combine_chunks())
        kept = old.filter(pc.invert(replaced))
        runs = pa.concat_tables([kept, added]).sort_by([(key, "ascending") for key in ("station", "start", "name")])
        ids = runs["run_id"].to_pylist()
        marker = _UNFINISHED + bundle.name
        still_mine()
        self.place.write(marker, b"")
        for table in self.tables:
            before = self.read(table, bundle)
            before = before.filter(pc.is_in(before["run_id"], value_set=kept["run_id"].combine_chunks()))
            self._write_table(table, bundle, in_order(pa.concat_tables([before, judged[table]]), ids))
        still_mine()
        self._write_table("runs", bundle, runs.combine_chunks())
        self.place.remove(marker)

    def _write_table(self, table: str, bundle: Bundle, rows: pa.Table) -> None:
        """The same rows give the same bytes."""
        sink = pa.BufferOutputStream()
        pq.write_table(rows, sink, compression="zstd", row_group_size=1 << 17, store_schema=True)
        self.place.write(bundle.path(table), sink.getvalue().to_pybytes())

    def rewrite(self, bundle: Bundle, still_mine: Callable[[], None] = lambda: None) -> None:
        """Writes a bundle again without rows that no run has."""
        self.write(bundle, {table: schema_of(table).empty_table() for table in ALL_TABLES}, still_mine)


def runs_with_rows_missing(store: Store, bundle: Bundle) -> set[str]:
    """Runs of which a table has not the rows that `runs` counts."""
    runs = store.read("runs", bundle)
    missing: set[str] = set()
    for table in store.tables:
        counts = counts_by_run(store.read(table, bundle))
        for run_id, rows in zip(runs["run_id"].to_pylist(), runs[f"{table}_rows"].to_pylist()):
            if counts.get(run_id, 0) != (rows or 0):
                missing.add(run_id)
    return missing


def counts_by_run(rows: pa.Table) -> dict[str, int]:
    """Rows of each run."""
    counts: Any = rows.group_by("run_id").aggregate([([], "count_all")])
    return dict(zip(counts["run_id"].to_pylist(), counts["count_all"].to_pylist()))


def init(address: str, settings: Settings) -> Store:
    """Makes a store; one that is there with the same settings is left as it is."""
    where = place(address)
    text = settings.to_json().encode()
    if not where.create(store_settings.NAME, text) and where.read(store_settings.NAME) != text:
        raise ArchiveError(f"{address}: there is a store with other settings. They do not change; make another store.")
    return Store(address)


__all__ = ["ALL_TABLES", "Bundle", "DamagedBundle", "Store", "bucket_of", "counts_by_run", "init", "runs_with_rows_missing"]
