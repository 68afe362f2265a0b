"""Observation files as tables: every signal, every flag, selections, pieces."""
import numpy as np
import pytest

import orsolva


def same(a, b, columns=None):
    for name in columns or a.column_names:
        x, y = a[name], b[name]
        assert np.array_equal(x, y, equal_nan=x.dtype.kind == "f"), name


def test_the_file_holds_the_rows_of_the_simulation(day, observations):
    read = orsolva.read_obs(observations, flags=True)
    assert len(read.table) == len(day.observations.table) > 10000
    same(read.table, day.observations.table, [c for c in read.table if c != "doppler_hz"])
    assert np.isnan(read.table["doppler_hz"]).all()
    assert len(read.epochs) == len(day.observations.epochs)


def test_values_are_those_written_in_the_file(data):
    obs = orsolva.read_obs(data / "SEPT078M.21O", flags=True)
    rows = [i for i in range(60) if obs.table["satellite"][i] == obs.table["satellite"][0]]
    text = (data / "SEPT078M.21O").read_text(errors="replace").split("END OF HEADER", 1)[1]
    for row in rows:
        for name in ("pseudorange_m", "phase_cycles", "snr_dbhz"):
            value = obs.table[name][row]
            assert np.isnan(value) or f"{value:.3f}" in text
    assert obs.header.rinex_version >= 2 and obs.header.types["G"]


def test_all_systems_and_signals_are_there(data):
    obs = orsolva.read_obs(data / "ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz")
    letters = {name[0] for name in obs.table.codes("satellite")[1]}
    assert {"G", "R", "E", "C"} <= letters
    assert len(obs.epochs) == 2880 and len(obs.table) > 400000
    for letter in letters:
        declared = {t[1:] for t in obs.header.types[letter] if t[0] in "CLDS"}
        mask = np.char.startswith(obs.table["satellite"], letter)
        assert set(obs.table["signal"][mask]) <= declared


FILES = [
    "ACOR00ESP_R_20213550000_01D_30S_MO.rnx",
    "AJAC3550.21O",
    "ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz",
    "GRAS00FRA_R_20223151700_15M_01S_MO.crx.gz",
    "KMS300DNK_R_20221591000_01H_30S_MO.crx",
    "SEPT078M.21O",
    "pdel0010.21o",
    "zegv0010.21d",
]


@pytest.mark.parametrize("name", FILES)
def test_values_are_as_many_as_the_analysis_counts(data, name):
    report = orsolva.qc(data / name, page=False)
    table = orsolva.read_obs(data / name).table
    system, signal = np.array([word[:1] for word in table["satellite"]]), table["signal"]
    columns = {"code_values": "pseudorange_m", "phase_values": "phase_cycles", "doppler_values": "doppler_hz", "strength_values": "snr_dbhz"}
    rows = report.signals.to_dicts()
    assert {(row["system"], row["signal"]) for row in rows} <= set(zip(system.tolist(), signal.tolist()))
    for row in rows:
        here = (system == row["system"]) & (signal == row["signal"])
        counted = {key: int(np.isfinite(table[column][here]).sum()) for key, column in columns.items()}
        assert counted == {key: row[key] for key in columns}, row["signal"]


def test_crinex_and_plain_twins_hold_the_same(data):
    plain = orsolva.read_obs(data / "ACOR00ESP_R_20213550000_01D_30S_MO.rnx", flags=True)
    packed = orsolva.read_obs(data / "ACOR00ESP_R_20213550000_01D_30S_MO.crx", flags=True)
    same(plain.table, packed.table)
    same(plain.epochs, packed.epochs)


def test_selections_keep_what_they_say(observations):
    whole = orsolva.read_obs(observations)
    part = orsolva.read_obs(observations, systems="GE", signals=["1C", "E5Q"], fields=["snr"], every_s=300)
    assert part.table.column_names == ["time", "satellite", "signal", "snr_dbhz"]
    names, signals, times = whole.table["satellite"], whole.table["signal"], whole.table["time"]
    system = np.array([n[0] for n in names])
    keep = ((signals == "1C") & np.isin(system, ["G", "E"])) | ((signals == "5Q") & (system == "E"))
    keep &= times.astype(np.int64) % (300 * 10**9) == 0
    assert np.array_equal(part.table["snr_dbhz"], whole.table["snr_dbhz"][keep], equal_nan=True)
    first, last = times[0] + np.timedelta64(600, "s"), times[0] + np.timedelta64(1200, "s")
    span = orsolva.read_obs(observations, start=first, end=str(last))
    assert span.epochs["time"][0] == first and span.epochs["time"][-1] < last


def test_pieces_are_the_whole(observations):
    whole = orsolva.read_obs(observations)
    for epochs in (1, 100):
        pieces = list(orsolva.iter_obs(observations, epochs, fields=["phase"]))
        assert [len(p.epochs) for p in pieces[:-1]] == [epochs] * (len(pieces) - 1)
        joined = np.concatenate([p.table["phase_cycles"] for p in pieces])
        assert np.array_equal(joined, whole.table["phase_cycles"], equal_nan=True)
        names = np.concatenate([p.table["satellite"] for p in pieces])
        assert (names == whole.table["satellite"]).all()


def test_xarray_is_a_rectangle_of_time_and_satellite():
    pytest.importorskip("xarray")
    day = orsolva.simulate("slips", hours=1)
    table = day.observations.table
    grid = day.observations.to_xarray()
    assert grid["C1C"].dims == ("time", "sv") and {"L1C", "S1C"} <= set(grid.data_vars)
    assert list(grid.sv.values) == sorted(set(table["satellite"]))
    for row in (0, len(table) // 3, len(table) - 1):
        cell = grid["S" + table["signal"][row]].sel(time=table["time"][row], sv=table["satellite"][row])
        assert cell.item() == table["snr_dbhz"][row]
    filled = sum(int(grid[v].notnull().sum()) for v in grid.data_vars if v.startswith("C"))
    assert filled == np.isfinite(table["pseudorange_m"]).sum()


def test_progress_is_called_and_may_end_the_reading(data):
    seen = []
    orsolva.read_obs(data / "SEPT078M.21O", progress=seen.append)
    assert seen and seen[-1] > 0

    def stop(epochs):
        raise ZeroDivisionError

    with pytest.raises(ZeroDivisionError):
        orsolva.qc(data / "ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz", progress=stop)
