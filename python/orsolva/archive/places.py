"""Where stores and sources are: a folder, or an object store that fsspec reaches."""
from __future__ import annotations

import contextlib
import datetime
import errno
import hashlib
import os
import pathlib
import tempfile
from collections.abc import Callable, Iterator
from dataclasses import dataclass
from typing import Any, Protocol

from .settings import ArchiveError

# Of a file that is being written; the next writer replaces or removes it.
PART = ".part"
# In place of what identifies the content of a file, when it was to be read for that and could not be.
UNREADABLE = "unreadable"
# The folder at the root of a file system that keeps what a repair finds; only root may read it.
_OF_THE_FILE_SYSTEM = "lost+found"
_BLOCK = 1 << 20
# What file systems without links say to one.
_NO_LINKS = (errno.EPERM, errno.ENOTSUP, errno.EOPNOTSUPP, errno.ENOSYS, errno.EMLINK)
LeftOut = Callable[[OSError], object]


@dataclass(frozen=True, slots=True)
class Found:
    """A file of a listing: its path or address, bytes, and what identifies its content."""

    path: str
    size: int
    content: str


class Place(Protocol):
    """Files below a folder or an address."""

    def read(self, name: str) -> bytes | None:
        """The bytes of a file; None when there is none."""
        ...

    def write(self, name: str, data: bytes) -> None:
        """Writes a file so that readers see the old one or the new one, never a part."""
        ...

    def create(self, name: str, data: bytes) -> bool:
        """Writes a file unless there is one. @return whether it was written"""
        ...

    def remove(self, name: str) -> None:
        """Removes a file if it is there."""
        ...

    def names(self, below: str = "") -> Iterator[str]:
        """The names of all files below a folder, in any order, one at a time."""
        ...

    def listing(self, left_out: LeftOut | None = None) -> Iterator[Found]:
        """All files, in any order, one at a time.

        Args:
            left_out: called for every folder or file below the place that cannot be read. Without it the first one ends the listing
        """
        ...


class Folder:
    """A folder of this machine, or one that is mounted."""

    def __init__(self, root: str) -> None:
        self.root = pathlib.Path(root)

    def read(self, name: str) -> bytes | None:
        try:
            return (self.root / name).read_bytes()
        except FileNotFoundError:
            return None

    def write(self, name: str, data: bytes) -> None:
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        part = path.with_name(path.name + PART)
        try:
            with open(part, "wb") as file:
                file.write(data)
                file.flush()
                os.fsync(file.fileno())
            os.replace(part, path)
        except BaseException:
            part.unlink(missing_ok=True)
            raise

    def create(self, name: str, data: bytes) -> bool:
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        # A link fails where the name exists, and the file has its content from the first moment on.
        with tempfile.NamedTemporaryFile(dir=path.parent, prefix=path.name + ".", suffix=PART) as file:
            file.write(data)
            file.flush()
            try:
                os.link(file.name, path)
            except FileExistsError:
                return False
            except OSError as error:
                if error.errno not in _NO_LINKS:
                    raise
                return _create_without_link(path, data)
        return True

    def remove(self, name: str) -> None:
        (self.root / name).unlink(missing_ok=True)

    def names(self, below: str = "") -> Iterator[str]:
        top = self.root / below
        for entry in _entries(str(top), passed_over=str(self.root / _OF_THE_FILE_SYSTEM)):
            yield os.path.relpath(entry.path, self.root)

    def listing(self, left_out: LeftOut | None = None) -> Iterator[Found]:
        if self.root.is_file():
            yield self._found(str(self.root), self.root.stat())
            return
        if not self.root.is_dir():
            raise ArchiveError(f"{self.root}: there is no such folder. Is the disk mounted?")
        for entry in _entries(str(self.root), left_out):
            with _tolerant(left_out):
                yield self._found(entry.path, entry.stat())

    @staticmethod
    def _found(path: str, status: os.stat_result) -> Found:
        if not _is_utf8(path):
            raise OSError(errno.EILSEQ, "the name is not UTF-8: rename it", path)
        return Found(path, status.st_size, f"time:{status.st_mtime_ns}")


def _create_without_link(path: pathlib.Path, data: bytes) -> bool:
    """On file systems that have no links, such as exFAT and many SMB shares. For a moment others may see the file empty."""
    try:
        with open(path, "xb") as file:
            file.write(data)
    except FileExistsError:
        return False
    return True


def _is_utf8(path: str) -> bool:
    """Tables and databases hold names as UTF-8; those of files may be any bytes."""
    try:
        path.encode()
    except UnicodeEncodeError:
        return False
    return True


def _entries(top: str, left_out: LeftOut | None = None, passed_over: str = "") -> Iterator[os.DirEntry[str]]:
    """Files below a folder but those of one folder; links to folders are followed. Holds the names of the folders on the way only."""
    folders = [top]
    while folders:
        folder = folders.pop()
        with _tolerant(None if folder == top else left_out), os.scandir(folder) as entries:
            for entry in entries:
                with _tolerant(left_out):
                    if not entry.is_dir():
                        if entry.is_file():
                            yield entry
                    elif entry.path != passed_over and not _leads_up(entry):
                        folders.append(entry.path)


@contextlib.contextmanager
def _tolerant(left_out: LeftOut | None) -> Iterator[None]:
    """Passes over what has been removed in the meantime, and hands on what cannot be read."""
    try:
        yield
    except FileNotFoundError:
        pass
    except OSError as error:
        if left_out is None:
            raise
        left_out(error)


