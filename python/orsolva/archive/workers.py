"""Where chunks of files are judged: processes of this machine, or a Dask cluster."""
from __future__ import annotations

import concurrent.futures
import ctypes
import importlib.abc
import multiprocessing
import os
import signal
import sys
from concurrent.futures import Future, ProcessPoolExecutor
from concurrent.futures.process import BrokenProcessPool
from typing import Any, Protocol

from .judge import failure, from_bytes, judge_chunk, to_bytes
from .plan import Job
from .settings import ArchiveError, Settings

Chunk = tuple[Job, ...]
Judged = dict[str, bytes]

# A chunk whose process died so often is judged file by file. One death ends all processes of a pool, so that a chunk counts
# deaths of others, too; a file on its own counts none but its own.
_DEATHS_OF_A_CHUNK = 3
_DEATHS_OF_A_FILE = 2
CONNECT_S = 30


class Workers(Protocol):
    """Judges chunks at the same time."""

    count: int

    def submit(self, chunk: Chunk, settings: Settings) -> Future[Judged]:
        """Begins with a chunk when there is a free worker."""
        ...

    def lost(self, chunk: Chunk, settings: Settings, error: BaseException) -> Judged | None:
        """What a chunk gives whose worker was lost: None when it is to be submitted again. @throws ArchiveError when it is left to the next run"""
        ...

    def close(self, now: bool) -> None:
        """Ends the workers; `now` without waiting for what they are at."""
        ...


class ThisProcess:
    """No workers: chunks are judged where the coordinator runs."""

    count = 1

    def submit(self, chunk: Chunk, settings: Settings) -> Future[Judged]:
        future: Future[Judged] = Future()
        try:
            future.set_result(judge_chunk(chunk, settings))
        except Exception as error:
            future.set_exception(error)
        return future

    def lost(self, chunk: Chunk, settings: Settings, error: BaseException) -> Judged | None:
        raise _unexpected(chunk, error) from error

    def close(self, now: bool) -> None:
        pass


def _unexpected(chunk: Chunk, error: BaseException) -> ArchiveError:
    return ArchiveError(f"{chunk[0].path} and {len(chunk) - 1} more were not judged ({type(error).__name__}: {error}). Run again.")


class Processes:
    """Processes of this machine, one thread each."""

    def __init__(self, count: int) -> None:
        self.count = count
        self._deaths: dict[Chunk, int] = {}
        self._pool = _pool(count)

    def submit(self, chunk: Chunk, settings: Settings) -> Future[Judged]:
        try:
            return self._pool.submit(judge_chunk, chunk, settings)
        except BrokenProcessPool:
            self._pool.shutdown(wait=True)
            self._pool = _pool(self.count)
            return self._pool.submit(judge_chunk, chunk, settings)

    def lost(self, chunk: Chunk, settings: Settings, error: BaseException) -> Judged | None:
        if not isinstance(error, BrokenProcessPool):
            raise _unexpected(chunk, error) from error
        self._deaths[chunk] = self._deaths.get(chunk, 0) + 1
        return None if self._deaths[chunk] < _DEATHS_OF_A_CHUNK else _one_by_one(chunk, settings)

    def close(self, now: bool) -> None:
        if now:
            for process in list((self._pool._processes or {}).values()):
                process.kill()
        self._pool.shutdown(wait=True, cancel_futures=True)


def _pool(count: int) -> ProcessPoolExecutor:
    return ProcessPoolExecutor(count, multiprocessing.get_context("spawn"), _prepare, (os.getpid(),))


class _NoPandas(importlib.abc.MetaPathFinder):
    """Finds that there is no pandas."""

    def find_spec(self, fullname: str, path: Any, target: Any = None) -> None:
        if fullname == "pandas":
            raise ModuleNotFoundError("pandas is left out of this process", name=fullname)


def without_pandas() -> None:
    """For processes that are only ours: pyarrow imports pandas, where there is one, to ask whether a list is one of its series, which takes a quarter of a second."""
    if not any(isinstance(finder, _NoPandas) for finder in sys.meta_path):
        sys.meta_path.insert(0, _NoPandas())


def _prepare(parent: int) -> None:
    """A worker leaves Ctrl-C to the coordinator and does not outlive it."""
    without_pandas()
    signal.signal(signal.SIGINT, signal.SIG_IGN)
    if sys.platform == "linux":
        ctypes.CDLL(None).prctl(1, signal.SIGKILL)  # PR_SET_PDEATHSIG
        if os.getppid() != parent:
            os._exit(1)


def _one_by_one(chunk: Chunk, settings: Settings) -> Judged:
    """Finds the file that ends its process; it becomes a failed run."""
    parts: dict[str, list[Any]] = {}
    pool = _pool(1)
    try:
        for job in chunk:
            for _ in range(_DEATHS_OF_A_FILE):
                try:
                    judged = pool.submit(judge_chunk, (job,), settings).result()
                    break
                except BrokenProcessPool:
                    pool.shutdown()
                    pool = _pool(1)
                except Exception as error:
                    raise _unexpected((job,), error) from error
            else:
                judged = _ended(job, settings)
            for table, data in judged.items():
                parts.setdefault(table, []).append(from_bytes(data))
    finally:
        pool.shutdown()
    return {table: to_bytes(rows) for table, rows in parts.items()}


def _ended(job: Job, settings: Settings) -> Judged:
    error = f"{job.path}: the process that judged it ended {_DEATHS_OF_A_FILE} times, for lack of memory or by a fault of Orsolva"
    return {table: to_bytes([rows]) for table, rows in failure(job, settings, error).items()}


class DaskCluster:
    """The workers of a Dask cluster; each needs Orsolva and sees the sources under the same paths."""

    def __init__(self, address: str) -> None:
        try:
            from distributed import Client
        except ImportError as error:
            raise ArchiveError("--dask needs distributed: pip install 'orsolva[archive]'") from error
        try:
            client: Any = Client
            self._client = client(address, timeout=CONNECT_S)
        except (OSError, ValueError, TimeoutError) as error:
            raise ArchiveError(f"--dask {address}: no scheduler there ({error}). Start one with: dask scheduler") from error
        self._executor = self._client.get_executor(pure=False, retries=3)
        self.count = max(1, sum(self._client.ncores().values()))

    def submit(self, chunk: Chunk, settings: Settings) -> Future[Judged]:
        future: Future[Judged] = self._executor.submit(judge_chunk, chunk, settings)
        return future

    def lost(self, chunk: Chunk, settings: Settings, error: BaseException) -> Judged | None:
        from distributed.scheduler import KilledWorker

        if not isinstance(error, (KilledWorker, concurrent.futures.CancelledError)):
            raise _unexpected(chunk, error) from error
        raise ArchiveError(f"the Dask workers that judged {chunk[0].path} and {len(chunk) - 1} more were lost. Run again; if it "
                           "happens again, run without --dask, which finds the file that ends its process.") from error

    def close(self, now: bool) -> None:
        self._executor.shutdown(wait=False)
        self._client.close()
