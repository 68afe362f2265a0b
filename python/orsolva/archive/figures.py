"""The daily figures that are watched, and how large a change of each has to be to matter."""
from __future__ import annotations

from dataclasses import dataclass


@dataclass(frozen=True)
class Figure:
    """A figure of a day.

    Attributes:
        key: its name
        table: signals (one series per signal) or runs (one per station)
        sql: its value out of the table's columns
        title: for people
        unit: "" where it has none
        least, share: a step matters when it is larger than `least` plus this share of the level
        rises_when_bad: whether a larger value is worse; None when neither is
        digits: behind the point
    """

    key: str
    table: str
    sql: str
    title: str
    unit: str
    least: float
    share: float
    rises_when_bad: bool | None
    digits: int

    def matters(self, level: float) -> float:
        """How large a step from a level has to be."""
        return self.least + self.share * abs(level)


# The least sizes are what operators act on and what seasons and the sky do not do: a decibel is a connector or a cable, a
# fifth of the multipath a new surrounding, 2 % of the data an obstacle or a dying receiver.
FIGURES = (
    Figure("completeness", "signals", "cutoff_completeness_ratio", "Completeness above the cut-off", "", 0.02, 0.0, False, 4),
    Figure("snr", "signals", "strength_mean_dbhz", "SNR", "dB-Hz", 1.0, 0.0, False, 2),
    Figure("multipath", "signals", "multipath_moving_rms_m", "Multipath", "m", 0.02, 0.15, True, 3),
    Figure("slips", "signals", "slips_per_1000_observations", "Slips per 1000 observations", "", 2.0, 0.5, True, 2),
    Figure("missing", "runs", "missing_epochs / nominal_epochs::DOUBLE", "Missing epochs", "", 0.02, 0.0, True, 4),
    Figure("position", "runs", "solution_to_header_m", "Position to header", "m", 1.0, 0.25, True, 2),
    Figure("residuals", "runs", "code_residual_rms_m", "Code residuals", "m", 0.15, 0.15, True, 3),
)
BY_KEY = {figure.key: figure for figure in FIGURES}
