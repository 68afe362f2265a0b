"""Own data: however they are split the same bits as from the file; wrong data are refused as a whole."""
import json
import re
import subprocess
import sys
import time as clock

import numpy as np
import pytest

import orsolva


def body(report):
    """Everything that does not name the source."""
    value = report.to_dict(satellites=True)
    for name in ("notices", "further_notices"):
        value.pop(name)
    for name in ("observation_file", "navigation_files", "rinex_version", "marker", "receiver", "antenna"):
        value["run"].pop(name)
    return json.dumps(value)


def arrays(table):
    names = ("time", "satellite", "signal", "pseudorange_m", "phase_cycles", "snr_dbhz")
    return [table[name] for name in names]


def checked(day, pieces, **arguments):
    time, satellites, signals, ranges, phases, snr = arrays(day.observations.table)
    locks = day.observations.table["loss_of_lock"]
    with orsolva.Checker(day.navigation, interval_s=30, **arguments) as run:
        for here in pieces:
            run.push(time[here], satellites[here], signals[here], ranges[here], phases[here], snr[here], loss_of_lock=locks[here])
        return run.report()


def epoch_slices(time, epochs):
    edges = np.flatnonzero(np.diff(time).astype(np.int64)) + 1
    starts = np.concatenate([[0], edges])[::epochs]
    return [slice(a, b) for a, b in zip(starts, [*starts[1:], len(time)])]


@pytest.fixture(scope="module")
def clean():
    return orsolva.simulate("slips", seed=3, hours=2)


@pytest.fixture(scope="module")
def whole(clean):
    return checked(clean, [slice(None)])


@pytest.mark.parametrize("epochs", [1, 30, 2880])
def test_any_split_gives_the_same_bits(clean, whole, epochs):
    time = clean.observations.table["time"]
    assert checked(clean, epoch_slices(time, epochs)).to_json() == whole.to_json()


def test_splits_within_an_epoch_give_the_same_bits(clean, whole):
    rows = len(clean.observations.table)
    pieces = [slice(a, a + 17) for a in range(0, rows, 17)]
    assert checked(clean, pieces).to_json() == whole.to_json()


def test_the_file_gives_the_same_figures(clean, tmp_path):
    observations, navigation, _ = clean.write(tmp_path)
    read = orsolva.read_obs(observations, flags=True)
    from_file = orsolva.qc(observations, navigation)
    with orsolva.Checker(navigation, header=read, name=str(observations)) as run:
        run.push_table(read)
        from_table = run.report()
    assert body(from_table) == body(from_file)
    assert from_table.to_html() and from_table.events.to_dicts() == from_file.events.to_dicts()


@pytest.mark.parametrize("package", ["pyarrow", "polars", "pandas", "duckdb", "nanoarrow"])
def test_arrow_tables_of_others_are_taken(clean, whole, package):
    module = pytest.importorskip(package)
    table = clean.observations.table
    if package == "pyarrow":
        other = module.table(table)
        other = module.concat_tables([other.slice(0, 5000), other.slice(5000)])
    elif package == "polars":
        other = table.to_polars().with_columns(module.col("satellite").cast(str))
    elif package == "duckdb":
        pytest.importorskip("pyarrow")
        rows = table  # noqa: F841, found by its name in the query
        other = module.sql("select * exclude (loss_of_lock), loss_of_lock from rows").to_arrow_table()
    elif package == "nanoarrow":
        other = module.ArrayStream(table).read_all()
    else:
        pytest.importorskip("pyarrow")
        other = table.to_pandas()
    with orsolva.Checker(clean.navigation, interval_s=30) as run:
        run.push_table(other)
        assert run.report().to_json() == whole.to_json()


def test_without_navigation_there_is_what_needs_none(clean):
    with orsolva.Checker(interval_s=30) as run:
        run.push_table(clean.observations)
        report = run.report()
    assert report.library.run.absence["id"] == "no-navigation" and not report.analysis.with_orbits
    assert report.analysis.present_epochs == 240 and len(report.signals) > 5


T = np.datetime64("2020-06-25T00:00:00", "ns")


