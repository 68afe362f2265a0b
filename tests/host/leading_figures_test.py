#!/usr/bin/env python3
"""The figures that a report leads with hold where those of archives mislead.

usage: leading_figures_test.py PROGRAM DATA_FOLDER

Each law judges a real file, some after a small change. Exits 77 (skipped) without the data, unless ORSOLVA_NO_SKIPS is
set.
"""
import csv
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

program, data = sys.argv[1], pathlib.Path(sys.argv[2])
DAY = [data / "ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz", data / "ESBC00DNK_R_20201770000_01D_MN.rnx.gz"]
QUARTER = [data / "SEPT078M.21O", data / "SEPT078M.21P"]
HOUR = [data / "KMS300DNK_R_20221591000_01H_30S_MO.crx", data / "KMS300DNK_R_20221591000_01H_MN.rnx.gz"]
SHORT = [data / "AJAC3550.21O"]
if not all(path.exists() for path in DAY + QUARTER + HOUR + SHORT):
    print("no data in", data)
    sys.exit(1 if os.environ.get("ORSOLVA_NO_SKIPS") else 77)


def report(files, *options):
    run = subprocess.run([program, "qc", "--no-config", "--quiet", "--json", *options, *map(str, files)],
                         stdout=subprocess.PIPE, check=True)
    return json.loads(run.stdout)


def signal(analysis, letter, code):
    return next(s for s in analysis["signals"] if (s["letter"], s["signal"]) == (letter, code))


def multipath_of_gps_does_not_depend_on_the_librarys_combination():
    """At 5 degrees the library's best combination holds 1W, which has no multipath pair."""
    low = report(DAY, "--elevation", "5")
    gps = next(s for s in low["library"]["systems"] if s["letter"] == "G")
    assert "1W" in gps["optimal_combination"], gps["optimal_combination"]
    assert low["headline"]["gps_mp1_rms_m"] == signal(low["analysis"], "G", "1C")["multipath_moving_rms_m"]
    assert low["headline"]["gps_mp2_rms_m"] == signal(low["analysis"], "G", "2W")["multipath_moving_rms_m"]
    assert 0.1 < low["headline"]["gps_mp1_rms_m"] < 0.4, low["headline"]
    line = subprocess.run([program, "qc", "--no-config", "--quiet", "--sum", "--elevation", "5", *map(str, DAY)],
                          stdout=subprocess.PIPE, check=True, text=True).stdout
    fields = next(row for row in line.splitlines() if row.startswith("SUM ")).split(" ")
    assert fields[8] == f"{low['headline']['gps_mp1_rms_m']:.3f}", fields


def the_day_has_completeness_and_strength_of_every_galileo_signal(day):
    for code in ("1C", "5Q", "6C", "7Q", "8Q"):
        figures = signal(day["analysis"], "E", code)
        assert figures["cutoff_completeness_ratio"] > 0.5 and figures["strength_mean_dbhz"] > 25, (code, figures)
    galileo = next(s for s in day["analysis"]["systems"] if s["letter"] == "E")
    assert galileo["cutoff_completeness_ratio"] > 0.9, galileo


def satellites_count_the_signals_that_they_transmit(day):
    """C05 and C16 send B1I and B2I here, not B3I: the library counts none of their epochs."""
    for name in ("C05", "C16"):
        library = next(s for s in day["library"]["satellites"] if s["satellite"] == name)
        ours = next(s for s in day["analysis"]["satellites"] if s["satellite"] == name)
        assert library["observed_epochs"] == 0, library
        assert ours["cutoff_completeness_ratio"] > 0.9, ours


def slips_of_the_day_are_few(day):
    """An independent test of the geometry-free and the wide-lane phase finds 13 on E6 and 6 on 2I and 6I."""
    assert day["headline"]["cycle_slips"] < 40, day["headline"]
    assert day["library"]["library_total"]["total_phase_geometry_slip_epochs"] > 5000
    by_system = sum(s[k] or 0 for s in day["analysis"]["systems"]
                    for k in ("sure_slips", "unsure_slips", "half_cycle_slips", "phase_jumps"))
    assert by_system == day["headline"]["cycle_slips"]


def strength_is_one_population(day):
    """Every value counts once: the mean is that of the ranges of elevation, whatever the cut-off."""
    figures = signal(day["analysis"], "G", "1C")
    bins = figures["strength_mean_by_elevation"]
    assert sum(b["values"] for b in bins) <= figures["strength_values_used"]
    mean = sum(b["value"] * b["values"] for b in bins) / sum(b["values"] for b in bins)
    assert abs(mean - figures["strength_mean_dbhz"]) < 0.05, (mean, figures["strength_mean_dbhz"])
    high = report(DAY, "--elevation", "25")["analysis"]
    assert signal(high, "G", "1C")["strength_mean_dbhz"] == figures["strength_mean_dbhz"]


def files_without_strengths_have_a_completeness():
    hour = report(HOUR)
    assert hour["library"]["headline"]["completeness_ratio"] is None
    assert hour["headline"]["cutoff_completeness_ratio"] > 0.9
    assert signal(hour["analysis"], "G", "1C")["strength_mean_dbhz"] is None


