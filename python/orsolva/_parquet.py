"""What `orsolva qc --parquet FOLDER` runs: the tables of each input as Parquet files.

The task comes as JSON on standard input; host/cli/parquet_tables.h describes it.
"""
from __future__ import annotations

import json
import pathlib
import sys
from collections.abc import Callable
from typing import Any

import pyarrow.parquet  # noqa: F401  the command says what to install where it is missing

from ._errors import OrsolvaError
from ._report import Failure, Reports, qc_many

_GOOD, _FAILED, _VERDICT_FAILED, _INTERRUPTED = 0, 1, 3, 130


def _switch(text: str) -> bool:
    return text.lower() in ("", "true", "on", "yes", "enable", "1")


def _interval(text: str) -> float | None:
    return None if text == "auto" else float(text)


def _position(text: str) -> str | list[float]:
    return [float(part) for part in text.split(",")] if "," in text else text


def _names(text: str) -> list[str]:
    return [name.strip() for name in text.split(",") if name.strip()]


def _bytes(text: str) -> int:
    place = "KMGT".find(text[-1:]) + 1 if text else 0
    return int(text[:-1]) << 10 * place if place else int(text)


# Options of the command that are arguments of qc_many: name, and value from the text that the command has checked.
ARGUMENTS: dict[str, tuple[str, Callable[[str], Any]]] = {
    "elevation": ("elevation_deg", float),
    "interval": ("interval_s", _interval),
    "position": ("position", _position),
    "systems": ("systems", str),
    "exclude": ("exclude", _names),
    "start": ("start", str),
    "end": ("end", str),
    "sampling": ("sampling_s", float),
    "signals": ("signals", str),
    "snr-from-strength": ("snr_from_strength", _switch),
    "max-size": ("max_size", _bytes),
    "profile": ("profile", str),
    "compare": ("compare", str),
    "window": ("window", str),
    "strict": ("strict", _switch),
}
# Those that the task says otherwise.
ELSEWHERE = {"nav", "join"}


def arguments_of(options: dict[str, str]) -> dict[str, Any]:
    """The arguments of `qc_many` for options of the command; an empty text is no limit."""
    given = {name: text for name, text in options.items() if name not in ELSEWHERE}
    switches = {"snr-from-strength", "strict"}
    return {ARGUMENTS[n][0]: ARGUMENTS[n][1](text) for n, text in given.items() if text or n in switches}


def _outcomes(task: dict[str, Any]) -> Reports:
    files = [file for span in task["spans"] for file in span]
    return qc_many(
        files,
        task["navigation"] or None,
        jobs=task["jobs"] or None,
        join=task["options"].get("join", "none"),
        series=True,
        events=True,
        **arguments_of(task["options"]),
    )


def main() -> int:
    """Writes the tables. Returns the exit code of the command."""
    task = json.load(sys.stdin)
    code = _GOOD
    try:
        for name, outcome in zip(task["names"], _outcomes(task)):
            if isinstance(outcome, Failure):
                print(f"orsolva: {outcome.error}", file=sys.stderr)
                code = _FAILED
                continue
            outcome.to_parquet(pathlib.Path(task["folder"]) / name)
            if outcome.read_error is not None:
                print(f"orsolva: {outcome.read_error}", file=sys.stderr)
                code = _FAILED
            elif outcome.profile is not None and not outcome.profile.passed and code == _GOOD:
                code = _VERDICT_FAILED
    except (OrsolvaError, OSError) as error:
        print(f"orsolva: {error}", file=sys.stderr)
        return _FAILED
    except KeyboardInterrupt:
        return _INTERRUPTED
    return code


if __name__ == "__main__":
    sys.exit(main())
