"""Reports: the same bytes as the command's, every figure, tables, pages."""
import json
import pathlib
import warnings

import numpy as np
import pytest

import orsolva

OBSERVATIONS = ["*_MO.crx.gz", "*_MO.crx", "*_MO.rnx", "*.21O", "*.21D", "*.21o", "*.21d"]


def test_json_is_byte_for_byte_that_of_the_command(data, command):
    files = sorted(path for pattern in OBSERVATIONS for path in data.glob(pattern))
    assert len(files) >= 10
    for file in files:
        with warnings.catch_warnings():
            warnings.simplefilter("ignore", orsolva.DataLostWarning)
            report = orsolva.qc(str(file), page=False)
        assert report.to_json().encode() == command("qc", file, "--json", "--no-config", good=(0, 1)), file


def test_json_with_satellites_text_and_sum_are_those_of_the_command(report, observations, navigation, command):
    run = ("qc", observations, "--nav", navigation, "--no-config")
    assert report.to_json(satellites=True).encode() == command(*run, "--json", "--sats")
    assert report.to_text().encode() == command(*run, "--text", "--width", "80", "--color", "never")
    assert report.sum_lines.encode() == command(*run, "--sum")
    assert report.to_csv().encode() == command(*run, "--csv")


def test_every_figure_of_the_json_is_an_attribute_or_a_column(report):
    value = report.to_dict(satellites=True)
    for part, record in (("headline", report.headline), ("run", report.run), ("analysis", report.analysis)):
        for key, figure in value[part].items():
            if not isinstance(figure, (list, dict)):
                assert record[key] == figure, (part, key)
    names = {*report.run, *report.headline, *report.analysis, *report.library.total, *report.library.run}
    names.update(report.library.headline)
    names.update(*(table.column_names for table in report.tables().values()))
    missing = [key for key in orsolva.figure_keys() if key not in names and key.removeprefix("total_") not in names]
    assert missing == []
    listed = {(row["subject"], row["signal"], row["key"]): row["value"] for row in report.figures.to_dicts()}
    assert listed[None, None, "cutoff_completeness_ratio"] == report.headline.cutoff_completeness_ratio


def test_columns_hold_the_values_of_the_json(report):
    systems = report.to_dict()["analysis"]["systems"]
    table = report.systems
    assert table["system"].tolist() == [row["letter"] for row in systems]
    for key in systems[0]:
        if key == "letter":
            continue
        for row, found in zip(systems, table[key].tolist()):
            assert row[key] == found or (row[key] is None and (found is None or found != found)), key


def test_what_is_missing_is_none_nan_and_null(tmp_path, observations):
    alone = tmp_path / observations.name
    alone.write_bytes(observations.read_bytes())
    report = orsolva.qc(alone)
    assert report.library.run.position_ecef_m is None
    assert report.headline.cutoff_completeness_ratio is None
    assert report.library.run.absence["id"] == "no-navigation"
    ratio = report.systems["cutoff_completeness_ratio"]
    assert ratio.dtype == np.float64 and np.isnan(ratio).all()
    assert report.profile is None and len(report.outcomes) == 0


def test_events_are_slips_with_signals_and_sizes(report):
    events = report.events
    assert len(events) == len(events["time"]) > 0
    assert events["time"].dtype == np.dtype("datetime64[ns]")
    slips = [row for row in events.to_dicts() if row["kind"] == "slip"]
    assert slips and all(len(row["signals"]) == len(row["size_cycles"]) for row in slips)
    assert all(row["is_slip"] for row in slips)


