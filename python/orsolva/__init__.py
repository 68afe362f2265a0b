"""Quality of GNSS observations: judge files, read them, check your own data.

    import orsolva

    report = orsolva.qc("station.crx.gz")
    print(report.to_text())

See docs/user/python.md for recipes.
"""
from __future__ import annotations

from ._checker import Checker
from ._core import library_version
from ._errors import (
    ArgumentError,
    ArgumentTypeError,
    EarlierReportError,
    FileError,
    OrsolvaError,
    ProfileError,
    RunError,
    ScenarioError,
)
from ._navigation import Navigation, read_nav
from ._observations import Header, Observations, iter_obs, read_obs
from ._records import (
    AnalysisFigures,
    Comparison,
    Finding,
    Headline,
    LibraryHeadline,
    LibraryRun,
    LibraryTotal,
    ProfileVerdict,
    Record,
    RunFacts,
    StreamFacts,
    Verdict,
)
from ._report import DataLostWarning, Failure, Library, Report, Reports, explain, figure_keys, qc, qc_many
from ._simulation import Day, compare, presets, simulate
from ._table import Table

__version__: str = library_version.lstrip("V")

__all__ = [
    "AnalysisFigures",
    "ArgumentError",
    "ArgumentTypeError",
    "Checker",
    "Comparison",
    "DataLostWarning",
    "Day",
    "EarlierReportError",
    "Failure",
    "FileError",
    "Finding",
    "Header",
    "Headline",
    "Library",
    "LibraryHeadline",
    "LibraryRun",
    "LibraryTotal",
    "Navigation",
    "Observations",
    "OrsolvaError",
    "ProfileError",
    "ProfileVerdict",
    "Record",
    "Report",
    "Reports",
    "RunError",
    "RunFacts",
    "ScenarioError",
    "StreamFacts",
    "Table",
    "Verdict",
    "compare",
    "explain",
    "figure_keys",
    "iter_obs",
    "library_version",
    "presets",
    "qc",
    "qc_many",
    "read_nav",
    "read_obs",
    "simulate",
]