def _leads_up(entry: os.DirEntry[str]) -> bool:
    """Whether a link leads to a folder that it is in, which would be listed for ever."""
    if not entry.is_symlink():
        return False
    target = os.path.realpath(entry.path)
    return os.path.commonpath([target, os.path.realpath(os.path.dirname(entry.path))]) == target


class ObjectStore:
    """Objects below an address such as s3://bucket/prefix. The environment says with which account."""

    def __init__(self, address: str) -> None:
        try:
            import fsspec
        except ImportError as error:
            raise ArchiveError(f"{address}: needs fsspec: pip install 'orsolva[archive]'") from error
        try:
            self.files, self.root = fsspec.core.url_to_fs(address)
        except (ImportError, ValueError) as error:
            raise ArchiveError(f"{address}: {error}") from error
        self.scheme = address.partition("://")[0]

    def _path(self, name: str) -> str:
        return f"{self.root.rstrip('/')}/{name}" if name else self.root

    def read(self, name: str) -> bytes | None:
        try:
            self.files.invalidate_cache()
            return bytes(self.files.cat_file(self._path(name)))
        except FileNotFoundError:
            return None

    def write(self, name: str, data: bytes) -> None:
        self.files.pipe_file(self._path(name), data)

    def create(self, name: str, data: bytes) -> bool:
        try:
            self.files.pipe_file(self._path(name), data, mode="create")
        except FileExistsError:
            return False
        return True

    def remove(self, name: str) -> None:
        with contextlib.suppress(FileNotFoundError):
            self.files.rm_file(self._path(name))

    def names(self, below: str = "") -> Iterator[str]:
        start = len(self.root.rstrip("/")) + 1
        for path, _ in self._walk(self._path(below)):
            yield path[start:]

    def listing(self, left_out: LeftOut | None = None) -> Iterator[Found]:
        try:
            self.files.invalidate_cache()
            self.files.ls(self.root)
        except FileNotFoundError:
            raise ArchiveError(f"{self.scheme}://{self.root}: there is nothing. Is the address right?") from None
        for path, facts in self._walk(self.root, left_out):
            yield Found(f"{self.scheme}://{path}", int(facts["size"] or 0), _mark(facts))

    def content(self) -> str | None:
        """What identifies the content of the object that this place is the address of."""
        self.files.invalidate_cache()
        try:
            return _mark(self.files.info(self.root))
        except FileNotFoundError:
            return None

    def _walk(self, path: str, left_out: LeftOut | None = None) -> Iterator[tuple[str, dict[str, Any]]]:
        """Objects below a path. The walk of fsspec leaves out what it cannot list without a word."""
        path = path.rstrip("/") or path
        folders = [path]
        while folders:
            folder = folders.pop()
            self.files.invalidate_cache()
            with _tolerant(None if folder == path else left_out):
                for facts in self.files.ls(folder, detail=True):
                    name = facts["name"].rstrip("/")
                    if name == folder:
                        continue  # an object that stands for the folder
                    if facts["type"] == "directory":
                        folders.append(name)
                    else:
                        yield name, facts
        self.files.invalidate_cache()


def _mark(facts: dict[str, Any]) -> str:
    known = (facts.get(name) for name in ("ETag", "etag", "md5Hash", "LastModified", "mtime"))
    return "tag:" + str(next((mark for mark in known if mark), "")).strip('"')


def place(address: str) -> Place:
    """The place of a path or address."""
    return ObjectStore(address) if is_remote(address) else Folder(address.removeprefix("file://"))


def is_remote(address: str) -> bool:
    """Whether an address is not a path of this machine."""
    return "://" in address and not address.startswith("file://")


def content_now(path: str, kind: str) -> str | None:
    """What identifies the content of a source file at this moment; None when it is gone. @throws OSError when it cannot be read"""
    if kind in ("sha256", UNREADABLE):
        try:
            return "sha256:" + _sha256(path)
        except FileNotFoundError:
            return None
    if not is_remote(path):
        with contextlib.suppress(FileNotFoundError):
            return f"time:{os.stat(path).st_mtime_ns}"
        return None
    return ObjectStore(path).content()


def _sha256(path: str) -> str:
    sum_ = hashlib.sha256()
    with opened(path) as file:
        while block := file.read(_BLOCK):
            sum_.update(block)
    return sum_.hexdigest()


@contextlib.contextmanager
def opened(path: str) -> Iterator[Any]:
    """A source file open for reading."""
    if is_remote(path):
        import fsspec

        with fsspec.open(path, "rb") as file:
            yield file
    else:
        with open(path, "rb") as file:
            yield file


@contextlib.contextmanager
def local_copy(path: str) -> Iterator[str]:
    """A path under which this machine's programs can read a source file, with the same name."""
    if not is_remote(path):
        yield path
        return
    with tempfile.TemporaryDirectory(prefix="orsolva-") as folder, opened(path) as source:
        copy = pathlib.Path(folder) / path.rpartition("/")[2]
        with open(copy, "wb") as target:
            while block := source.read(_BLOCK):
                target.write(block)
        yield str(copy)


def local_time() -> str:
    """Now, for people."""
    return datetime.datetime.now().astimezone().isoformat(timespec="seconds")
