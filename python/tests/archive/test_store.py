"""What a store holds: the figures of the reports, documented columns, the same bytes however it came about."""
import datetime
import shutil

import pyarrow as pa
import pytest

import orsolva
import orsolva.archive
from conftest import FIRST_DAY, archive, simulate_file, sums
from orsolva.archive.places import place
from orsolva.archive.plan import Choice, Plan
from orsolva.archive.store import Bundle, Store
from orsolva.archive.tables import ALL_TABLES, TABLES, fitted, in_order, text_of


@pytest.fixture
def opened(undisturbed):
    with orsolva.archive.open(undisturbed) as archive:
        yield archive


def test_every_table_has_the_rows_of_every_report(opened, network):
    files = sorted(network.rglob("*_MO.rnx"))
    assert opened.sql("SELECT count(*), count(DISTINCT name) FROM runs").fetchall()[0] == (len(files), len(files))
    report = orsolva.qc(files[5], page=False)
    query = "SELECT count(*) FROM {} JOIN runs USING (run_id) WHERE runs.name = '" + files[5].stem + "'"
    rows = {table: opened.sql(query.format(table)).fetchall()[0][0] for table in TABLES}
    assert rows["systems"] == len(report.systems) and rows["signals"] == len(report.signals) > 0
    assert rows["satellites"] == len({*report.satellites["satellite"], *report.library.satellites["satellite"]})
    assert rows["bands"] == sum(len(subject) == 3 and subject != "all" for subject in report.library.bands["subject"]) > 0


def test_figures_are_those_of_the_report_to_the_bit(opened, network):
    file = sorted(network.rglob("*_MO.rnx"))[3]
    report = orsolva.qc(file, page=False)
    mine = opened.sql(f"SELECT s.* FROM signals s JOIN runs USING (run_id) WHERE name = '{file.stem}'").pl().to_dicts()
    compared = 0
    for source in (report.signals, report.library.signals):
        for row in source.to_dicts():
            match = next(r for r in mine if (r["system"], r["signal"]) == (row["system"], row["signal"]))
            for name in row.keys() & match.keys():
                assert row[name] == match[name], name
                compared += row[name] is not None
    assert compared > 50
    run = opened.sql(f"SELECT * FROM runs WHERE name = '{file.stem}'").pl().to_dicts()[0]
    assert run["epochs"] == report.run.epochs and run["verdict"] == report.verdict.grade
    assert (run["x_m"], run["y_m"], run["z_m"]) == report.analysis.solution_ecef_m
    assert str(run["first_epoch"]) == report.run.first_epoch_gpst[:19]


def test_scans_give_what_views_give(opened):
    for table in ["runs", *TABLES]:
        assert opened.scan(table).select("run_id").collect().height == len(opened.sql(f"SELECT run_id FROM {table}").fetchall())
    with pytest.raises(orsolva.archive.ArchiveError, match="no such table"):
        opened.scan("rows")


def test_every_column_says_what_it_holds():
    for table, columns in ALL_TABLES.items():
        names = [column.name for column in columns]
        assert len(names) == len(set(names)), table
        assert all(len(text_of(column)) > 3 for column in columns), table


@pytest.mark.parametrize("workers", [["--workers", 2], ["--workers", 3]])
def test_any_number_of_workers_gives_the_same_bytes(tmp_path, network, undisturbed, workers):
    archive("init", tmp_path / "store", "--buckets", 2)
    archive("run", tmp_path / "store", network, *workers)
    assert sums(tmp_path / "store") == sums(undisturbed)


def test_shards_give_the_same_bytes(tmp_path, network, undisturbed):
    archive("init", tmp_path / "store", "--buckets", 2)
    for shard in ("3/3", "1/3", "2/3"):
        archive("run", tmp_path / "store", network, "--shard", shard)
    assert sums(tmp_path / "store") == sums(undisturbed)


def test_day_by_day_gives_the_same_bytes(tmp_path, network, undisturbed):
    archive("init", tmp_path / "store", "--buckets", 2)
    for day in (2, 0, 3, 1):
        date = FIRST_DAY + datetime.timedelta(days=day)
        archive("run", tmp_path / "store", network, "--since", date, "--until", date)
    assert sums(tmp_path / "store") == sums(undisturbed)


def test_a_second_run_has_nothing_to_do(tmp_path, network, undisturbed):
    shutil.copytree(undisturbed, tmp_path / "store")
    before = sums(tmp_path / "store")
    assert "0 new, 0 changed, 0 to repair, 12 done" in archive("run", tmp_path / "store", network)
    assert sums(tmp_path / "store") == before
    assert "12 runs of 3 stations: 12 judged" in archive("check", tmp_path / "store", "--sources")


def test_a_changed_file_replaces_its_run(tmp_path, own_network):
    store = tmp_path / "store"
    archive("init", store)
    archive("run", store, own_network)
    simulate_file(own_network, "ST0100DNK", FIRST_DAY, seed=9)
    assert "0 new, 1 changed, 0 to repair, 11 done" in archive("plan", store, own_network)
    archive("run", store, own_network)
    archive("init", tmp_path / "fresh")
    archive("run", tmp_path / "fresh", own_network)
    assert sums(store) == sums(tmp_path / "fresh")


