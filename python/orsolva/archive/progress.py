"""Progress of a run on a terminal: a bar with rate and time left. Elsewhere a line a minute."""
from __future__ import annotations

import math
import sys
import time
from typing import TextIO

_WIDTH = 30
_EVERY_S = 0.2
_EVERY_LINE_S = 60.0


class Progress:
    """Is given what is done; writes at most five times a second."""

    def __init__(self, quiet: bool = False, stream: TextIO | None = None) -> None:
        self._stream = sys.stderr if stream is None else stream
        self._quiet = quiet
        self._bar = self._stream.isatty()
        self._every = _EVERY_S if self._bar else _EVERY_LINE_S
        self._begun = time.monotonic()
        self._last = -math.inf if self._bar else self._begun
        self._drawn = False

    def listed(self, names: int) -> None:
        """So many names have been listed."""
        if self._is_due():
            self._draw(f"listing: {names} names")

    def begin(self) -> None:
        """Judging begins: rates count from here."""
        self._begun = time.monotonic()

    def judged(self, done: int, total: int) -> None:
        """So many files of so many are done."""
        if not self._is_due() or total == 0:
            return
        rate = done / max(time.monotonic() - self._begun, 1e-3)
        left = span_of((total - done) / rate) if rate > 0 else "-"
        filled = _WIDTH * done // total
        bar = f"[{'#' * filled}{'.' * (_WIDTH - filled)}] " if self._bar else ""
        self._draw(f"{bar}{done} of {total} files, {rate:.1f} a second, {left} left")

    def end(self) -> None:
        """Removes the bar."""
        if self._drawn and self._bar:
            self._stream.write("\r\x1b[K")
            self._stream.flush()
        self._drawn = False

    def _is_due(self) -> bool:
        now = time.monotonic()
        if self._quiet or now - self._last < self._every:
            return False
        self._last = now
        return True

    def _draw(self, text: str) -> None:
        self._stream.write(f"\r\x1b[K{text}" if self._bar else f"{text}\n")
        self._stream.flush()
        self._drawn = True


def span_of(seconds: float) -> str:
    """A length of time for people: 45 s, 12 min, 3 h 20 min, 4 d 6 h."""
    whole = int(seconds + 0.5)
    if whole < 60:
        return f"{whole} s"
    if whole < 3600:
        return f"{whole // 60} min"
    if whole < 86400:
        return f"{whole // 3600} h {whole % 3600 // 60} min"
    return f"{whole // 86400} d {whole % 86400 // 3600} h"
