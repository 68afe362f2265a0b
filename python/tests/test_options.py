"""Options of the command as arguments: the same bytes as the command, and named errors."""
import csv
import io
import json

import numpy as np
import pytest

import orsolva

SELECTION = {"start": "00:30", "end": "02:30", "sampling_s": 60.0, "signals": ["G1C", "G2W", "5"], "window": "30m"}
SELECTION_OPTIONS = ["--start", "00:30", "--end", "02:30", "--sampling", "60", "--signals", "5,G:1C,2W", "--window", "30m"]


def test_selections_and_windows_give_the_bytes_of_the_command(observations, navigation, command):
    found = orsolva.qc(observations, navigation, **SELECTION).to_json()
    assert found.encode() == command("qc", observations, "--nav", navigation, *SELECTION_OPTIONS, "--json")
    assert json.loads(found)["run"]["selection"]["epochs_left_out"] > 200


def test_a_selection_may_be_written_in_several_ways(observations, navigation):
    whole = orsolva.qc(observations, navigation, **SELECTION).to_json()
    day = orsolva.read_obs(observations).table["time"][0].astype("datetime64[D]")
    others = [
        {"signals": "5,G:1C,2W"},
        {"signals": ("G:1C", "5", "G2W")},
        {"start": f"{day}T00:30"},
        {"start": day + np.timedelta64(30, "m"), "end": day + np.timedelta64(150, "m")},
        {"window": 1800},
        {"sampling_s": 60},
    ]
    for other in others:
        assert orsolva.qc(observations, navigation, **{**SELECTION, **other}).to_json() == whole, other


def test_windows_are_tables(observations, navigation):
    report = orsolva.qc(observations, navigation, window="1h")
    plain = report.to_dict()["analysis"]["windows"]
    assert len(report.windows) == len(plain) == 3
    assert report.windows["present_epochs"].tolist() == [window["present_epochs"] for window in plain]
    assert len(report.window_systems) == sum(len(window["systems"]) for window in plain)
    signals = [signal["code_values"] for window in plain for signal in window["signals"]]
    assert report.window_signals["code_values"].tolist() == signals
    assert len(orsolva.qc(observations, navigation).windows) == 0


@pytest.mark.parametrize("figures", ["both", "analysis", "library"])
def test_reports_show_the_figures_asked_for(observations, navigation, command, figures):
    found = orsolva.qc(observations, navigation, figures=figures)
    options = ["qc", observations, "--nav", navigation, "--figures", figures]
    assert found.to_json().encode() == command(*options, "--json")
    assert found.to_text(width=80).encode() == command(*options, "--text", "--width", "80")


def test_series_are_those_of_the_command(observations, navigation, command):
    series = orsolva.qc(observations, navigation, series=True).series
    text = command("qc", observations, "--nav", navigation, "--series", "-").decode()
    rows = list(csv.DictReader(io.StringIO(text)))
    assert series.column_names == ["time", *list(rows[0])[1:]] and len(series) == len(rows) > 1000
    for name in ("system", "satellite", "signal"):
        assert [word or "" for word in series[name]] == [row[name] for row in rows]
    for name in ("observed_epochs", "slips", "expected_epochs"):
        found = np.asarray(series[name], dtype=float)
        assert ["" if np.isnan(value) else str(int(value)) for value in found] == [row[name] for row in rows]
    assert ["" if np.isnan(value) else f"{value:.2f}" for value in series["snr_dbhz"]] == [row["snr_dbhz"] for row in rows]
    times = [str(time).replace("T", " ")[:23] for time in series["time"]]
    assert times == [row["time_gpst"] for row in rows]
    assert orsolva.qc(observations, navigation).series is None


def test_every_event_is_kept_where_that_is_asked_for(observations, navigation, command):
    events = orsolva.qc(observations, navigation, events=True).events
    rows = list(csv.DictReader(io.StringIO(command("qc", observations, "--nav", navigation, "--events", "-").decode())))
    assert len(events) == len(rows) > 10
    assert events["kind"].tolist() == [row["kind"] for row in rows]


def test_detail_holds_the_rows_asked_for(observations, navigation, report):
    some = orsolva.qc(observations, navigation, detail=True, detail_satellites=["G05", "R"], detail_signals=["1"]).detail
    whole = report.detail.to_dicts()
    wanted = [row for row in whole if (row["satellite"] == "G05" or row["satellite"][0] == "R") and row["signal"][0] == "1"]
    assert some.to_dicts() == wanted and 0 < len(wanted) < len(whole)


@pytest.fixture(scope="module")
def hours(day, tmp_path_factory):
    """The day in three files, and its navigation."""
    folder = tmp_path_factory.mktemp("hours")
    whole = day.write(folder / "whole")
    lines = whole[0].read_text().splitlines(keepends=True)
    head = next(i for i, line in enumerate(lines) if "END OF HEADER" in line) + 1
    files = []
    for hour in range(3):
        name = whole[0].name.replace("0000_03H", f"0{hour}00_01H")
        starts = [i for i, line in enumerate(lines) if line.startswith(">") and int(line[13:15]) == hour]
        after = [i for i, line in enumerate(lines) if line.startswith(">") and int(line[13:15]) > hour]
        files.append(folder / name)
        files[-1].write_text("".join([*lines[:head], *lines[starts[0] : after[0] if after else None]]))
    return files, whole[0], whole[1]


def test_consecutive_files_are_one_span(hours, command):
    files, whole, navigation = hours
    joined = orsolva.qc([files[2], files[0], files[1]], navigation)
    assert joined.to_json().encode() == command("qc", *files, "--nav", navigation, "--join", "all", "--json")
    assert joined.run.epochs == orsolva.qc(whole, navigation).run.epochs > 300
    assert joined.run.joined_files == joined.to_dict()["run"]["joined_files"] and len(joined.run.joined_files) == 3
    [day] = orsolva.qc_many(files, navigation, join="day")
    assert day.to_json() == joined.to_json()
    assert len(list(orsolva.qc_many(files, navigation))) == 3


