"""Trends and pages of simulated stations whose changes are known; truth.py has the large proof."""
import datetime
import errno
import json
import os
import re
import shutil
import sys
import pathlib

import numpy as np
import pytest

import orsolva.archive
from conftest import archive
from orsolva.archive.pages import geographic
from orsolva.archive.trends import Daily, Key, StationTrend, _add, _state, equipment_changes, station_changes, trends

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import truth

SWAP_DAY = truth.FIRST_DAY + datetime.timedelta(days=80)


@pytest.fixture(scope="module")
def store(tmp_path_factory):
    """Eighteen days before and twelve after an antenna swap, with its header and without."""
    folder = tmp_path_factory.mktemp("trends")
    for day in range(62, 92):
        for case in ("SWAP", "HIDE"):
            truth.simulate(folder / "source", case, 1, day)
    # A file with a text that is markup, and that cannot be judged.
    bad = folder / "source" / "BAD100TST_R_20251500000_04H_01M_MO.rnx"
    bad.write_text("</script><img src=x onerror=hacked=1>\n")
    archive("init", folder / "store")
    archive("run", folder / "store", folder / "source")
    return folder / "store"


@pytest.fixture(scope="module")
def found(store):
    return {trend.station: trend for trend in trends(str(store))}


@pytest.mark.parametrize("station, explained", [("SWAP01TST", True), ("HIDE01TST", False)])
def test_a_swap_is_found_and_explained_where_the_header_says_so(found, station, explained):
    (change,) = found[station].changes
    assert abs((change.day - SWAP_DAY).days) <= 2 and change.kind == "step"
    assert {part.key.figure for part in change.parts} >= {"snr"}
    assert change.explanation == ("antenna OLD ANTENNA to NEW ANTENNA" if explained else None)
    assert found[station].state == ("explained" if explained else "changed")
    assert ("explained by antenna" if explained else "unexplained") in str(change)


def test_series_are_those_of_the_store(found, store):
    daily = found["SWAP01TST"].series[Key("snr", "G1C")]
    assert len(daily.days) == 30 and daily.days == sorted(daily.days)
    with orsolva.archive.open(store) as opened:
        query = f"SELECT strength_mean_dbhz FROM signals WHERE station = 'SWAP01TST' AND signal = '1C' AND date = '{daily.days[3]}'"
        assert opened.sql(query).fetchall() == [(daily.values[3],)]


def test_stations_without_a_report_are_failing(found):
    assert found["BAD100TST"].state == "failing" and "</script>" in found["BAD100TST"].reason


def test_the_command_lists_the_worst_first(store):
    lines = archive("trends", store, "--all").splitlines()
    assert [line.split()[1] for line in lines if re.match(r"\w{9}  ", line)] == ["failing", "changed", "explained"]
    assert lines[-1] == "1 failing, 1 changed, 1 explained"


def data_of(page):
    """The data in a page, which has nothing but them between its tags."""
    text = page.read_text()
    assert text.count("</script>") == 2 and "onerror" not in re.sub(r'<script type="application/json".*?</script>', "", text, flags=re.S)
    return json.loads(re.search(r'<script type="application/json" id="data">(.*?)</script>', text, re.S)[1])


def test_pages_hold_the_network_and_every_station(store, tmp_path):
    archive("page", store, "--output", tmp_path, "--reports", "https://x/{year}/{day}/{name}.html")
    network = data_of(tmp_path / "index.html")
    assert [one["name"] for one in network["stations"]] == ["BAD100TST", "HIDE01TST", "SWAP01TST"]
    assert network["days"] == 30 and len(network["figures"]) == 7
    for one in network["stations"]:
        assert (tmp_path / one["page"]).is_file()
    station = data_of(tmp_path / "stations/SWAP01TST.html")
    assert station["changes"][0]["explanation"] and len(station["equipment"]) == 1
    assert station["runs"][0]["report"].startswith("https://x/2025/122/SWAP01TST_R_2025122")
    before = (tmp_path / "index.html").read_bytes()
    archive("page", store, "--output", tmp_path, "--reports", "https://x/{year}/{day}/{name}.html")
    assert (tmp_path / "index.html").read_bytes() == before


def test_equipment_is_compared_day_by_day():
    same = {name: "x" for name in ("receiver", "receiver_serial", "receiver_firmware", "antenna", "radome", "antenna_serial")}
    days = [{**same, "antenna_height_m": 0.0, "state": "judged", "date": datetime.date(2026, 1, day)} for day in (1, 2, 3, 4)]
    days[1]["state"], days[1]["receiver"] = "failed", None
    days[3]["receiver_firmware"], days[3]["antenna_height_m"] = "5.5.0", 0.1
    assert equipment_changes(days) == [(datetime.date(2026, 1, 4), "firmware x to 5.5.0, antenna height 0.0 to 0.1")]


@pytest.mark.parametrize("latitude, longitude, xyz", [
    (55.4936, 8.4568, (3582105.291, 532589.7313, 5232754.8054)),
    (0, 0, (6378137.0, 0.0, 0.0)),
    (90, 0, (0.0, 0.0, 6356752.3142)),
    (0, -90, (0.0, -6378137.0, 0.0)),
])
def test_places_on_the_map(latitude, longitude, xyz):
    assert geographic(*xyz) == pytest.approx((latitude, longitude), abs=1e-3)


DAYS = [datetime.date(2026, 1, 1) + datetime.timedelta(days=day) for day in range(420)]


