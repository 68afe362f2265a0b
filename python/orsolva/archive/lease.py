"""Who runs: two coordinators never write the same bundles.

A lease is a file that its holder renews. One whose holder has ended is taken over: when it has not been renewed for
EXPIRES_S, and on the same machine as soon as its process is gone.
"""
from __future__ import annotations

import contextlib
import json
import os
import secrets
import socket
import threading
import time
from typing import Any

from .places import PART, Place
from .settings import ArchiveError

RENEWED_S = 15.0
EXPIRES_S = 120.0
_FOLDER = "lease/"


class Lease:
    """Held from `with` on. @throws ArchiveError when somebody else holds it"""

    def __init__(self, place: Place, shard: tuple[int, int] = (1, 1)) -> None:
        self._place = place
        self._shard = shard
        self._token = secrets.token_hex(8)
        self._name = f"{_FOLDER}{shard[0]}-of-{shard[1]}"
        self._stop = threading.Event()
        self._renewing = threading.Thread(target=self._renew, daemon=True)

    def __enter__(self) -> Lease:
        if not self._place.create(self._name, self._text()):
            self._take_over(self._name)
            self._place.write(self._name, self._text())
        # Not before: of two that begin together at least one sees the other.
        try:
            self._refuse_other_shards()
        except BaseException:
            self._give_back()
            raise
        self._renewing.start()
        return self

    def __exit__(self, *_: object) -> None:
        self._stop.set()
        self._renewing.join()
        self._give_back()

    def _give_back(self) -> None:
        with contextlib.suppress(Exception):
            if self._is_mine():
                self._place.remove(self._name)

    def check(self) -> None:
        """Before something is written. @throws ArchiveError when the lease has been taken over"""
        if not self._is_mine():
            raise ArchiveError("another run has taken the store over, as this one was not heard of for too long. It goes on.")

    def _is_mine(self) -> bool:
        holder = _holder(self._place.read(self._name))
        return holder is not None and holder["token"] == self._token

    def _text(self) -> bytes:
        facts = {"host": socket.gethostname(), "process": os.getpid(), "token": self._token, "time": time.time()}
        return json.dumps(facts).encode()

    def _renew(self) -> None:
        while not self._stop.wait(RENEWED_S):
            with contextlib.suppress(Exception):  # a full disk or a network that is away for a while
                if self._is_mine():
                    self._place.write(self._name, self._text())

    def _refuse_other_shards(self) -> None:
        """Shards of one number have no bundle in common; any others may."""
        for name in self._place.names(_FOLDER):
            number = name.rpartition("-")[2]
            if not name.endswith(PART) and number != str(self._shard[1]):
                self._take_over(name)
                self._place.remove(name)

    def _take_over(self, name: str) -> None:
        holder = _holder(self._place.read(name))
        if holder is not None and _is_alive(holder):
            raise ArchiveError(
                f"process {holder['process']} on {holder['host']} runs on this store ({name}). Wait for it; if that machine "
                f"was switched off, its lease ends {EXPIRES_S:.0f} s after the last renewal."
            )


def _holder(data: bytes | None) -> dict[str, Any] | None:
    with contextlib.suppress(ValueError, TypeError, KeyError):
        facts = json.loads(data or b"")
        return {"host": str(facts["host"]), "process": int(facts["process"]), "token": facts["token"], "time": float(facts["time"])}
    return None


def _is_alive(holder: dict[str, Any]) -> bool:
    # On this machine, too: its process number may be another's by now.
    if time.time() - float(holder["time"]) >= EXPIRES_S:
        return False
    if holder["host"] != socket.gethostname():
        return True
    try:
        os.kill(holder["process"], 0)
    except ProcessLookupError:
        return False
    except PermissionError:
        pass
    return True
