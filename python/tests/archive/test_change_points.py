"""Change points of series whose changes are known."""
import numpy as np
import pytest

from orsolva.archive.change_points import changes, scatter_of, without_outliers
from orsolva.archive.figures import BY_KEY
from orsolva.archive.trends import Daily, off_baseline

import datetime

DAY = datetime.date(2026, 1, 1)


def noise(n, scatter, seed):
    return scatter * np.random.default_rng(seed).standard_normal(n)


@pytest.mark.parametrize("seed", range(5))
@pytest.mark.parametrize("day", [10, 40, 112])
def test_a_step_is_found_on_its_day(seed, day):
    y = 45 + noise(120, 0.3, seed)
    y[day:] -= 3
    (found,) = changes(y, 0.5)
    assert abs(found.place - day) <= 1 and found.kind == "step"
    assert found.size == pytest.approx(-3, abs=0.5)


def test_two_steps_are_two_changes():
    y = 0.4 + noise(120, 0.02, 1)
    y[40:] += 0.4
    y[80:] -= 0.3
    assert [(found.place, round(found.size, 1)) for found in changes(y, 0.08)] == [(40, 0.4), (80, -0.3)]


@pytest.mark.parametrize("seed", range(5))
def test_a_slow_decay_is_one_drift_from_its_begin(seed):
    y = 45 + noise(120, 0.05, seed)
    y[50:] -= 0.05 * np.arange(70)
    (found,) = changes(y, 0.5)
    assert abs(found.place - 50) <= 2 and found.kind == "drift"
    assert found.per_day == pytest.approx(-0.05, abs=0.005)


def test_noise_and_single_bad_days_are_no_change():
    for seed in range(50):
        y = 45 + noise(365, 0.3, seed)
        y[[20, 100, 101, 300]] -= 8
        assert changes(y, 0.5) == [], seed


def test_what_is_too_small_to_matter_is_no_change():
    y = 45 + noise(120, 0.01, 3)
    y[60:] += 0.3
    assert changes(y, 0.5) == []
    assert len(changes(y, 0.2)) == 1


def test_short_and_constant_series_have_no_changes():
    for n in range(12):
        assert changes(np.full(n, 7.0), 0.1) == []
    assert changes(np.zeros(400), 0.02) == []


def test_the_scatter_is_that_of_the_days_whatever_steps_there_are():
    y = noise(2000, 0.3, 5)
    y[1000:] += 50
    assert scatter_of(y) == pytest.approx(0.3, rel=0.1)


def test_outliers_take_the_median_of_their_neighbours():
    y = np.array([1.0, 1.1, 0.9, 1.0, 9.0, 1.1, 1.0, 0.9, 1.0, 1.1])
    assert np.abs(without_outliers(y) - 1).max() < 0.2


@pytest.mark.parametrize("last, off", [([45, 45, 45, 41], False), ([41, 45, 45, 41], False), ([41, 45, 41, 41], True), ([41, 41, 41, 45], True)])
def test_three_of_four_days_are_a_trend_and_one_is_a_bad_day(last, off):
    values = np.concatenate([45 + noise(60, 0.2, 8), np.array(last, float)])
    days = [DAY + datetime.timedelta(days=day) for day in range(64)]
    found = off_baseline(Daily(days, values), BY_KEY["snr"], [])
    assert (found is not None) == off
    if off:
        assert found == pytest.approx(45, abs=0.1)


def test_the_baseline_begins_after_new_equipment():
    values = np.concatenate([45 + noise(40, 0.2, 1), 41 + noise(24, 0.2, 2)])
    days = [DAY + datetime.timedelta(days=day) for day in range(64)]
    assert off_baseline(Daily(days, values), BY_KEY["snr"], [days[40]]) is None