def every_signal_of_a_file_is_in_the_tables(folder):
    """QZSS 2X and 5X, made from 2L and 5Q in the header."""
    observations = folder / "SEPT078M.21O"
    lines = QUARTER[0].read_text(encoding="latin-1").splitlines(keepends=True)
    at = next(i for i, line in enumerate(lines) if line.startswith("J ") and "SYS / # / OBS TYPES" in line)
    for i in range(at, at + 3):
        if i == at or lines[i].startswith("   "):
            lines[i] = lines[i].replace("2L", "2X").replace("5Q", "5X")
    observations.write_text("".join(lines), encoding="latin-1")
    analysis = report([observations, QUARTER[1]])["analysis"]
    codes = {s["signal"] for s in analysis["signals"] if s["letter"] == "J"}
    assert codes == {"1C", "2X", "5X"}, codes
    assert signal(analysis, "J", "2X")["code_values"] > 1000


def multipath_of_two_epochs_is_absent():
    for figures in report(SHORT)["analysis"]["signals"]:
        assert figures["multipath_moving_rms_m"] is None and figures["code_noise_m"] is None, figures


def flags_and_power_failures_are_counted(folder):
    made = folder / "half"
    subprocess.run([program, "simulate", "--preset", "half-cycles", "--hours", "4", "--output", str(made)], check=True,
                   stdout=subprocess.DEVNULL)
    found = report([next(made.glob("*_MO.rnx")), next(made.glob("*_MN.rnx"))])
    assert sum(s["loss_of_lock_flags"] or 0 for s in found["analysis"]["systems"]) > 0
    made = folder / "jumps"
    subprocess.run([program, "simulate", "--preset", "clock-jumps", "--output", str(made)], check=True,
                   stdout=subprocess.DEVNULL)
    found = report([next(made.glob("*_MO.rnx")), next(made.glob("*_MN.rnx"))])
    assert "power-failures" in {f["id"] for f in found["findings"]}, found["findings"]


def slips_found_are_the_slips_injected(folder):
    """The day of the demo, by signal."""
    made = folder / "demo"
    subprocess.run([program, "simulate", "--preset", "station-day", "--output", str(made)], check=True,
                   stdout=subprocess.DEVNULL)
    found = report([next(made.glob("*_MO.rnx")), next(made.glob("*_MN.rnx"))])
    injected = {}
    for fault in json.loads((made / "truth.json").read_text("utf-8"))["faults"]:
        if fault["kind"] == "slip" and fault["shows_in_the_data"]:
            key = fault["satellite"][0], fault["signal"]
            injected[key] = injected.get(key, 0) + 1
    counts = {(s["letter"], s["signal"]): sum(s[k] or 0 for k in ("sure_slips", "unsure_slips", "half_cycle_slips",
                                                                  "phase_jumps"))
              for s in found["analysis"]["signals"]}
    assert {k: n for k, n in counts.items() if n > 0} == injected, (counts, injected)


def slips_of_one_and_two_cycles_high_in_the_sky_are_found(folder):
    """At 30 s: a test of the geometry-free phase whose threshold grows with the interval does not see them."""
    made = folder / "small"
    scenario = folder / "small.json"
    scenario.write_text(json.dumps({"hours": 6, "interval_s": 30, "systems": "GE", "faults": [
        {"kind": "slip", "size": size, "random": 10, "random_above_deg": 60} for size in (1, 2)]}), encoding="utf-8")
    subprocess.run([program, "simulate", "--scenario", str(scenario), "--output", str(made)], check=True,
                   stdout=subprocess.DEVNULL)
    events = folder / "small.csv"
    report([next(made.glob("*_MO.rnx")), next(made.glob("*_MN.rnx"))], f"--events={events}")
    with open(events, encoding="utf-8", newline="") as table:
        found = {(e["time_gpst"], e["satellite"], e["signals"], e["size_cycles"]) for e in csv.DictReader(table)
                 if e["kind"] == "slip"}
    truth = json.loads((made / "truth.json").read_text("utf-8"))["faults"]
    injected = {(f["time_gpst"], f["satellite"], f["signal"], f"{f['size']:g}") for f in truth}
    assert len(injected) == 20 and all(f["elevation_deg"] > 60 for f in truth)
    assert found == injected, found ^ injected


def no_message_names_line_0(folder):
    """A message about a file as a whole names the file alone."""
    empty, short = folder / "empty.21O", folder / "short.21O.gz"
    empty.write_text("")
    short.write_bytes(DAY[1].read_bytes()[:3000])
    (folder / "nothing").mkdir()
    for files in ([empty], [short], [QUARTER[0], folder / "mistyped.21P"], [folder / "mistyped.21O"],
                  [QUARTER[0], empty], [QUARTER[0], short], [QUARTER[0], "--nav", empty], [QUARTER[1]], [folder / "nothing"]):
        for output in ("--text", "--json", "--csv", "--sum"):
            run = subprocess.run([program, "qc", "--no-config", f"{output}=-", *map(str, files)], check=False,
                                 stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
            assert run.returncode == 1, (files, run.returncode)
            for said in (run.stdout, run.stderr):
                assert not re.search(r"[A-Za-z]:0\b", said), (files, said)


day = report(DAY, "--sats")
with tempfile.TemporaryDirectory() as work:
    folder = pathlib.Path(work)
    multipath_of_gps_does_not_depend_on_the_librarys_combination()
    the_day_has_completeness_and_strength_of_every_galileo_signal(day)
    satellites_count_the_signals_that_they_transmit(day)
    slips_of_the_day_are_few(day)
    strength_is_one_population(day)
    files_without_strengths_have_a_completeness()
    every_signal_of_a_file_is_in_the_tables(folder)
    multipath_of_two_epochs_is_absent()
    flags_and_power_failures_are_counted(folder)
    slips_found_are_the_slips_injected(folder)
    slips_of_one_and_two_cycles_high_in_the_sky_are_found(folder)
    no_message_names_line_0(folder)
print("12 laws held")
