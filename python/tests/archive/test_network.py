"""Steps of the whole network against those of single stations, in simulated series whose changes are known."""
import datetime

import numpy as np
import pytest

from orsolva.archive.trends import Daily, Key, StationTrend, _gather, mark, network_changes, station_changes
from orsolva.archive import network as network_module
from orsolva.archive.network import Step, Steps, _most_together

FIRST, DAYS = datetime.date(2026, 1, 1), 120
SNR, MULTIPATH = Key("snr", "G1C"), Key("multipath", "G1C")


def network(stations, seed, steps, days=DAYS, equipment=None):
    """Stations with SNR and multipath of a signal. @param steps  {station: [(day, dB, ratio of multipath)]}"""
    made = []
    for number in range(stations):
        chance = np.random.default_rng([seed, number])
        snr, multipath = 45 + chance.normal(0, 0.2, days), 0.4 * (1 + chance.normal(0, 0.04, days))
        for day, size, ratio in steps.get(number, []):
            snr[day:] += size
            multipath[day:] *= ratio
        dates = [FIRST + datetime.timedelta(days=day) for day in range(days)]
        series = {SNR: Daily(dates, snr), MULTIPATH: Daily(dates, multipath)}
        made.append(StationTrend(f"ST{number:02}", None, series, [], (equipment or {}).get(number, [])))
    return found_in(made)


def found_in(stations):
    """The stations with their changes, marked as `trends` does."""
    steps = Steps()
    for trend in stations:
        trend.changes = station_changes(trend.series, trend.equipment)
        _gather(steps, trend)
    for trend in stations:
        mark(trend.changes, steps.network_changes())
    return stations


@pytest.mark.parametrize("seed", range(5))
@pytest.mark.parametrize("stations, share", [(8, 1.0), (20, 0.9), (60, 0.5), (12, 0.34)])
def test_a_step_of_the_network_is_found_on_its_day_and_others_stay_the_stations_own(seed, stations, share):
    together = int(np.ceil(share * stations))
    steps = {number: [(60, -2.0, 1.0)] for number in range(together)}
    steps[1].append((90, -3.0, 1.0))  # of a single station, a month later
    found = network(stations, seed, steps)
    (change,) = network_changes(found)
    assert abs((change.day - FIRST).days - 60) <= 1 and change.figure == "snr"
    assert (change.stations, change.watched) == (together, stations) and change.size == pytest.approx(-2, abs=0.15)
    for number, trend in enumerate(found):
        assert [one.network is not None for one in trend.changes] == ([True] if number < together else []) + ([False] if number == 1 else [])
    assert f"network-wide, at {together} of {stations} stations" in str(found[0].changes[0])


@pytest.mark.parametrize("seed", range(10))
def test_steps_of_stations_on_days_of_their_own_are_not_the_networks(seed):
    """Forty stations with two steps each within four months: more than ever happens."""
    chance = np.random.default_rng(seed)
    steps = {number: [(int(day), float(chance.choice([-3, 3])), 1.0) for day in chance.choice(np.arange(10, 110), 2, replace=False)] for number in range(40)}
    found = network(40, seed, steps)
    assert network_changes(found) == []
    assert sum(len(trend.changes) for trend in found) >= 70


def plainly_together(steps):
    """The rule as it reads: each time the five days with steps of most stations, the first of them where several have as many."""
    left = sorted(steps)
    while left:
        windows = [[step for step in left if abs((step.day - day).days) <= 2] for day in sorted({step.day for step in left})]
        near = max(windows, key=lambda window: len({step.station for step in window}))
        if len({step.station for step in near}) < 4:
            return
        yield near
        left = [step for step in left if step not in near]


@pytest.mark.parametrize("seed", range(40))
def test_steps_are_grouped_as_the_rule_reads(seed):
    chance = np.random.default_rng(seed)
    stations, days, count = chance.integers(4, 40), chance.integers(5, 200), chance.integers(0, 300)
    steps = [
        Step(FIRST + datetime.timedelta(days=int(chance.integers(days))), f"ST{chance.integers(stations):02}", float(chance.integers(1, 4)), 1.0)
        for _ in range(count)
    ]
    assert list(_most_together(steps)) == list(plainly_together(steps))


def test_the_cost_of_grouping_grows_with_the_number_of_steps():
    """Days that are looked at, for as many steps a day."""
    def looks(days):
        steps = [Step(FIRST + datetime.timedelta(days=day), f"ST{station:02}", 1.0, 1.0) for day in range(days) for station in range(8)]
        with pytest.MonkeyPatch.context() as patched:
            patched.setattr(network_module, "_near", lambda by_day, day, real=network_module._near: seen.append(day) or real(by_day, day))
            seen = []
            assert sum(map(len, _most_together(steps))) == len(steps)
        return len(seen)

    assert looks(1000) < 11 * looks(100)


def test_a_quiet_network_has_no_changes():
    assert [trend.changes for trend in network(40, 1, {}, days=365)] == [[]] * 40


def test_fewer_than_four_stations_or_a_third_of_them_are_no_network():
    assert network_changes(network(3, 1, {number: [(60, -2.0, 1.0)] for number in range(3)})) == []
    assert network_changes(network(30, 1, {number: [(60, -2.0, 1.0)] for number in range(9)})) == []
    assert len(network_changes(network(4, 1, {number: [(60, -2.0, 1.0)] for number in range(4)}))) == 1


def test_opposite_directions_are_not_together():
    assert network_changes(network(6, 1, {number: [(60, -2.0 if number % 2 else 2.0, 1.0)] for number in range(6)})) == []


def test_a_station_that_breaks_on_the_day_of_the_network_is_still_its_own():
    steps = {number: [(60, -2.0, 1.0)] for number in range(10)}
    steps[3] = [(60, -9.0, 1.0)]
    found = network(10, 2, steps)
    assert [trend.changes[0].network is None for trend in found] == [number == 3 for number in range(10)]


def test_new_equipment_explains_first():
    day = FIRST + datetime.timedelta(days=60)
    steps = {number: [(60, -2.0, 1.0)] for number in range(10)}
    found = network(10, 2, steps, equipment={4: [(day, "antenna A to B")]})
    assert found[4].changes[0].why == "explained by antenna A to B"
    (change,) = network_changes(found)
    assert (change.stations, change.watched) == (9, 10)