def test_files_of_several_stations_are_no_span(hours, tmp_path):
    files, whole, navigation = hours
    other = tmp_path / files[1].name.replace("SIMU", "ELSE")
    other.write_bytes(files[1].read_bytes())
    with pytest.raises(orsolva.ArgumentError, match="2 stations"):
        orsolva.qc([files[0], other], navigation)


def test_reports_of_many_files_keep_what_is_asked_for(hours):
    files, _, navigation = hours
    many = list(orsolva.qc_many(files, navigation, page=True, series=True, events=True, detail=True))
    for file, report in zip(files, many):
        alone = orsolva.qc(file, navigation, series=True, events=True, detail=True)
        assert report.to_html() == alone.to_html()
        assert report.series.to_dicts() == alone.series.to_dicts()
        assert report.events.to_dicts() == alone.events.to_dicts()
        assert report.detail.to_dicts() == alone.detail.to_dicts()
    assert [report.series for report in orsolva.qc_many(files, navigation)] == [None] * 3


def test_a_comparison_lists_what_differs(hours, command, tmp_path):
    files, _, navigation = hours
    earlier = orsolva.qc(files[0], navigation, signals="G:1C,2W")
    earlier.to_json(tmp_path / "earlier.json")
    now = orsolva.qc(files[1], navigation, compare=tmp_path / "earlier.json")
    line = ["qc", files[1], "--nav", navigation, "--compare", tmp_path / "earlier.json", "--json"]
    assert now.to_json().encode() == command(*line)
    plain = now.to_dict()["comparison"]
    assert now.comparison.signals_appeared == plain["signals_appeared"] and "G 2L" in plain["signals_appeared"]
    assert now.comparison.figures_changed == len(now.changes) == len(plain["figures"]) > 0
    assert now.changes["figure"].tolist() == [change["figure"] for change in plain["figures"]]
    from_report = orsolva.qc(files[1], navigation, compare=earlier)
    assert from_report.changes.to_dicts() == now.changes.to_dicts()
    alone = orsolva.qc(files[1], navigation)
    assert alone.comparison is None and len(alone.changes) == 0


def test_a_history_is_a_profile(hours, tmp_path, command):
    files, _, navigation = hours
    report = orsolva.qc(files[0], navigation)
    for number in range(8):
        (tmp_path / f"{number}.json").write_text(report.to_json().replace("2020-06-25 00", f"2020-06-1{number} 00"))
    (tmp_path / "other.json").write_text("{}")
    now = orsolva.qc(files[1], navigation, profile=f"history:{tmp_path}")
    assert now.profile.profile.startswith("history") and len(now.outcomes) > 5
    line = ["qc", files[1], "--nav", navigation, "--profile", f"history:{tmp_path}", "--json"]
    assert now.to_json().encode() == command(*line, good=(0, 3))
    assert "other.json" in now.profile.remarks[0]


@pytest.mark.parametrize(
    ("arguments", "kind", "words"),
    [
        ({"start": "yesterday"}, orsolva.ArgumentError, "start: 'yesterday'"),
        ({"start": 3}, orsolva.ArgumentTypeError, "start"),
        ({"end": np.datetime64("NaT", "ns")}, orsolva.ArgumentError, "end: found no time"),
        ({"start": ""}, orsolva.ArgumentError, "start: found no time"),
        ({"start": "2020-06-25T02:00", "end": "2020-06-25"}, orsolva.ArgumentError, "start and end"),
        ({"sampling_s": 0}, orsolva.ArgumentError, "sampling_s"),
        ({"sampling_s": "60"}, orsolva.ArgumentTypeError, "sampling_s"),
        ({"sampling_s": 60, "interval_s": 30}, orsolva.ArgumentError, "sampling_s"),
        ({"signals": ["C1C1"]}, orsolva.ArgumentError, "signals"),
        ({"signals": []}, orsolva.ArgumentError, "signals"),
        ({"signals": 3}, orsolva.ArgumentTypeError, "signals"),
        ({"window": "soon"}, orsolva.ArgumentError, "window"),
        ({"window": 3}, orsolva.ArgumentError, "window"),
        ({"window": None, "figures": "all"}, orsolva.ArgumentError, "figures"),
        ({"figures": 1}, orsolva.ArgumentTypeError, "figures"),
        ({"compare": 1}, orsolva.ArgumentTypeError, "compare"),
        ({"compare": "none.json"}, orsolva.EarlierReportError, "none.json"),
        ({"profile": "history:none"}, orsolva.EarlierReportError, "none"),
        ({"series": 1}, orsolva.ArgumentTypeError, "series"),
        ({"events": "all"}, orsolva.ArgumentTypeError, "events"),
        ({"detail_satellites": "G05"}, orsolva.ArgumentTypeError, "detail_satellites"),
        ({"detail_satellites": ["G999"]}, orsolva.ArgumentError, "detail_satellites"),
        ({"detail_signals": ["?"]}, orsolva.ArgumentError, "detail_signals"),
    ],
)
def test_wrong_options_are_named(observations, arguments, kind, words):
    for call in (orsolva.qc, orsolva.qc_many):
        with pytest.raises(kind, match=words):
            call(observations, **arguments)
    with pytest.raises(kind, match=words):
        orsolva.Checker(**arguments)


def test_a_wrong_join_is_named(observations):
    with pytest.raises(orsolva.ArgumentError, match="join"):
        orsolva.qc_many(observations, join="week")
    with pytest.raises(orsolva.ArgumentError, match="observations"):
        orsolva.qc([])
