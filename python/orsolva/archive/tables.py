"""The tables of a store: their columns, what each means, and the order of rows.

Times are GPS time. Figures have the names, units and values that the report has; `orsolva.explain(NAME)` says how each
is computed. A figure without data is null.
"""
from __future__ import annotations

from collections.abc import Sequence
from typing import Any, NamedTuple

import numpy as np
import pyarrow as pa


class Column(NamedTuple):
    """A column: its name, its type by a letter (see TYPES), and what it holds."""

    name: str
    type: str
    text: str


TYPES = {
    "text": pa.string(),
    "whole": pa.int64(),
    "real": pa.float64(),
    "yes": pa.bool_(),
    "date": pa.date32(),
    "time": pa.timestamp("ms"),
    "texts": pa.list_(pa.string()),
    "reals": pa.list_(pa.float64()),
}


def _figures(kind: str, names: str) -> list[Column]:
    """Columns that a report has under the same name."""
    return [Column(name, kind, "") for name in names.split()]


KEY = [
    Column("run_id", "text", "the run that the row is of: first 16 hexadecimal digits of the SHA-256 of what was judged and how"),
    Column("station", "text", "from the file name: nine characters, or four of a short name"),
    Column("date", "date", "day on which the data begin, from the file name"),
]

_SLIPS = "sure_slips unsure_slips half_cycle_slips phase_jumps tested_steps arcs"
_COMPLETENESS = "horizon_expected_epochs horizon_observed_epochs cutoff_expected_epochs cutoff_observed_epochs"
_RATIOS = "horizon_completeness_ratio cutoff_completeness_ratio"

TABLES: dict[str, list[Column]] = {
    "systems": [
        *KEY,
        Column("system", "text", "letter of the satellite system"),
        *_figures("whole", f"satellites_tracked satellites_without_orbit satellites_never_observed {_COMPLETENESS} {_SLIPS}"),
        *_figures("whole", "loss_of_lock_flags interruptions_of_signals interruptions_of_satellites interruptions_of_receiver"),
        *_figures("real", f"{_RATIOS} observations_per_slip slips_per_1000_observations median_arc_s"),
        *_figures("real", "roti_median_tecu_min roti_p95_tecu_min disturbed_minutes"),
        Column("combination", "texts", "signals that the library found best"),
        *_figures("whole", "expected_epochs observed_epochs phase_geometry_slip_epochs mp_restart_epochs"),
        *_figures("real", "completeness_ratio observations_per_restart mp_worst_rms_m"),
    ],
    "signals": [
        *KEY,
        Column("system", "text", "letter of the satellite system"),
        Column("signal", "text", "band and attribute of RINEX, such as 1C"),
        Column("band", "text", "carrier by its usual name; null for signals that the library does not judge"),
        Column("multipath_partner", "text", "signal of the other carrier in the multipath combination"),
        *_figures("whole", f"signal_satellites code_values phase_values {_COMPLETENESS} {_SLIPS}"),
        *_figures("whole", "strength_drops multipath_values loss_of_lock_flags"),
        *_figures("whole", "interruptions_of_signals interruptions_of_satellites"),
        *_figures("real", f"{_RATIOS} strength_mean_dbhz strength_p5_dbhz multipath_moving_rms_m multipath_arc_rms_m"),
        *_figures("real", "code_noise_m phase_noise_mm observations_per_slip slips_per_1000_observations"),
        *_figures("whole", "expected_epochs observed_epochs mp_values mp_restart_epochs phase_geometry_slip_epochs"),
        *_figures("real", "completeness_ratio mp_rms_m observations_per_restart"),
        *_figures("real", "snr_mean_dbhz snr_mean_below_30deg_dbhz snr_mean_above_30deg_dbhz"),
    ],
    "satellites": [
        *KEY,
        Column("satellite", "text", "RINEX name, such as G05"),
        Column("state", "text", "what the library made of it: judged, unhealthy, ..."),
        *_figures("time", "first_epoch last_epoch"),
        Column("lacking_signals", "texts", "signals that most satellites of the block have and this one lacks"),
        *_figures("yes", "has_orbit"),
        *_figures("whole", f"tracked_epochs {_COMPLETENESS} {_SLIPS} satellite_clock_events"),
        *_figures("real", f"highest_elevation_deg {_RATIOS} observations_per_slip"),
        *_figures("whole", "expected_epochs observed_epochs phase_geometry_slip_epochs mp_restart_epochs"),
        *_figures("real", "completeness_ratio mp_worst_rms_m"),
    ],
    "bands": [
        *KEY,
        Column("satellite", "text", "RINEX name, such as G05"),
        Column("band", "text", "carrier by its usual name"),
        *_figures("real", "mp_rms_m snr_mean_dbhz snr_mean_below_30deg_dbhz snr_mean_above_30deg_dbhz iono_rms_cycles"),
    ],
    "events": [
        *KEY,
        Column("time", "time", "epoch of the event"),
        Column("satellite", "text", "null: the receiver as a whole"),
        Column("kind", "text", "slips and events of clocks and power; see events.md"),
        Column("elevation_deg", "real", "at that epoch"),
        Column("signals", "texts", "signals concerned"),
        Column("size_cycles", "reals", "one per signal, in the order of signals"),
        Column("clock_size_ms", "real", "of clock events"),
        Column("is_slip", "yes", "whether phases are broken"),
        Column("sure", "yes", "no other explanation comes near"),
        Column("gap_s", "real", "length of the hole in the data before it"),
        Column("loss_of_lock", "yes", "the receiver flagged one of the signals"),
        Column("evidence", "text", "what the decision rests on"),
    ],
}