@pytest.mark.parametrize(
    ("arguments", "words"),
    [
        ((T, ["G01"], ["1C"], [2e7, 2e7]), "pseudorange: found 2"),
        ((T, ["G01"], ["1C", "2W"], [2e7]), "signals"),
        (([T, T], ["G01"], ["1C"], [2e7]), "time: found 2"),
        ((3.0, ["G01"], ["1C"], [2e7]), "time: found float64"),
        ((np.datetime64("NaT", "ns"), ["G01"], ["1C"], [2e7]), "time"),
        ((np.datetime64("3000-01-01T00:00:00", "s"), ["G01"], ["1C"], [2e7]), "time: found 3000-01-01T00:00:00, expected times from 1678"),
        ((np.array(["2020-06-25", "1600-01-01"], "M8[D]"), ["G01", "G02"], ["1C", "1C"], [2e7, 2e7]), "time: found 1600-01-01"),
        ((T, ["X01"], ["1C"], [2e7]), "satellites: found 'X01'"),
        ((T, [1], ["1C"], [2e7]), "satellites: found int64"),
        ((T, ["G01"], ["L1"], [2e7]), "signals: found 'L1'"),
        ((T, ["G01"], ["1C"], [2e4]), "metres"),
        ((T, ["G01"], ["1C"], ["a"]), "pseudorange"),
        ((T, ["G01"], ["1C"], [np.inf]), "infinite"),
        ((T, ["G01"], ["1C"], [[2e7]]), "dimensions"),
        ((T, ["G01"], ["1C"], [2e7], None, [4e4]), "dB-Hz"),
        ((T, ["G01", "G01"], ["1C", "1C"], [2e7, 2e7]), "again"),
        ((T, ["G01", "G02", "G01"], ["1C", "1C", "2W"], [2e7, 2e7, 2e7]), "follow each other"),
        (([T, T - np.timedelta64(1, "s")], ["G01", "G01"], ["1C", "1C"], [2e7, 2e7]), "order of time"),
    ],
)
def test_wrong_rows_are_refused_as_a_whole(arguments, words):
    with orsolva.Checker(interval_s=30) as run:
        with pytest.raises(orsolva.ArgumentError, match=words):
            run.push(*arguments)
        run.push(T, ["G01", "G01"], ["1C", "2W"], [2e7, 2e7])
        assert run.report().run.epochs == 1


def test_order_holds_over_calls():
    with orsolva.Checker(interval_s=30) as run:
        run.push(T, ["G01"], ["1C"], [2e7])
        with pytest.raises(orsolva.ArgumentError, match="order of time"):
            run.push(T - np.timedelta64(30, "s"), ["G01"], ["1C"], [2e7])
        with pytest.raises(orsolva.ArgumentError, match="again"):
            run.push(T, ["G01"], ["1C"], [2e7])


def test_columns_of_the_wrong_type_are_named(clean):
    pa = pytest.importorskip("pyarrow")
    good = pa.table(clean.observations.table)
    for name, wrong, words in [
        ("time", pa.array(range(good.num_rows)), "timestamp"),
        ("satellite", pa.array(range(good.num_rows)), "texts"),
        ("pseudorange_m", pa.array(["a"] * good.num_rows), "numbers"),
    ]:
        with orsolva.Checker(interval_s=30) as run, pytest.raises(orsolva.ArgumentError, match=words):
            run.push_table(good.set_column(good.column_names.index(name), name, wrong))
    with orsolva.Checker(interval_s=30) as run:
        with pytest.raises(orsolva.ArgumentError, match="no column 'signal'"):
            run.push_table(good.drop_columns(["signal"]))
        with pytest.raises(orsolva.ArgumentTypeError, match="__arrow_c_stream__"):
            run.push_table([1, 2])


@pytest.mark.parametrize("unit", ["s", "ms", "us", "ns"])
def test_times_of_arrow_are_those_of_gps_and_fit_into_nanoseconds(unit):
    """A time zone means UTC. The year 3000 is no time in nanoseconds."""
    pa = pytest.importorskip("pyarrow")
    second = {"s": 1, "ms": 10**3, "us": 10**6, "ns": 10**9}[unit]
    rows = {"satellite": ["G01"], "signal": ["1C"], "pseudorange_m": [2e7]}

    def push(run, value, zone=None):
        run.push_table(pa.table({"time": pa.array([value], pa.timestamp(unit, zone)), **rows}))

    with orsolva.Checker(interval_s=30) as run:
        for zone in ("UTC", "Europe/Berlin"):
            with pytest.raises(orsolva.ArgumentError, match="time: .* without a time zone"):
                push(run, 1593043200 * second, zone)
        for wrong in (32503680000, -11676096000) if unit != "ns" else ():
            with pytest.raises(orsolva.ArgumentError, match="time: row 0 is not within the years 1678 to 2261"):
                push(run, wrong * second)
        push(run, 1593043200 * second)
        assert run.report().run.first_epoch_gpst.startswith("2020-06-25 00:00:00")


