"""Arguments of runs: of the right type before anything is computed. Ranges are checked by the native module."""
from __future__ import annotations

import math
import numbers
import os
from collections.abc import Sequence
from typing import Any, Union

import numpy as np
import numpy.typing as npt

from ._errors import ArgumentError, ArgumentTypeError

Position = Union[str, Sequence[float]]
Time = Union[str, np.datetime64]
Window = Union[str, float]

_FIRST_TIME = np.datetime64("1678-01-01")
_END_OF_TIMES = np.datetime64("2262-01-01")


def path_of(name: str, path: object) -> str:
    """A path as text.

    Raises:
        ArgumentTypeError: when it is no path
        ArgumentError: when it is "-", which means standard input to the command only
    """
    try:
        text = os.fspath(path)  # type: ignore[call-overload]
    except TypeError:
        raise ArgumentTypeError(f"{name}: found {type(path).__name__}, expected a path") from None
    if not isinstance(text, str):
        text = os.fsdecode(text)
    if text == "-":
        raise ArgumentError(f"{name}: standard input is read by the command only; give a file")
    if not text or "\0" in text:
        raise ArgumentError(f"{name}: found {text!r}, expected a path")
    try:
        text.encode()
    except UnicodeEncodeError:
        raise ArgumentError(f"{name}: found {text!r}, a name that is not UTF-8; rename it") from None
    return text


def real(name: str, value: object) -> float:
    """A finite number as float."""
    if isinstance(value, bool) or not isinstance(value, numbers.Real):
        raise ArgumentTypeError(f"{name}: found {type(value).__name__}, expected a number")
    number = float(value)
    if not math.isfinite(number):
        raise ArgumentError(f"{name}: found {number}, expected a finite number")
    return number


def text(name: str, value: object) -> str:
    if not isinstance(value, str):
        raise ArgumentTypeError(f"{name}: found {type(value).__name__}, expected a text")
    return value


def texts(name: str, values: object) -> list[str]:
    """A list of texts; a single text is none, as its letters would be taken one by one."""
    if isinstance(values, str) or not isinstance(values, Sequence):
        raise ArgumentTypeError(f"{name}: found {type(values).__name__}, expected a list of texts")
    return [text(name, value) for value in values]


def _position(value: object) -> str | tuple[float, ...]:
    if isinstance(value, str):
        return value
    try:
        xyz = tuple(real("position", x) for x in value)  # type: ignore[attr-defined]
    except TypeError as error:
        if isinstance(error, ArgumentTypeError):
            raise
        raise ArgumentTypeError(
            f"position: found {type(value).__name__}, expected 'spp', 'header' or (x, y, z) in metres"
        ) from None
    if len(xyz) != 3:
        raise ArgumentError(f"position: found {len(xyz)} numbers, expected x, y, z in metres")
    return xyz


def _flag(name: str, value: object) -> bool:
    if not isinstance(value, bool):
        raise ArgumentTypeError(f"{name}: found {type(value).__name__}, expected True or False")
    return value


def _size(value: object) -> int:
    if isinstance(value, bool) or not isinstance(value, int):
        raise ArgumentTypeError(f"max_size: found {type(value).__name__}, expected a number of bytes")
    if not 1 <= value < 2**63:
        raise ArgumentError(f"max_size: found {value}, expected a number of bytes")
    return value


def nanoseconds(name: str, time: np.datetime64) -> int:
    """A time as nanoseconds since 1970."""
    if np.isnat(time):
        raise ArgumentError(f"{name}: found no time")
    return int(in_nanoseconds(name, np.asarray(time)).astype(np.int64))


def in_nanoseconds(name: str, times: npt.NDArray[np.datetime64]) -> npt.NDArray[np.datetime64]:
    """Times in nanoseconds, of which 64 bits hold the years 1678 to 2261. NumPy takes others for times within them, or
    raises an error without their name."""
    wrong = _out_of_range(times)
    if wrong.any():
        raise ArgumentError(f"{name}: found {times[wrong][0]}, expected times from 1678 to 2261")
    return times.astype("datetime64[ns]")


def _out_of_range(times: npt.NDArray[np.datetime64]) -> npt.NDArray[np.bool_]:
    # Units that are finer than nanoseconds have a shorter range.
    if np.datetime_data(times.dtype)[0] in ("ps", "fs", "as"):
        return np.zeros(times.shape, np.bool_)
    try:
        return (times < _FIRST_TIME) | (times >= _END_OF_TIMES)
    except OverflowError:  # years of more digits than days have
        return np.ones(times.shape, np.bool_)


def _limit(name: str, value: object) -> str | int:
    if isinstance(value, np.datetime64):
        return nanoseconds(name, value)
    if not isinstance(value, str):
        raise ArgumentTypeError(f"{name}: found {type(value).__name__}, expected a text or datetime64, GPS time")
    return value


def _signals(name: str, value: object) -> str:
    """The text that the command takes: names of all systems first, as a letter holds for those that follow it."""
    if isinstance(value, str):
        return value
    names = texts(name, value)
    of_all = [one for one in names if not one[:1].isalpha()]
    of_one = [f"{one[:1]}:{one[1:].lstrip(':')}" for one in names if one[:1].isalpha()]
    return ",".join(of_all + of_one)


def _window(value: object) -> str:
    return value if isinstance(value, str) else repr(real("window", value))


def run_arguments(**given: Any) -> dict[str, Any]:
    """The arguments of a run, of the types that the native module takes."""
    makers = {
        "elevation_deg": lambda v: real("elevation_deg", v),
        "interval_s": lambda v: real("interval_s", v),
        "position": _position,
        "systems": lambda v: text("systems", v),
        "exclude": lambda v: texts("exclude", v),
        "profile": lambda v: path_of("profile", v),
        "snr_from_strength": lambda v: _flag("snr_from_strength", v),
        "start": lambda v: _limit("start", v),
        "end": lambda v: _limit("end", v),
        "sampling_s": lambda v: real("sampling_s", v),
        "signals": lambda v: _signals("signals", v),
        "window": _window,
        "figures": lambda v: text("figures", v),
        "compare": lambda v: v if isinstance(v, tuple) else path_of("compare", v),
        "strict": lambda v: _flag("strict", v),
        "max_size": _size,
    }
    return {name: None if value is None else makers[name](value) for name, value in given.items()}


def kept_arguments(
    page: object,
    series: object,
    events: object,
    detail: object,
    detail_satellites: object,
    detail_signals: object,
) -> dict[str, Any]:
    """What a run keeps besides the figures."""
    kept: dict[str, Any] = {
        "page": _flag("page", page),
        "series": _flag("series", series),
        "events": _flag("events", events),
        "detail": _flag("detail", detail),
    }
    if detail_satellites is not None:
        kept["detail_satellites"] = ",".join(texts("detail_satellites", detail_satellites))
    if detail_signals is not None:
        kept["detail_signals"] = _signals("detail_signals", detail_signals)
    return kept