def test_detail_has_the_rows_and_values_of_the_command(report, observations, navigation, command, tmp_path):
    path = tmp_path / "detail.csv"
    command("qc", observations, "--nav", navigation, "--no-config", "--detail", path, "--quiet")
    lines = path.read_text().splitlines()
    detail = report.detail
    assert detail is not None and len(detail) == len(lines) - 1
    names = lines[0].split(",")
    assert ["time", *names[1:]] == detail.column_names
    for row in (0, len(detail) // 2, len(detail) - 1):
        cells = lines[row + 1].split(",")
        for name, cell in zip(names[1:], cells[1:]):
            found = detail[name][row]
            if name == "above_cutoff":
                assert found == (cell == "1")
            elif cell == "":
                assert found is None or found != found
            else:
                assert str(found) == cell or float(found) == float(cell), name


def test_arcs_need_the_page(report, observations, navigation):
    arcs = report.arcs
    assert arcs is not None and len(arcs) > 10
    assert (arcs["first_epoch"] <= arcs["last_epoch"]).all()
    bare = orsolva.qc(observations, navigation, page=False)
    assert bare.arcs is None
    with pytest.raises(orsolva.RunError, match="page"):
        bare.to_html()
    assert bare.to_json() == report.to_json()


def test_the_page_is_that_of_the_command(report, observations, navigation, command, tmp_path):
    path = tmp_path / "r.html"
    command("qc", observations, "--nav", navigation, "--no-config", "--html", path, "--quiet")
    assert report.to_html() == path.read_text(encoding="utf-8")
    assert report.to_html() == report.to_html()


def test_notebooks_show_a_head_without_script(report):
    page = report._repr_html_()
    assert "<table>" in page and "<script" not in page and "SIMU" in page
    assert page.count("<tr>") < 40


def test_a_profile_gives_a_verdict(observations, navigation):
    report = orsolva.qc(observations, navigation, profile="station", page=False)
    assert report.profile.profile == "station" and report.verdict.grade
    assert report.profile.passed == (report.profile.grade in ("good", "fair"))
    assert len(report.outcomes) == len(report.to_dict()["profile"]["outcomes"]) > 2


def test_records_are_read_only_mappings(report):
    with pytest.raises(AttributeError):
        report.run.epochs = 1
    with pytest.raises(AttributeError, match="no_such"):
        report.run.no_such
    assert dict(report.run)["epochs"] == report.run.epochs > 300
    assert "epochs" in dir(report.run)


def test_qc_many_keeps_the_order_and_gives_failures_as_values(observations, navigation, tmp_path, data):
    junk = tmp_path / "junk.rnx"
    junk.write_text("no RINEX\n")
    files = [observations, junk, data / "SEPT078M.21O"]
    outcomes = list(orsolva.qc_many(files, [navigation], jobs=2))
    assert [type(outcome) for outcome in outcomes] == [orsolva.Report, orsolva.Failure, orsolva.Report]
    assert not outcomes[1] and outcomes[1].file == str(junk) and "RINEX" in outcomes[1].error
    single = orsolva.qc(observations, [navigation], page=False)
    assert outcomes[0].to_json() == single.to_json()


def test_qc_many_takes_folders_and_can_be_dropped(folder, data):
    outcomes = orsolva.qc_many([folder])
    assert len(outcomes) == 1 and isinstance(next(outcomes), orsolva.Report)
    with pytest.raises(StopIteration):
        next(outcomes)
    many = orsolva.qc_many([data])
    next(many)
    del many


def test_navigation_is_read_once_and_used_again(navigation, observations):
    nav = orsolva.read_nav(navigation)
    first = orsolva.qc(observations, nav, page=False).to_json()
    assert first == orsolva.qc(observations, nav, page=False).to_json()
    assert first == orsolva.qc(observations, navigation, page=False).to_json()
    table = nav.table("G")
    assert set(table["satellite"]) <= {f"G{n:02}" for n in range(1, 33)}
    assert (np.abs(table["sqrt_a_sqrt_m"] - 5153.6) < 10).all()
    assert "x_m" in nav.table("R") and len(nav.precise_orbits) == 0


def test_explain_knows_other_names_and_likely_ones():
    assert "multipath" in orsolva.explain("mp1").lower()
    with pytest.raises(orsolva.ArgumentError, match="completeness_ratio"):
        orsolva.explain("completness_ratio")


def test_parquet_files_hold_the_tables(report, tmp_path):
    parquet = pytest.importorskip("pyarrow.parquet")
    files = report.to_parquet(tmp_path / "out")
    assert {"systems.parquet", "signals.parquet", "detail.parquet", "figures.parquet"} <= {file.name for file in files}
    signals = parquet.read_table(tmp_path / "out" / "signals.parquet")
    assert signals.num_rows == len(report.signals)


def test_json_goes_to_a_file(report, tmp_path):
    path = pathlib.Path(tmp_path / "r.json")
    report.to_json(path)
    assert json.loads(path.read_bytes()) == report.to_dict()
