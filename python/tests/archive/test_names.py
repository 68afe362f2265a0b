"""What file names say, and what settings and buckets follow from."""
import datetime

import pytest

from orsolva.archive.file_names import parse
from orsolva.archive.plan import shard_of
from orsolva.archive.settings import ArchiveError, Settings, buckets_for, from_json
from orsolva.archive.store import Bundle, bucket_of


@pytest.mark.parametrize("name, station, start, observations, stem", [
    ("ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz", "ESBC00DNK", (2020, 6, 25), True, "ESBC00DNK_R_20201770000_01D_30S_MO"),
    ("ESBC00DNK_R_20201770000_01D_30S_MO.rnx", "ESBC00DNK", (2020, 6, 25), True, "ESBC00DNK_R_20201770000_01D_30S_MO"),
    ("ESBC00DNK_R_20201770000_01D_30S_MO.rtcm3.gz", "ESBC00DNK", (2020, 6, 25), True, "ESBC00DNK_R_20201770000_01D_30S_MO"),
    ("ESBC00DNK_R_20201770000_01D_01S_MO.sbf.gz", "ESBC00DNK", (2020, 6, 25), True, "ESBC00DNK_R_20201770000_01D_01S_MO"),
    ("ESBC00DNK_R_20201770000_01D_01S_MO.ubx", "ESBC00DNK", (2020, 6, 25), True, "ESBC00DNK_R_20201770000_01D_01S_MO"),
    ("BRDC00IGS_R_20203660000_01D_MN.rnx.gz", "BRDC00IGS", (2020, 12, 31), False, "BRDC00IGS_R_20203660000_01D_MN"),
    ("esbc177b.20o", "ESBC", (2020, 6, 25, 1), True, "ESBC177B.20O"),
    ("esbc1770.20d.Z", "ESBC", (2020, 6, 25), True, "ESBC1770.20O"),
    ("ESBC177A15.99O", "ESBC", (1999, 6, 26, 0, 15), True, "ESBC177A15.99O"),
    ("brdc1770.20n", "BRDC", (2020, 6, 25), False, "BRDC1770.20N"),
])
def test_names_say_station_begin_and_kind(name, station, start, observations, stem):
    found = parse(name)
    assert (found.station, found.start, found.observations) == (station, datetime.datetime(*start), observations)
    assert found.stem == stem


@pytest.mark.parametrize("name", ["truth.json", "ESBC00DNK_R_20213660000_01D_30S_MO.rnx", "esbc0000.20o", "esbc1770.20x", "ESBC00DNK_R_20201770000_01D_30S_MM.rnx", ".ESBC1770.20O.part"])
def test_other_names_are_none(name):
    assert parse(name) is None


def test_buckets_are_powers_of_two_with_at_most_47_stations():
    assert [buckets_for(n) for n in (1, 47, 48, 94, 95, 3000)] == [1, 1, 2, 2, 4, 64]


def test_a_station_keeps_its_bucket():
    assert bucket_of("ESBC00DNK", 64) == 57  # CRC-32 is 1519396345
    assert {bucket_of(f"ST{n:02}00DNK", 4) for n in range(50)} == {0, 1, 2, 3}


def test_bundles_are_found_by_name_and_path():
    bundle = Bundle(2026, 5, 3)
    assert Bundle.of_name(bundle.name) == bundle == Bundle.of_path(bundle.path("signals"))
    assert Bundle.of_path("runs/other.parquet") is None


def test_settings_come_back_from_their_text():
    settings = Settings(4, "sha256", ("bands",), {"systems": "GE"}, "text")
    assert from_json(settings.to_json()) == settings
    for text in ("", "[]", '{"format": 2}', '{"format": 1}'):
        with pytest.raises(ArchiveError):
            from_json(text)


def test_settings_that_change_figures_change_the_id():
    ids = {Settings(judging={"systems": letters}).id for letters in ("G", "GE")} | {Settings(profile_text="x").id, Settings().id}
    assert len(ids) == 4
    assert Settings(buckets=8, content="sha256").id == Settings().id


def test_shards_are_whole_numbers():
    assert shard_of("2/3") == (2, 3)
    for text in ("0/3", "4/3", "1", "a/b", "1/3/4"):
        with pytest.raises(ArchiveError):
            shard_of(text)