def station(values, kind="snr", equipment=()):
    """A station with one series that ends today."""
    daily = Daily(DAYS[: len(values)], np.asarray(values))
    series = {Key(kind, "G1C"): daily}
    trend = StationTrend("ST0100DNK", None, series, [{"date": daily.days[-1], "state": "judged", "error": None}], list(equipment))
    trend.changes = station_changes(series, trend.equipment)
    return trend, daily.days[-1]


def levelled_off(days_after):
    """Sixty days at 45 dB-Hz, sixty days of -0.05 dB each, then level."""
    days = np.arange(120 + days_after)
    return 45 - 0.05 * np.clip(days - 60, 0, 60) + 0.1 * np.random.default_rng(1).standard_normal(len(days))


@pytest.mark.parametrize("days_after, state", [(0, "drifting"), (15, "changed"), (29, "changed"), (60, "good"), (300, "good")])
def test_a_drift_that_levels_off_does_not_go_on(days_after, state):
    trend, today = station(levelled_off(days_after))
    (change,) = trend.changes
    assert change.kind == "drift" and abs((change.day - DAYS[61]).days) <= 3
    assert _state(trend, today)[0] == state
    assert change.goes_on == (state == "drifting")
    assert abs((change.last_day - DAYS[119]).days) <= 3
    assert (f" to {change.last_day} drift of SNR G1C" in str(change)) == (state != "drifting")


def test_a_drift_goes_on_though_another_series_steps():
    trend, today = station(levelled_off(0))
    steps = np.where(np.arange(120) < 100, 0.3, 0.5) + 0.005 * np.random.default_rng(2).standard_normal(120)
    trend.series[Key("multipath", "G1C")] = Daily(DAYS[:120], steps)
    trend.changes = station_changes(trend.series, [(DAYS[100], "radome none to SCIS")])
    assert [change.kind for change in trend.changes] == ["drift", "step"]
    assert trend.changes[1].explanation is not None
    assert _state(trend, today)[0] == "drifting"


def test_a_drift_of_a_signal_that_is_gone_does_not_go_on():
    trend, today = station(levelled_off(0))
    assert _state(trend, today)[0] == "drifting"
    later = today + datetime.timedelta(days=31)
    trend.runs.append({"date": later, "state": "judged", "error": None})
    assert _state(trend, later)[0] == "good"


def test_figures_that_are_no_numbers_are_no_days():
    polars = pytest.importorskip("polars")
    series = {}
    _add(series, Key("missing"), polars.DataFrame({"date": DAYS[:4], "missing": [0.1, float("nan"), float("inf"), None]}))
    assert series[Key("missing")].days == DAYS[:1]


def test_a_file_of_the_future_silences_nobody(store, found, tmp_path):
    """It is named, and neither a state nor a page has its day."""
    shutil.copytree(store, tmp_path / "store")
    truth.simulate(tmp_path / "source", "HIDE", 1, 62)
    wrong = "HIDE01TST_R_21501500000_04H_01M_MO.rnx"
    next((tmp_path / "source").rglob("*_MO.rnx")).rename(tmp_path / "source" / wrong)
    archive("run", tmp_path / "store", tmp_path / "source")
    after = {trend.station: (trend.state, trend.runs[-1]["date"]) for trend in trends(str(tmp_path / "store"))}
    assert after == {name: (trend.state, trend.runs[-1]["date"]) for name, trend in found.items()}
    said = "1 file named after a day in the future left out, such as " + wrong[:-4].upper()
    assert said in archive("trends", tmp_path / "store")
    archive("page", tmp_path / "store", "--output", tmp_path / "pages")
    page = tmp_path / "pages/index.html"
    assert data_of(page)["days"] == 30 and said in page.read_text()
    with orsolva.archive.open(tmp_path / "store") as opened:
        assert opened.last_day(datetime.date(2149, 1, 1)) == opened.last_day() == max(day for _, day in after.values())


def test_a_store_of_the_future_alone_has_its_days(tmp_path):
    """Such as one of simulated data."""
    archive("init", tmp_path / "store")
    with orsolva.archive.open(tmp_path / "store") as opened:
        assert opened.last_day() is None and list(trends(opened)) == []
    truth.simulate(tmp_path / "source", "HIDE", 1, 62)
    next((tmp_path / "source").rglob("*_MO.rnx")).rename(tmp_path / "source/HIDE01TST_R_21501500000_04H_01M_MO.rnx")
    archive("run", tmp_path / "store", tmp_path / "source")
    (trend,) = trends(str(tmp_path / "store"))
    assert trend.state == "good"


def test_a_damaged_store_is_said_without_a_traceback(store, tmp_path):
    shutil.copytree(store, tmp_path / "store")
    damaged = sorted((tmp_path / "store").glob("signals/*/*/*/data.parquet"))[-1]
    damaged.write_bytes(b"damaged")
    for command in (["trends"], ["page", "--output", tmp_path / "pages"]):
        printed = archive(command[0], tmp_path / "store", *command[1:], good=(1,))
        assert str(damaged) in printed and f"`orsolva archive check {tmp_path / 'store'}` names what is damaged" in printed


def test_a_full_disk_leaves_the_old_pages(store, tmp_path, monkeypatch):
    archive("page", store, "--output", tmp_path)
    before = {path.name: path.read_bytes() for path in tmp_path.rglob("*.html")}
    real = pathlib.Path.write_text

    def write_text(self, text, *arguments, **more):
        real(self, text[:99], *arguments, **more)
        raise OSError(errno.ENOSPC, os.strerror(errno.ENOSPC), str(self))

    monkeypatch.setattr(pathlib.Path, "write_text", write_text)
    assert "No space left on device" in archive("page", store, "--output", tmp_path, good=(1,))
    assert {path.name: path.read_bytes() for path in tmp_path.rglob("*") if path.is_file()} == before
