"""A store as tables: DuckDB views and polars scans of the rows that count."""
from __future__ import annotations

import contextlib
import datetime
import pathlib
from collections.abc import Iterator
from typing import TYPE_CHECKING, Any

from .. import _table
from .places import ObjectStore, is_remote
from .settings import ArchiveError
from .store import Store
from .tables import ALL_TABLES, schema_of

if TYPE_CHECKING:
    import duckdb
    import polars


class Archive:
    """A store open for reading.

    Attributes:
        connection: a DuckDB connection with a view per table. Rows that a run has not committed are left out.
    """

    def __init__(self, address: str) -> None:
        self.store = Store(address)
        self.connection: duckdb.DuckDBPyConnection = _table.imported("duckdb", "open()").connect()
        with self._readable():
            for table in self.tables:
                self._add_view(table)

    @property
    def tables(self) -> list[str]:
        """Names of the tables."""
        return ["runs", *self.store.tables]

    def sql(self, query: str) -> duckdb.DuckDBPyRelation:
        """A query over the tables; `.pl()`, `.df()` and `.arrow()` give what it finds."""
        return self.connection.sql(query)

    def rows(self, query: str) -> list[tuple[Any, ...]]:
        """What a query finds. @throws ArchiveError when a file of the store is damaged"""
        with self._readable():
            return self.connection.sql(query).fetchall()

    def frame(self, query: str) -> polars.DataFrame:
        """The same as a polars DataFrame."""
        with self._readable():
            found: polars.DataFrame = self.connection.sql(query).pl()
        return found

    def last_day(self, until: datetime.date | None = None) -> datetime.date | None:
        """The last day with a file, until a day or of all; None without any.

        Days after tomorrow do not count, as a receiver with a wrong week names files: every station would be silent since
        then. They do where there are no others.
        """
        tomorrow = datetime.datetime.now(datetime.timezone.utc).date() + datetime.timedelta(days=1)
        latest = until or datetime.date.max
        query = f"SELECT max(date) FILTER (date <= '{min(latest, tomorrow)}'), max(date) FROM runs WHERE date <= '{latest}'"
        found: tuple[datetime.date | None, datetime.date | None] = self.rows(query)[0]
        return found[0] or found[1]

    def in_the_future(self, until: datetime.date | None = None) -> str:
        """What is left out behind the last day, for people; empty when nothing is."""
        last = self.last_day(until)
        if last is None:
            return ""
        later = f"date > '{last}' AND date <= '{until or datetime.date.max}'"
        files, first = self.rows(f"SELECT count(*), min(name) FROM runs WHERE {later}")[0]
        return f"{files} {'file' if files == 1 else 'files'} named after a day in the future left out, such as {first}" if files else ""

    def scan(self, table: str) -> polars.LazyFrame:
        """A table as a polars LazyFrame. @throws ArchiveError when there is none of the name"""
        pl = _table.imported("polars", "scan()")
        rows: polars.LazyFrame = self._frame(pl, table)
        if table == "runs":
            return rows
        committed = self._frame(pl, "runs").select("run_id", "year", "month", "bucket")
        return rows.join(committed, on=["run_id", "year", "month", "bucket"], how="semi", maintain_order="left")

    def close(self) -> None:
        """Closes the connection."""
        self.connection.close()

    def __enter__(self) -> Archive:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __repr__(self) -> str:
        return f"<orsolva.archive.Archive {self.store.address}: {', '.join(self.tables)}>"

    @contextlib.contextmanager
    def _readable(self) -> Iterator[None]:
        import pyarrow as pa

        try:
            yield
        except (_table.imported("duckdb", "open()").Error, pa.ArrowException) as error:
            address = self.store.address
            raise ArchiveError(f"{address}: cannot be read ({error}). `orsolva archive check {address}` names what is damaged.") from error

    def _files(self, table: str) -> list[str]:
        return sorted(name for name in self.store.place.names(table) if name.endswith(".parquet"))

    def _add_view(self, table: str) -> None:
        name, files = f"{table}_files", self._files(table)
        if not files or isinstance(self.store.place, ObjectStore):
            self.connection.register(name, self._dataset(table))
        else:
            pattern = str(pathlib.Path(self.store.address.removeprefix("file://")) / table / "*/*/*/*.parquet").replace("'", "''")
            self.connection.execute(f"CREATE VIEW {name} AS SELECT * FROM read_parquet('{pattern}', hive_partitioning=true, "
                                    "hive_types={'year': BIGINT, 'month': BIGINT, 'bucket': BIGINT})")
        committed = "" if table == "runs" else "SEMI JOIN runs_files USING (run_id, year, month, bucket)"
        self.connection.execute(f"CREATE VIEW {table} AS SELECT * FROM {name} {committed}")

    def _dataset(self, table: str) -> Any:
        """A table in an object store; an empty one when there are no files."""
        import pyarrow as pa
        import pyarrow.dataset as ds

        keys = pa.schema([(name, pa.int64()) for name in ("year", "month", "bucket")])
        schema = pa.unify_schemas([schema_of(table), keys])
        files = self._files(table)
        if not files:
            return schema.empty_table()
        store = self.store.place
        assert isinstance(store, ObjectStore)
        paths = [f"{store.root.rstrip('/')}/{name}" for name in files]
        partitioning = ds.partitioning(keys, flavor="hive")
        return ds.dataset(paths, schema=schema, format="parquet", filesystem=store.files, partitioning=partitioning)

    def _frame(self, pl: Any, table: str) -> Any:
        if table not in self.tables:
            raise ArchiveError(f"{table}: there is no such table; there are {', '.join(self.tables)}")
        files = self._files(table)
        if not files:
            return pl.from_arrow(self._dataset(table)).lazy()
        if is_remote(self.store.address):
            return pl.scan_pyarrow_dataset(self._dataset(table))
        root = pathlib.Path(self.store.address.removeprefix("file://"))
        keys = {name: pl.Int64 for name in ("year", "month", "bucket")}
        return pl.scan_parquet([root / name for name in files], hive_partitioning=True, hive_schema=keys)


def open(address: str) -> Archive:
    """A store that `orsolva archive init` has made, to be read.

    Args:
        address: a folder, or an address such as s3://bucket/store
    """
    return Archive(str(address))


__all__ = ["ALL_TABLES", "Archive", "open"]
