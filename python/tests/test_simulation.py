"""Simulated days and their comparison with reports."""
import json

import pytest

import orsolva


def test_the_same_arguments_give_the_same_bits(day):
    again = orsolva.simulate("station-day", seed=7, hours=3)
    assert (again.observations.table["phase_cycles"] == day.observations.table["phase_cycles"]).all()
    assert again.truth == day.truth
    other = orsolva.simulate("station-day", seed=8, hours=3)
    assert other.truth != day.truth


def test_settings_reach_the_scenario():
    day = orsolva.simulate(hours=0.2, interval_s=1, systems="G", start="2021-01-01 06:00:00", scenario={"errors": {"troposphere": False}})
    assert len(day.observations.epochs) == 720 and {n[0] for n in day.observations.table["satellite"]} == {"G"}
    assert str(day.observations.epochs["time"][0]).startswith("2021-01-01T06:00:00")


def test_wrong_settings_are_named():
    for arguments in ({"preset": "no such"}, {"hours": -1}, {"systems": "X"}, {"scenario": {"no_such": 1}}, {"faults": ["no such"]}):
        with pytest.raises(orsolva.ScenarioError):
            orsolva.simulate(**arguments)
    with pytest.raises(orsolva.ArgumentTypeError):
        orsolva.simulate(scenario={"name": object()})
    assert "station-day" in orsolva.presets()


def test_files_are_those_of_the_command(day, folder, command, tmp_path):
    command("simulate", "--preset", "station-day", "--seed", "7", "--hours", "3", "--output", tmp_path)
    for file in folder.iterdir():
        assert file.read_bytes() == (tmp_path / file.name).read_bytes()


def test_compare_takes_reports_and_files(day, folder, report, command, tmp_path):
    text = orsolva.compare(report, day)
    assert "truth" in text.lower() and text == orsolva.compare(report, day.truth)
    path = tmp_path / "r.json"
    report.to_json(path)
    assert orsolva.compare(path, folder / "truth.json").encode() == command("compare", path, folder / "truth.json")
    with pytest.raises(orsolva.RunError):
        orsolva.compare(report, orsolva.simulate(hours=1))
    assert json.loads((folder / "truth.json").read_text()) == day.truth
