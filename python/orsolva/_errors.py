"""Exceptions of the package. Every message says what was found and what the caller can do."""
from __future__ import annotations


class OrsolvaError(Exception):
    """Base of every exception that the package raises itself."""


class FileError(OrsolvaError, OSError):
    """A file that cannot be read.

    Attributes:
        file: path as it was given
        line: line of the cause, from 1; None where no line is meant
        found: what was there
        expected: what should have been there; empty when `found` says everything
        advice: what to do
    """

    file: str
    line: int | None
    found: str
    expected: str
    advice: str

    def __init__(
        self,
        message: str,
        file: str = "",
        line: int | None = None,
        found: str = "",
        expected: str = "",
        advice: str = "",
    ) -> None:
        super().__init__(message)
        self.file = file
        self.line = line
        self.found = found
        self.expected = expected
        self.advice = advice

    def __reduce__(self) -> tuple[type[FileError], tuple[str, str, int | None, str, str, str]]:
        return type(self), (str(self), self.file, self.line, self.found, self.expected, self.advice)


class RunError(OrsolvaError, RuntimeError):
    """A run that came to no result: what happened and what to do."""


class ProfileError(OrsolvaError, ValueError):
    """A profile of limits that does not exist or cannot be used."""


class EarlierReportError(OrsolvaError, ValueError):
    """An earlier report, or a folder of them, that cannot be read or is not of the station."""


class ScenarioError(OrsolvaError, ValueError):
    """A scenario that cannot be simulated: which setting, what it holds, what is allowed."""


class ArgumentError(OrsolvaError, ValueError):
    """An argument out of its range, of the wrong shape, unit or order. Nothing has been computed."""


class ArgumentTypeError(ArgumentError, TypeError):
    """An argument of the wrong type. Nothing has been computed."""