def test_a_finished_checker_takes_no_more():
    run = orsolva.Checker(interval_s=30)
    run.push(T, ["G01", "G01"], ["1C", "2W"], [2e7, 2e7])
    assert run.report() is run.report()
    with pytest.raises(orsolva.RunError, match="another one"):
        run.push(T, ["G01"], ["1C"], [2e7])
    run.close()
    empty = orsolva.Checker()
    with pytest.raises(orsolva.RunError, match="no epoch"):
        empty.report()


def test_an_error_of_the_run_comes_out(tmp_path, clean):
    table = clean.observations.table
    run = orsolva.Checker(tmp_path / "none.rnx")
    with pytest.raises(orsolva.FileError):
        run.push_table(table)
        run.report()


def test_detail_comes_batch_by_batch(clean):
    tables = []
    run = orsolva.Checker(clean.navigation, interval_s=30, detail=True, series=True)
    run.on_detail = tables.append
    for here in epoch_slices(clean.observations.table["time"], 60):
        table = clean.observations.table
        run.push(*(table[name][here] for name in ("time", "satellite", "signal", "pseudorange_m", "phase_cycles", "snr_dbhz")))
    report = run.report()
    assert tables and [row for table in tables for row in table.to_dicts()] == report.detail.to_dicts()
    assert tables[0].column_names == report.detail.column_names and len(report.series) > 0


@pytest.fixture(scope="module")
def long():
    """More epochs than a batch holds."""
    return orsolva.simulate("quiet", hours=1.75, interval_s=1, systems="G")


def test_detail_is_there_before_the_end(long):
    tables = []
    with orsolva.Checker(long.navigation, interval_s=1) as run:
        run.on_detail = tables.append
        time = long.observations.table["time"]
        rows = [long.observations.table[name] for name in ("time", "satellite", "signal", "pseudorange_m", "phase_cycles", "snr_dbhz")]
        for here in epoch_slices(time, 600):
            run.push(*(column[here] for column in rows))
        while not tables:  # push raises once the judging has ended, whatever its speed
            run.push(time[:0], [], [])
            clock.sleep(0.01)
        before_the_end = len(tables)
        run.report()
    assert 1 <= before_the_end < len(tables) == 6  # 2,880 epochs and five times up to 720


def test_what_on_detail_raises_comes_out(clean):
    run = orsolva.Checker(clean.navigation, interval_s=30)

    def refuse(table):
        raise ZeroDivisionError(len(table))

    run.on_detail = refuse
    run.push_table(clean.observations)
    with pytest.raises(ZeroDivisionError):
        run.report()
    assert run.report().run.epochs == 240


def test_on_detail_is_set_before_the_rows(clean):
    run = orsolva.Checker(interval_s=30)
    with pytest.raises(orsolva.ArgumentTypeError, match="on_detail"):
        run.on_detail = 3
    assert run.on_detail is None
    run.push(T, ["G01", "G01"], ["1C", "2W"], [2e7, 2e7])
    with pytest.raises(orsolva.RunError, match="before the first rows"):
        run.on_detail = print
    run.close()


def test_selections_apply_to_own_data(clean, tmp_path):
    observations, navigation, _ = clean.write(tmp_path)
    settings = {"start": "00:20", "sampling_s": 60, "signals": "G:1C,2W", "window": "30m"}
    from_file = orsolva.qc(observations, navigation, **settings)
    read = orsolva.read_obs(observations, flags=True)
    with orsolva.Checker(navigation, header=read, name=str(observations), **settings) as run:
        run.push_table(read)
        assert body(run.report()) == body(from_file)


def test_an_interrupted_push_ends_the_run():
    script = """
import os, signal, sys, threading, time
import orsolva
day = orsolva.simulate("quiet", hours=12, interval_s=2, systems="G")
run = orsolva.Checker(day.navigation, interval_s=2)
threading.Timer(0.05, os.kill, (os.getpid(), signal.SIGINT)).start()
try:
    run.push_table(day.observations)
    time.sleep(5)
except KeyboardInterrupt:
    for call in (run.report, lambda: run.push_table(day.observations)):
        try:
            print("a report of", call().run.epochs)
        except orsolva.RunError as error:
            print(error)
"""
    done = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True)
    assert done.returncode == 0, done.stderr
    assert "another one" in done.stdout and "a report" not in done.stdout


def test_a_closed_checker_has_no_report():
    run = orsolva.Checker(interval_s=30)
    run.close()
    with pytest.raises(orsolva.RunError, match="closed"):
        run.report()