RUNS = [
    *KEY,
    Column("start", "time", "begin of the file, from its name"),
    Column("name", "text", "the file's name without the endings of compression: a file of the same name replaces this run"),
    Column("source", "text", "path or address that was judged"),
    Column("source_size", "whole", "bytes"),
    Column("source_id", "text", "what identifies the content: modification time, ETag or SHA-256"),
    Column("navigation", "texts", "navigation files used"),
    Column("orsolva_version", "text", "that judged"),
    Column("settings_id", "text", "of the settings in store.json"),
    Column("state", "text", "judged; incomplete, when the file ends early; failed, when there is no report"),
    Column("error", "text", "why it is incomplete or failed"),
    Column("rinex_version", "real", "version of the format of the file"),
    *[Column(name, "text", "from the header") for name in ("marker", "receiver", "receiver_firmware", "receiver_serial")],
    *[Column(name, "text", "from the header") for name in ("antenna", "radome", "antenna_serial")],
    Column("antenna_height_m", "real", "from the header"),
    *_figures("time", "first_epoch last_epoch"),
    *_figures("real", "interval_s"),
    *_figures("whole", "epochs judged_epochs lost_epochs nominal_epochs present_epochs missing_epochs data_gaps"),
    *[Column(f"{axis}_m", "real", "position of the analysis, else of the library; Earth-centred, Earth-fixed") for axis in "xyz"],
    *_figures("real", "solution_to_header_m"),
    Column("position_source", "text", "of the library's run"),
    *_figures("real", "cutoff_completeness_ratio code_residual_rms_m pdop_median receiver_clock_drift_s_per_s"),
    *_figures("whole", "cycle_slips tested_steps receiver_clock_resets receiver_restarts contradictions"),
    *_figures("real", "gps_mp1_rms_m gps_mp2_rms_m observations_per_slip"),
    Column("completeness_ratio", "real", "of the library's headline"),
    Column("mp1_rms_m", "real", "of the library's headline"),
    Column("mp2_rms_m", "real", "of the library's headline"),
    Column("verdict", "text", "good, fair or poor"),
    Column("verdict_text", "text", "what the report says in one line"),
    Column("profile_passed", "yes", "null without a profile"),
    Column("notices", "whole", "oddities of the input"),
    *[Column(f"{table}_rows", "whole", f"rows of this run in {table}") for table in TABLES],
]

ALL_TABLES = {**TABLES, "runs": RUNS}


def text_of(column: Column) -> str:
    """What a column holds: of figures, the title of the report's own explanation and the unit."""
    if column.text:
        return column.text
    from .. import explain

    name, _, title, *_ = explain(column.name).split("\n")
    unit = name.partition("[")[2].rstrip("]")
    return title if unit in ("", "1") else f"{title} [{unit}]"


def schema_of(table: str) -> pa.Schema:
    """The types of a table's columns."""
    return pa.schema([pa.field(column.name, TYPES[column.type]) for column in ALL_TABLES[table]])


def fitted(table: str, columns: dict[str, Any], rows: int) -> pa.Table:
    """A table with its own columns and types out of arrays by name; what is not there is null."""
    arrays = []
    for field in schema_of(table):
        values = columns.get(field.name)
        if values is None:
            arrays.append(pa.nulls(rows, field.type))
            continue
        array = values if isinstance(values, (pa.Array, pa.ChunkedArray)) else pa.array(values, field.type)
        if array.type != field.type:
            array = array.cast(field.type, safe=False)
        arrays.append(array)
    return pa.table(arrays, schema=schema_of(table))


def in_order(table: pa.Table, run_ids: Sequence[str]) -> pa.Table:
    """The rows of the runs named, in the order of the runs; rows of one run keep theirs."""
    import pyarrow.compute as pc

    places = pc.index_in(table["run_id"], value_set=pa.array(run_ids, pa.string()))
    ranks = np.asarray(pc.fill_null(places, len(run_ids)).combine_chunks())
    order = np.argsort(ranks, kind="stable")
    return table.take(pa.array(order[: int((ranks < len(run_ids)).sum())])).combine_chunks()