def test_rows_without_a_run_are_left_out_and_go_with_the_next_writing(tmp_path, network, undisturbed):
    shutil.copytree(undisturbed, tmp_path / "store")
    store = Store(str(tmp_path / "store"))
    bundle = sorted(store.bundles())[0]
    lost = store.read("signals", bundle)
    stray = lost.set_column(0, "run_id", pa.array(["0" * 16] * len(lost)))
    store._write_table("signals", bundle, pa.concat_tables([lost, stray]))
    with orsolva.archive.open(tmp_path / "store") as opened, orsolva.archive.open(undisturbed) as other:
        for archive_ in (opened, other):
            assert archive_.sql("SELECT count(*) FROM signals").fetchall()[0] == other.sql("SELECT count(*) FROM signals").fetchall()[0]
        assert opened.scan("signals").collect().height == other.scan("signals").collect().height
    assert "rows without a run" in archive("check", tmp_path / "store", good=(1,))
    store.rewrite(bundle)
    assert sums(tmp_path / "store") == sums(undisturbed)


def test_missing_rows_are_found_and_repaired(tmp_path, network, undisturbed):
    shutil.copytree(undisturbed, tmp_path / "store")
    store = Store(str(tmp_path / "store"))
    bundle = sorted(store.bundles())[0]
    (tmp_path / "store" / bundle.path("satellites")).unlink()
    assert "satellites has not all rows" in archive("check", tmp_path / "store", good=(1,))
    archive("run", tmp_path / "store", network, "--repair")
    assert sums(tmp_path / "store") == sums(undisturbed)


def test_the_first_of_two_files_with_the_same_data_is_judged(tmp_path, network, undisturbed):
    other = tmp_path / "mirror"
    shutil.copytree(network, other)
    with Plan(Store(str(undisturbed))) as plan:
        plan.take([str(network), str(other)])
        counts = plan.compare(True)
        assert (counts.observations, counts.doubles, counts.to_do) == (24, 12, 0)
        assert all(str(other) in left and str(network) in taken for left, taken in plan.doubles())


def test_a_store_without_a_table_keeps_the_others(tmp_path, network):
    archive("init", tmp_path / "store", "--without", "bands", "--without", "events")
    archive("run", tmp_path / "store", network, "--until", FIRST_DAY)
    with orsolva.archive.open(tmp_path / "store") as opened:
        assert opened.tables == ["runs", "systems", "signals", "satellites"]
    archive("check", tmp_path / "store")


def test_an_empty_store_has_empty_tables(tmp_path):
    archive("init", tmp_path / "store")
    with orsolva.archive.open(tmp_path / "store") as opened:
        assert opened.sql("SELECT * FROM signals").fetchall() == []
        assert opened.scan("events").collect().height == 0


def test_settings_of_a_store_do_not_change(tmp_path):
    archive("init", tmp_path / "store", "--elevation", 5)
    archive("init", tmp_path / "store", "--elevation", 5)
    assert "other settings" in archive("init", tmp_path / "store", good=(1,))
    assert "there is no store" in archive("run", tmp_path, tmp_path, good=(1,))


def test_content_by_sha256_does_not_mind_new_times(tmp_path, own_network):
    archive("init", tmp_path / "store", "--verify")
    archive("run", tmp_path / "store", own_network)
    for file in own_network.rglob("*.rnx"):
        file.touch()
    assert "12 done" in archive("plan", tmp_path / "store", own_network)
    file = next(own_network.rglob("*_MO.rnx"))
    data = file.read_bytes()
    file.write_bytes(data[:-2] + b"9\n")
    assert "1 changed" in archive("plan", tmp_path / "store", own_network)


def test_rows_follow_the_order_of_their_runs():
    rows = fitted("systems", {"run_id": ["b", "a", "b", "c"], "system": ["G", "R", "E", "J"]}, 4)
    assert in_order(rows, ["a", "b"])["system"].to_pylist() == ["R", "G", "E"]


def test_a_plan_takes_days_and_shards():
    choice = Choice(datetime.date(2026, 1, 2), datetime.date(2026, 1, 3))
    assert [choice.takes(datetime.date(2026, 1, day)) for day in (1, 2, 3, 4)] == [False, True, True, False]
    bundles = [Bundle(2026, month, bucket) for month in range(1, 13) for bucket in range(8)]
    shards = [[b for b in bundles if Choice(shard=(k, 3)).has(b)] for k in (1, 2, 3)]
    assert sorted(sum(shards, [])) == bundles and all(shards)


def test_a_store_at_the_root_of_a_file_system_passes_over_lost_and_found(tmp_path):
    for name in ("lost+found/a", "runs/lost+found/b", "c"):
        (tmp_path / name).parent.mkdir(parents=True, exist_ok=True)
        (tmp_path / name).touch()
    assert sorted(place(str(tmp_path)).names()) == ["c", "runs/lost+found/b"]
