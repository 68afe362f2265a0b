"""Recordings of RTCM 3 streams and of receivers."""
import numpy as np
import pytest

import orsolva


@pytest.fixture(scope="module")
def recording(data):
    return data.parent / "rtcm" / "week-rollover-STR24.rtcm3"


def test_a_recording_is_judged_as_by_the_command(recording, command):
    report = orsolva.qc(recording, series=True)
    assert report.to_json().encode() == command("qc", recording, "--json")
    assert report.run.stream == dict(report.stream) and report.to_dict()["run"]["stream"]["frames"] == report.stream.frames
    assert report.run.epochs == 1134 and len(report.series) > 0
    stream = report.stream
    assert stream.format == "RTCM 3" and stream.frames > 1133 and stream.crc_errors == 0
    assert set(stream.coarse_systems) == set("GREJC")
    assert sum(row["messages"] for row in stream.messages) == stream.frames
    assert {row["type"] for row in stream.messages} >= {1006, 1019, 1074, 1084, 1094}


def test_many_recordings_have_their_facts(recording, observations):
    first, second = orsolva.qc_many([recording, observations])
    assert first.stream == orsolva.qc(recording).stream and second.stream is None


def test_a_recording_is_read_as_tables(recording):
    read = orsolva.read_obs(recording, flags=True)
    report = orsolva.qc(recording)
    assert len(read.epochs) == 1134 and read.stream == report.stream
    assert read.header.rinex_version is None and read.header.receiver == report.run.receiver
    times = read.epochs["time"]
    assert (np.diff(times) == np.timedelta64(1, "s")).all()
    assert str(times[0]) == report.run.first_epoch_gpst.replace(" ", "T") + "000000"
    counts = np.unique(read.table["time"], return_counts=True)[1]
    assert len(counts) == 1134 and set("GREJC") >= {name[0] for name in np.unique(read.table["satellite"])}
    gps = read.table["pseudorange_m"][(read.table["signal"] == "1C") & np.char.startswith(read.table["satellite"], "G")]
    assert 1.9e7 < np.nanmin(gps) and np.nanmax(gps) < 2.8e7


def test_pieces_of_a_recording_are_the_whole(recording):
    whole = orsolva.read_obs(recording).table.to_numpy()
    pieces = [piece.table.to_numpy() for piece in orsolva.iter_obs(recording, 100)]
    assert len(pieces) == 12
    for name, values in whole.items():
        joined = np.concatenate([piece[name] for piece in pieces])
        np.testing.assert_array_equal(joined, values)


def test_own_rows_of_a_recording_give_its_figures(recording):
    report = orsolva.qc(recording)
    read = orsolva.read_obs(recording, flags=True)
    with orsolva.Checker(recording, header=read) as run:
        run.push_table(read)
        pushed = run.report()
    assert pushed.signals.to_dicts() == report.signals.to_dicts()
    assert pushed.library.systems.to_dicts() == report.library.systems.to_dicts()


def test_ephemerides_of_a_stream_are_navigation(recording):
    table = orsolva.read_nav(recording).table("GEJC")
    assert len(table) > 10


def test_damage_is_counted(data):
    navigation = orsolva.read_nav(data.parent / "rtcm" / "sept.rtcm")
    assert len(navigation.table()) > 0
    with pytest.warns(orsolva.DataLostWarning, match="end within a frame"):
        read = orsolva.qc(data.parent / "rtcm" / "sept.rtcm")
    assert read.stream.skipped_bytes == 230 and read.stream.frames == 296


def test_a_stream_without_a_date_is_a_file_error(data):
    with pytest.raises(orsolva.FileError, match="date") as caught:
        orsolva.read_obs(data.parent / "rtcm" / "msm7.rtcm")
    assert caught.value.advice


@pytest.mark.parametrize(("option", "form", "kind"), [("--ubx", "u-blox UBX", 0x0215), ("--sbf", "Septentrio SBF", 4027)])
def test_a_recording_of_a_receiver_is_read_and_judged(command, tmp_path, option, form, kind):
    command("simulate", "--hours", "0.2", "--systems", "GRE", option, "--output", tmp_path)
    recording, twin = next(tmp_path.glob(f"*.{option[2:]}")), next(tmp_path.glob("*_MO.rnx"))
    navigation = next(tmp_path.glob("*_MN.rnx"))
    read, expected = orsolva.read_obs(recording), orsolva.read_obs(twin)
    assert read.stream.format == form and kind in {row["type"] for row in read.stream.messages}
    for column in ("time", "satellite", "signal", "pseudorange_m", "phase_cycles", "doppler_hz", "snr_dbhz"):
        assert np.array_equal(read.table[column], expected.table[column], equal_nan=read.table[column].dtype.kind == "f")
    assert sum(len(part.epochs) for part in orsolva.iter_obs(recording, epochs=7)) == 24
    report = orsolva.qc(recording, navigation)
    assert report.run.epochs == 24 and report.stream == read.stream


def test_ephemerides_of_an_sbf_recording_are_navigation(command, tmp_path):
    command("simulate", "--hours", "0.2", "--systems", "GREC", "--sbf", "--output", tmp_path)
    recording, navigation = next(tmp_path.glob("*.sbf")), next(tmp_path.glob("*_MN.rnx"))
    own, named = orsolva.read_nav(recording), orsolva.read_nav(navigation)
    for systems in ("GEC", "R"):
        mine, other = own.table(systems), named.table(systems)
        assert len(mine) == len(other) > 10
    report = orsolva.qc(recording)
    assert report.run.navigation_files == [str(recording)] and report.run.epochs == 24
