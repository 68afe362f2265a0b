"""Bad input: a named exception before anything is computed."""
import pickle

import numpy as np
import pytest

import orsolva


def test_a_file_error_says_where_and_what_to_do(tmp_path):
    junk = tmp_path / "junk.rnx"
    junk.write_text("this is no RINEX\n")
    with pytest.raises(orsolva.FileError) as caught:
        orsolva.qc(junk)
    error = caught.value
    assert isinstance(error, OSError) and isinstance(error, orsolva.OrsolvaError)
    assert error.file == str(junk) and error.line == 1
    assert "this is no RINEX" in error.found and error.expected and error.advice
    again = pickle.loads(pickle.dumps(error))
    assert (again.file, again.advice, str(again)) == (error.file, error.advice, str(error))


def test_a_missing_file_is_a_file_error(tmp_path):
    for call in (orsolva.qc, orsolva.read_obs, orsolva.read_nav):
        with pytest.raises(orsolva.FileError) as caught:
            call(tmp_path / "none.rnx")
        assert caught.value.line is None


@pytest.mark.parametrize(
    ("arguments", "kind", "words"),
    [
        ({"elevation_deg": 91}, orsolva.ArgumentError, "elevation_deg"),
        ({"elevation_deg": "10"}, orsolva.ArgumentTypeError, "elevation_deg"),
        ({"elevation_deg": float("nan")}, orsolva.ArgumentError, "elevation_deg"),
        ({"interval_s": 0}, orsolva.ArgumentError, "interval_s"),
        ({"systems": "GX"}, orsolva.ArgumentError, "systems"),
        ({"systems": "GG"}, orsolva.ArgumentError, "systems"),
        ({"systems": ""}, orsolva.ArgumentError, "systems"),
        ({"systems": ["G"]}, orsolva.ArgumentTypeError, "systems"),
        ({"exclude": "G04"}, orsolva.ArgumentTypeError, "exclude"),
        ({"exclude": ["G99"]}, orsolva.ArgumentError, "G99"),
        ({"position": "here"}, orsolva.ArgumentError, "position"),
        ({"position": (1, 2)}, orsolva.ArgumentError, "position"),
        ({"position": (1, 2, 3)}, orsolva.ArgumentError, "position"),
        ({"position": 3}, orsolva.ArgumentTypeError, "position"),
        ({"profile": "no such"}, orsolva.ProfileError, "no such"),
        ({"max_size": 0}, orsolva.ArgumentError, "max_size"),
        ({"max_size": 1.5}, orsolva.ArgumentTypeError, "max_size"),
        ({"strict": 1}, orsolva.ArgumentTypeError, "strict"),
        ({"progress": 3}, orsolva.ArgumentTypeError, "progress"),
        ({"html": "x.html", "page": False}, orsolva.ArgumentError, "page"),
    ],
)
def test_wrong_arguments_are_named(observations, arguments, kind, words):
    with pytest.raises(kind, match=words):
        orsolva.qc(observations, **arguments)


def test_paths_of_the_wrong_type_are_named(observations):
    with pytest.raises(orsolva.ArgumentTypeError, match="observations"):
        orsolva.qc(3)
    with pytest.raises(orsolva.ArgumentTypeError, match="nav"):
        orsolva.qc(observations, 3)
    with pytest.raises(orsolva.ArgumentError, match="standard input"):
        orsolva.qc("-")
    with pytest.raises(orsolva.ArgumentError, match="path"):
        orsolva.read_obs("")
    for path in ("a\udc80b", b"a\x80b"):  # what os.listdir() gives of a name that is not UTF-8
        with pytest.raises(orsolva.ArgumentError, match="a name that is not UTF-8; rename it"):
            orsolva.qc(path)


@pytest.mark.parametrize(
    ("arguments", "words"),
    [
        ({"systems": "X"}, "systems"),
        ({"signals": ["C1C1"]}, "signals"),
        ({"signals": "1C"}, "signals"),
        ({"fields": ["code"]}, "fields"),
        ({"fields": ["phase", "phase"]}, "fields"),
        ({"start": 3}, "start"),
        ({"start": "yesterday"}, "start"),
        ({"end": "3000-01-01"}, "end: found 3000-01-01, expected times from 1678"),
        ({"start": "2020-06-25", "end": "2020-06-24"}, "end"),
        ({"every_s": 0}, "every_s"),
        ({"flags": 1}, "flags"),
    ],
)
def test_wrong_selections_are_named(observations, arguments, words):
    with pytest.raises(orsolva.ArgumentError, match=words):
        orsolva.read_obs(observations, **arguments)
    with pytest.raises(orsolva.ArgumentError, match=words):
        orsolva.iter_obs(observations, 10, **arguments)


def test_a_file_without_observations_is_a_run_error(folder):
    with pytest.raises(orsolva.RunError, match="no observation file"):
        orsolva.qc_many(list(folder.glob("*_MN.rnx")))


def test_strict_runs_need_navigation(tmp_path, observations):
    alone = tmp_path / observations.name
    alone.write_bytes(observations.read_bytes())
    with pytest.raises(orsolva.RunError, match="broadcast"):
        orsolva.qc(alone, strict=True)


def test_lost_data_warn_once(tmp_path, observations, navigation):
    import gzip

    whole = gzip.compress(observations.read_bytes())
    cut = tmp_path / "cut.rnx.gz"
    cut.write_bytes(whole[: len(whole) // 2])
    with pytest.warns(orsolva.DataLostWarning) as warned:
        report = orsolva.qc(cut, navigation)
    assert len(warned) == 1 and report.read_error
    with pytest.warns(orsolva.DataLostWarning):
        part = orsolva.read_obs(cut)
    assert part.read_error and 0 < len(part.epochs) < 400


def test_tables_and_reports_are_not_made_from_elsewhere():
    for kind in (orsolva.Table, orsolva.Report, orsolva.Navigation):
        with pytest.raises(orsolva.ArgumentTypeError):
            kind(np.zeros(3))
