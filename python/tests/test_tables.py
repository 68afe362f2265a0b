"""Tables: views without a copy, Arrow round trips through the libraries that are installed."""
import gc

import numpy as np
import pytest

import orsolva


@pytest.fixture(scope="module")
def table(day):
    return day.observations.table


def test_numbers_are_read_only_views_without_a_copy(table):
    column = table["pseudorange_m"]
    assert column.dtype == np.float64 and not column.flags.writeable
    assert np.shares_memory(column, table["pseudorange_m"])
    with pytest.raises(ValueError, match="read-only"):
        column[0] = 1
    times = table["time"]
    assert times.dtype == np.dtype("datetime64[ns]") and np.shares_memory(times, table["time"])


def test_columns_outlive_their_table():
    day = orsolva.simulate(hours=0.1)
    column, codes = day.observations.table["phase_cycles"], day.observations.table.codes("satellite")[0]
    stream = day.observations.table.__arrow_c_stream__()
    before = column.copy()
    del day
    gc.collect()
    assert np.array_equal(column, before, equal_nan=True) and codes.min() >= 0
    del stream


def test_unknown_columns_are_named(table):
    with pytest.raises(KeyError, match="no_such"):
        table["no_such"]
    with pytest.raises(KeyError, match="names"):
        table.codes("time")
    assert "time" in table and "no_such" not in table and list(table) == table.column_names


def test_pyarrow_shares_the_memory_and_gives_the_same_values(table):
    pa = pytest.importorskip("pyarrow")
    arrow = pa.table(table)
    assert arrow.num_rows == len(table) and arrow.column_names == table.column_names
    address = arrow["pseudorange_m"].chunk(0).buffers()[1].address
    assert address == table["pseudorange_m"].__array_interface__["data"][0]
    assert arrow.schema.field("time").type == pa.timestamp("ns")
    assert arrow.schema.field("time").metadata == {b"time_scale": b"GPST"}
    assert pa.types.is_dictionary(arrow.schema.field("satellite").type)
    assert arrow["satellite"].to_pylist() == table["satellite"].tolist()
    missing = np.isnan(table["doppler_hz"])
    assert arrow["doppler_hz"].null_count == missing.sum()
    arrow.validate(full=True)


def test_every_table_of_a_report_is_valid_arrow(report):
    pa = pytest.importorskip("pyarrow")
    tables = report.tables()
    assert len(tables) >= 20
    for name, one in tables.items():
        arrow = pa.table(one)
        arrow.validate(full=True)
        assert arrow.num_rows == len(one), name
        for column in one:
            values = arrow[column].to_pylist()
            assert len(values) == len(one[column]), (name, column)
            missing = sum(value is None for value in values)
            found = sum(v is None or v != v for v in one[column].tolist()) if one[column].dtype.kind != "M" else np.isnat(one[column]).sum()
            assert missing == found, (name, column)


def test_lists_and_texts_survive(report):
    pa = pytest.importorskip("pyarrow")
    events = pa.table(report.events)
    assert events["signals"].to_pylist() == report.events["signals"].tolist()
    assert events["size_cycles"].to_pylist() == report.events["size_cycles"].tolist()
    assert events["kind"].to_pylist() == report.events["kind"].tolist()


def test_polars_takes_a_table(table, report):
    pytest.importorskip("polars")
    frame = table.to_polars()
    assert frame.height == len(table)
    assert frame["satellite"].cast(str).to_list() == table["satellite"].tolist()
    assert frame["snr_dbhz"].to_numpy().tolist() == table["snr_dbhz"].tolist()
    assert report.events.to_polars()["signals"].to_list() == report.events["signals"].tolist()


def test_pandas_needs_no_pyarrow(table):
    pytest.importorskip("pandas")
    frame = table.to_pandas()
    assert list(frame.columns) == table.column_names and len(frame) == len(table)
    assert frame["satellite"].astype(str).tolist() == table["satellite"].tolist()
    assert frame["time"].dtype == np.dtype("datetime64[ns]")


def test_duckdb_and_nanoarrow_take_a_table(table):
    duckdb = pytest.importorskip("duckdb")
    nanoarrow = pytest.importorskip("nanoarrow")
    rows = table  # noqa: F841, found by its name in the query
    found = duckdb.sql("select count(*), count(doppler_hz), max(pseudorange_m) from rows").fetchall()[0]
    assert found == (len(table), int((~np.isnan(table["doppler_hz"])).sum()), np.nanmax(table["pseudorange_m"]))
    assert sum(len(batch) for batch in nanoarrow.ArrayStream(table)) == len(table)


def test_empty_tables_are_tables(report):
    pa = pytest.importorskip("pyarrow")
    outcomes = report.outcomes
    assert len(outcomes) == 0 and outcomes["value"].shape == (0,)
    assert pa.table(outcomes).num_rows == 0 and outcomes.to_dicts() == []


def test_a_missing_package_is_named_with_the_line_that_installs_it(table, monkeypatch):
    import sys

    monkeypatch.setitem(sys.modules, "polars", None)
    with pytest.raises(ImportError, match="pip install polars"):
        table.to_polars()


def test_importing_the_package_imports_nothing_but_numpy():
    import subprocess
    import sys

    code = "import orsolva, sys; print([m for m in ('pandas','polars','pyarrow','xarray','matplotlib') if m in sys.modules])"
    done = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, check=True)
    assert done.stdout.strip() == "[]"
