"""The coordinator: hands chunks of files to workers, and alone writes the store, bundle by bundle."""
from __future__ import annotations

import concurrent.futures
import os
from collections import deque
from collections.abc import Iterator
from concurrent.futures import Future
from dataclasses import dataclass, field
from typing import Any

import pyarrow as pa

from .judge import from_bytes
from .lease import Lease
from .plan import Plan
from .progress import Progress
from .settings import ArchiveError
from .store import Bundle, DamagedBundle, Store, runs_with_rows_missing
from .tables import ALL_TABLES, schema_of
from .workers import Chunk, Judged, Workers

# A worker has so many chunks before it, so that it never waits for the coordinator.
_CHUNKS_PER_WORKER = 2
_LARGEST_CHUNK = 32


@dataclass
class Outcome:
    """What a run did."""

    judged: int = 0
    incomplete: int = 0
    failed: int = 0
    set_aside: int = 0
    errors: list[str] = field(default_factory=list)
    interrupted: bool = False


@dataclass
class _Open:
    """A bundle of which chunks are being judged."""

    bundle: Bundle
    waiting: int
    files: int
    lost: bool = False
    parts: list[Judged] = field(default_factory=list)


class Run:
    """One run over a plan."""

    def __init__(self, plan: Plan, workers: Workers, lease: Lease, progress: Progress) -> None:
        self._store: Store = plan.store
        self._plan = plan
        self._workers = workers
        self._lease = lease
        self._progress = progress
        self._total = plan.counts.to_do
        self._done = 0
        self._open: dict[Bundle, _Open] = {}
        self._futures: dict[Future[Judged], tuple[Bundle, Chunk]] = {}
        self._again: deque[tuple[Bundle, Chunk]] = deque()
        self.outcome = Outcome()

    def go(self) -> Outcome:
        """Judges all; after Ctrl-C writes what has been judged."""
        self._progress.begin()
        try:
            self._judge_all()
        except KeyboardInterrupt:
            self.outcome.interrupted = True
            self._workers.close(now=True)
            self._take_finished()
            for opened in list(self._open.values()):
                self._write(opened)
        finally:
            self._progress.end()
        return self.outcome

    def _judge_all(self) -> None:
        chunks = self._chunks()
        while True:
            self._submit(chunks)
            if not self._futures:
                return
            done, _ = concurrent.futures.wait(self._futures, 0.5, concurrent.futures.FIRST_COMPLETED)
            for future in done:
                self._take(future)
            self._progress.judged(self._done, self._total)

    def _chunks(self) -> Iterator[tuple[Bundle, Chunk]]:
        size = max(1, min(_LARGEST_CHUNK, self._total // (4 * self._workers.count)))
        for bundle, jobs in self._plan.jobs():
            chunks = [tuple(jobs[begin : begin + size]) for begin in range(0, len(jobs), size)]
            self._open[bundle] = _Open(bundle, len(chunks), len(jobs))
            yield from ((bundle, chunk) for chunk in chunks)

    def _submit(self, chunks: Iterator[tuple[Bundle, Chunk]]) -> None:
        while len(self._futures) < _CHUNKS_PER_WORKER * self._workers.count:
            following = self._again.popleft() if self._again else next(chunks, None)
            if following is None:
                return
            self._futures[self._workers.submit(following[1], self._store.settings)] = following

    def _take(self, future: Future[Judged]) -> None:
        bundle, chunk = self._futures.pop(future)
        error = future.exception() if not future.cancelled() else concurrent.futures.CancelledError()
        opened = self._open[bundle]
        try:
            judged = future.result() if error is None else self._workers.lost(chunk, self._store.settings, error)
        except ArchiveError as lost:
            self.outcome.errors.append(str(lost))
            opened.lost = True
            judged = {}
        if judged is None:
            self._again.append((bundle, chunk))
            return
        opened.parts.append(judged)
        opened.waiting -= 1
        self._done += len(chunk)
        if opened.waiting == 0:
            self._write(opened)

    def _take_finished(self) -> None:
        for future in [future for future in self._futures if future.done() and not future.cancelled()]:
            bundle, _ = self._futures.pop(future)
            if future.exception() is None:
                self._open[bundle].parts.append(future.result())

    def _write(self, opened: _Open) -> None:
        """A bundle that cannot be written is left to the next run; the others go on."""
        judged = {table: _together(opened.parts, table) for table in ALL_TABLES}
        error = self._error_of_writing(opened.bundle, judged)
        # Not earlier: a bundle is written again when Ctrl-C comes while it is written.
        del self._open[opened.bundle]
        if error is not None:
            self.outcome.errors.append(error)
            return
        states: list[Any] = judged["runs"]["state"].to_pylist()
        self.outcome.judged += states.count("judged")
        self.outcome.incomplete += states.count("incomplete")
        self.outcome.failed += states.count("failed")
        if not self.outcome.interrupted and not opened.lost:
            self.outcome.set_aside += opened.files - len(states)

    def _error_of_writing(self, bundle: Bundle, judged: dict[str, pa.Table]) -> str | None:
        """Writes a bundle. @throws ArchiveError when the lease is lost, which ends the run"""
        if judged["runs"].num_rows == 0:
            return None
        try:
            self._store.write(bundle, judged, self._lease.check)
        except OSError as error:
            return f"{bundle.name} was not written: {error}. Make room and run again."
        except (DamagedBundle, pa.ArrowException) as error:
            return f"{bundle.name} was not written: {error}"
        return None


def _together(parts: list[Judged], table: str) -> pa.Table:
    tables = [from_bytes(part[table]) for part in parts if table in part]
    return pa.concat_tables(tables) if tables else schema_of(table).empty_table()


def remove_leftovers(store: Store) -> None:
    """To be called with the lease of the whole store: no writer is at work."""
    for name in store.leftovers():
        store.place.remove(name)


def complete_unfinished(plan: Plan, lease: Lease) -> list[str]:
    """Bundles whose writing was ended and of which nothing is to be judged: only rows without a run can be left there.

    Returns:
        errors of bundles that cannot be read or written, but of those that the plan left out
    """
    errors: list[str] = []
    for bundle in sorted(Bundle.of_name(name) for name in plan.store.unfinished()):
        if not plan.choice.has(bundle) or bundle in plan.left_out:
            continue
        try:
            if not runs_with_rows_missing(plan.store, bundle):
                plan.store.rewrite(bundle, lease.check)
        except (DamagedBundle, OSError) as error:
            errors.append(f"{bundle.name} was not completed: {error}")
    return errors


def default_workers() -> int:
    """One per core that this process may use."""
    return len(os.sched_getaffinity(0)) if hasattr(os, "sched_getaffinity") else os.cpu_count() or 1

