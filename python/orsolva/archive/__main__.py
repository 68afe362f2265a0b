"""`python -m orsolva.archive`: the same as `orsolva archive`."""
from __future__ import annotations

import os
import signal
import sys
from collections.abc import Sequence

from .command import CLOSED_PIPE, main
from .workers import without_pandas


def program(arguments: Sequence[str]) -> None:
    """Runs a command as a process of its own, and ends it."""
    without_pandas()
    try:
        code = main(arguments)
    except SystemExit as end:  # of the parser
        code = end.code if isinstance(end.code, int) else 0
    try:
        sys.stdout.flush()
    except BrokenPipeError:
        code = CLOSED_PIPE
    if code == CLOSED_PIPE and hasattr(signal, "SIGPIPE"):
        _end_by_closed_pipe()
    sys.exit(code)


def _end_by_closed_pipe() -> None:
    """As tools end whose output nobody reads any more, as after `| head`: in silence, by the signal for it."""
    os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
    signal.signal(signal.SIGPIPE, signal.SIG_DFL)
    os.kill(os.getpid(), signal.SIGPIPE)


if __name__ == "__main__":
    program(sys.argv[1:])