@pytest.fixture(scope="module")
def parted(tmp_path_factory):
    """Five hours at 3 s, three batches of the library, with the records from the third hour on in a file of their own."""
    folder = tmp_path_factory.mktemp("parted")
    day = orsolva.simulate("slips", seed=5, hours=5, interval_s=3, systems="GR", start="2026-01-01")
    observations, navigation, _ = day.write(folder)
    head, end, body_text = navigation.read_text().partition("END OF HEADER")
    first, _, records = body_text.partition("\n")
    parts = {"early": [], "late": []}
    for record in re.split(r"(?m)^(?=[A-Z]\d\d )", records):
        is_late = record[4:17] >= "2026 01 01 03"
        parts["late" if is_late else "early"].append(record)
    paths = {}
    for name, some in parts.items():
        assert len(some) > 20
        paths[name] = folder / f"{name}.rnx"
        paths[name].write_text(head + end + first + "\n" + "".join(some))
    return orsolva.read_obs(observations, flags=True).table, paths, navigation


def with_records(table, nav, later, epoch, pieces=None):
    """The report when further records are given before an epoch. @param later  files, each in a call of its own"""
    time = table["time"]
    edges = np.concatenate([[0], np.flatnonzero(np.diff(time).astype(np.int64)) + 1])
    here = edges[epoch] if epoch < len(edges) else len(time)
    columns = [*arrays(table), table["loss_of_lock"]]
    with orsolva.Checker(nav, interval_s=3) as run:
        for number, part in enumerate((slice(0, here), slice(here, len(time)))):
            for more in later if number == 1 else []:
                run.add_navigation(more)
            rows = part.stop - part.start
            for begin in range(part.start, part.stop, pieces or max(1, rows)):
                some = [column[begin : min(part.stop, begin + (pieces or rows))] for column in columns]
                run.push(*some[:6], loss_of_lock=some[6])
        return run.report()


def hours_of(report):
    """Epochs above the cut-off, of all satellites."""
    return sum(row["cutoff_observed_epochs"] or 0 for row in report.satellites.to_dicts())


def test_records_added_before_the_first_epoch_are_as_good_as_those_of_the_beginning(parted):
    table, paths, navigation = parted
    whole = with_records(table, navigation, [], 0)
    assert with_records(table, None, [navigation], 0).to_json() == whole.to_json()
    assert body(with_records(table, None, [paths["early"], orsolva.read_nav(paths["late"])], 0)) == body(whole)


# The late records are nearer than the early ones from epoch 3,450 on; 3,000 is within the second batch of the library.
@pytest.mark.parametrize("epoch", [1, 700, 2879, 3000])
def test_records_added_before_the_epochs_they_concern_give_the_same_figures(parted, epoch):
    table, paths, _ = parted
    whole = with_records(table, [paths["early"], paths["late"]], [], 0)
    assert body(with_records(table, paths["early"], [paths["late"]], epoch)) == body(whole)


def test_records_given_again_and_calls_split_otherwise_change_nothing(parted):
    table, paths, navigation = parted
    once = with_records(table, paths["early"], [paths["late"]], 3000)
    assert body(with_records(table, paths["early"], [navigation, paths["late"], navigation], 3000)) == body(once)
    assert with_records(table, paths["early"], [paths["late"]], 3000, pieces=977).to_json() == once.to_json()


def test_records_that_come_late_count_from_then_on(parted):
    table, paths, _ = parted
    never, late, in_time = (hours_of(with_records(table, paths["early"], [paths["late"]], epoch)) for epoch in (10**9, 5400, 3000))
    assert 0.5 * in_time < never < late < in_time


def test_a_run_that_begins_without_records_stays_without_orbits(parted):
    table, _, navigation = parted
    report = with_records(table, None, [navigation], 3000)
    assert "No broadcast records" in report.verdict.text and not report.library.signals


def test_what_cannot_be_added_is_refused(parted, tmp_path):
    table, paths, _ = parted
    with orsolva.Checker(paths["early"]) as run:
        with pytest.raises(orsolva.ArgumentError):
            run.add_navigation(None)
        with pytest.raises(orsolva.ArgumentTypeError):
            run.add_navigation(7)
        with pytest.raises(orsolva.FileError):
            run.add_navigation(tmp_path / "nothing.rnx")
        run.add_navigation(paths["late"])
        run.push_table(table)
        run.report()
        with pytest.raises(orsolva.RunError):
            run.add_navigation(paths["late"])
