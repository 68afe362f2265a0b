#!/usr/bin/env python3
"""Parts of the data, windows, spans of several files, tables and comparisons: each figure against a sum of its own.

usage: parts_test.py PROGRAM

Three hours with slips are simulated. What the command says of a part of them is held against sums over the lines of the
file, against the truth of the simulator, and against files from which the rest was removed beforehand.
"""
import collections
import csv
import json
import math
import os
import pathlib
import subprocess
import sys
import tempfile
import threading

program = sys.argv[1]
SLIPS = {"slip", "half_cycle", "jump"}
WHOLE_SLIPS = ("sure_slips", "unsure_slips", "half_cycle_slips", "phase_jumps")


def run(*arguments, code=0):
    done = subprocess.run([program, *map(str, arguments)], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                          check=False)
    assert done.returncode == code, (arguments, done.returncode, done.stderr)
    return done.stdout


def report(files, *options, code=0):
    return json.loads(run("qc", "--no-config", "--quiet", "--json", *options, *files, code=code))


def rows(path):
    with open(path, encoding="utf-8", newline="") as table:
        return list(csv.DictReader(table))


class Rinex:
    """A RINEX 3 file as lines: a header, and for each epoch its seconds of day and lines."""

    def __init__(self, text):
        self.header, body = text.split("END OF HEADER", 1)
        end, body = body.split("\n", 1)
        self.header += "END OF HEADER" + end + "\n"
        self.epochs = []
        for block in body.split("> ")[1:]:
            clock = block.split("\n", 1)[0].split()
            self.epochs.append((int(clock[3]) * 3600 + int(clock[4]) * 60 + float(clock[5]), "> " + block))
        self.types = {}
        for line in self.header.splitlines():
            if line[60:].startswith("SYS / # / OBS TYPES"):
                letter = line[0] if line[0] != " " else letter
                self.types.setdefault(letter, []).extend(line[7:60].split())

    def text(self, keep=lambda seconds: True):
        return self.header + "".join(lines for seconds, lines in self.epochs if keep(seconds))

    def values(self, kept=lambda seconds: True):
        """Of every signal, such as ("G", "1C"): the values of each kind, C, L and S."""
        found = collections.defaultdict(lambda: collections.defaultdict(list))
        for seconds, lines in self.epochs:
            if not kept(seconds):
                continue
            for line in lines.splitlines()[1:]:
                for i, kind in enumerate(self.types[line[0]]):
                    cell = line[3 + 16 * i: 17 + 16 * i].strip()
                    if cell:
                        found[line[0], kind[1:]][kind[0]].append(float(cell))
        return found


def seconds_of(time):
    hours, minutes, seconds = time[11:].split(":")
    return int(hours) * 3600 + int(minutes) * 60 + float(seconds)


def signals_of(owner):
    return {(s["letter"], s["signal"]): s for s in owner["signals"]}


def holds_the_values(figures, values):
    """Counts and mean strengths of signals are those of the lines."""
    assert {key for key, s in figures.items() if s["code_values"]} == set(values)
    for key, of in values.items():
        assert figures[key]["code_values"] == len(of["C"]), key
        assert figures[key]["phase_values"] == len(of["L"]), key
        assert math.isclose(figures[key]["strength_mean_dbhz"], sum(of["S"]) / len(of["S"]), abs_tol=1e-9), key


class Laws:
    def __init__(self, work):
        self.work = work
        run("simulate", "--preset", "slips", "--hours", "3", "--output", work)
        self.file, self.navigation = next(work.glob("*_MO.rnx")), next(work.glob("*_MN.rnx"))
        self.rinex = Rinex(self.file.read_text(encoding="ascii"))
        self.truth = json.loads((work / "truth.json").read_text(encoding="utf-8"))
        self.events = work / "events.csv"
        self.whole = report([self.file, self.navigation], f"--events={self.events}", "--window", "1h", "--sats")

    def write(self, name, text):
        folder = self.work / name
        folder.mkdir()
        path = folder / self.file.name
        path.write_text(text, encoding="ascii")
        return path

    def windows_are_sums_over_their_hours(self):
        windows = self.whole["analysis"]["windows"]
        assert [w["from_gpst"][11:19] for w in windows] == ["00:00:00", "01:00:00", "02:00:00"]
        found = [e for e in rows(self.events) if e["kind"] in SLIPS]
        for hour, window in enumerate(windows):
            def inside(seconds, begin=3600 * hour):
                return begin <= seconds < begin + 3600
            assert window["present_epochs"] == sum(inside(seconds) for seconds, _ in self.rinex.epochs) == 120
            holds_the_values(signals_of(window), self.rinex.values(inside))
            slips = sum(s[key] or 0 for s in window["systems"] for key in WHOLE_SLIPS)
            assert slips == sum(inside(seconds_of(e["time_gpst"])) for e in found), (hour, slips)
            assert slips > 10
        for key in (*WHOLE_SLIPS, "tested_steps", "cutoff_observed_epochs", "cutoff_expected_epochs"):
            for i, system in enumerate(self.whole["analysis"]["systems"]):
                assert sum(w["systems"][i][key] or 0 for w in windows) == (system[key] or 0), (key, system["letter"])

    def windows_at_the_end_have_the_slips_of_their_time(self):
        """The last epochs are decided together, in whatever order: a border among them divides them all the same."""
        table = self.work / "end.csv"
        borders = 0
        for slip in [e for e in rows(self.events) if e["kind"] in SLIPS][20:60:5]:
            end = seconds_of(slip["time_gpst"]) + 61
            part = report([self.file, self.navigation], f"--events={table}", "--window", "1m", "--end",
                          f"{int(end // 3600):02}:{int(end % 3600 // 60):02}:{int(end % 60):02}")
            found = collections.Counter(int(seconds_of(e["time_gpst"]) // 60) for e in rows(table) if e["kind"] in SLIPS)
            for window in part["analysis"]["windows"][-4:]:
                slips = sum(s[key] or 0 for s in window["systems"] for key in WHOLE_SLIPS)
                assert slips == found[int(seconds_of(window["from_gpst"]) // 60)], (slip["time_gpst"], window["from_gpst"])
                borders += slips > 0
        assert borders >= 4

    def events_are_the_slips_of_the_truth(self):
        found = {(e["time_gpst"], e["satellite"]) for e in rows(self.events) if e["kind"] in SLIPS}
        injected = {(f["time_gpst"], f["satellite"]) for f in self.truth["faults"] if f["kind"] == "slip"}
        assert found == injected and len(found) == self.whole["headline"]["cycle_slips"], found ^ injected

    def a_span_of_time_is_the_file_without_the_rest(self):
        def inside(seconds):
            return 3600 <= seconds < 7200
        part = report([self.file, self.navigation], "--start", "01:00", "--end", "02:00")
        cut = report([self.write("cut", self.rinex.text(inside)), self.navigation])
        assert part["analysis"]["signals"] == cut["analysis"]["signals"]
        assert part["analysis"]["systems"] == cut["analysis"]["systems"]
        holds_the_values(signals_of(part["analysis"]), self.rinex.values(inside))
        chosen = part["run"]["selection"]
        assert chosen["start_gpst"] == "2020-06-25 01:00:00.000" and chosen["end_gpst"] == "2020-06-25 02:00:00.000"
        assert chosen["epochs_left_out"] == sum(not inside(seconds) for seconds, _ in self.rinex.epochs) == 240
        assert part["headline"]["nominal_epochs"] == part["headline"]["present_epochs"] == 120

    def sampling_is_the_file_without_the_epochs_between(self):
        def on_grid(seconds):
            return seconds % 120 == 0
        part = report([self.file, self.navigation], "--sampling", "120")
        thinned = self.rinex.text(on_grid).replace("    30.000 ", "   120.000 ", 1)
        cut = report([self.write("thin", thinned), self.navigation])
        assert part["analysis"]["signals"] == cut["analysis"]["signals"]
        holds_the_values(signals_of(part["analysis"]), self.rinex.values(on_grid))
        assert part["headline"]["present_epochs"] == part["headline"]["nominal_epochs"] == 90
        assert part["run"]["interval_s"] == 120

    def signals_are_those_chosen_and_all_of_other_systems(self):
        part = report([self.file, self.navigation], "--signals", "G:1C,2W,E:1C")
        values = {key: of for key, of in self.rinex.values().items()
                  if key[0] not in "GE" or key in (("G", "1C"), ("G", "2W"), ("E", "1C"))}
        holds_the_values(signals_of(part["analysis"]), values)
        assert len(values) < len(self.rinex.values())

    def files_of_a_day_are_one_span_also_in_parts(self):
        folder = self.work / "quarters"
        folder.mkdir()
        quarters = []
        for begin in range(0, 3 * 3600, 900):
            name = f"SIMU00ORS_R_2020177{begin // 3600:02}{begin % 3600 // 60:02}_15M_30S_MO.rnx"
            quarters.append(folder / name)
            quarters[-1].write_text(self.rinex.text(lambda s, b=begin: b <= s < b + 900), encoding="ascii")
        for options in ([], ["--start", "00:50", "--end", "02:10", "--sampling", "60", "--signals", "G:1C,5Q"]):
            joined = report([*reversed(quarters), "--nav", self.navigation], "--join", "day", *options)
            alone = report([self.file, self.navigation], *options)
            assert joined["analysis"]["signals"] == alone["analysis"]["signals"], options
            assert joined["headline"]["present_epochs"] == alone["headline"]["present_epochs"]
            assert joined["run"]["joined_files"] == [str(path) for path in quarters], joined["run"]["joined_files"]
            assert alone["run"]["joined_files"] == [], alone["run"]["joined_files"]

    def series_are_sums_over_five_minutes(self):
        table = self.work / "series.csv"
        run("qc", "--no-config", "--quiet", f"--series={table}", self.file, self.navigation)
        bins = rows(table)
        found = [e for e in rows(self.events) if e["kind"] in SLIPS]
        for begin in range(0, 3 * 3600, 300):
            def inside(seconds, begin=begin):
                return begin <= seconds < begin + 300
            here = [r for r in bins if seconds_of(r["time_gpst"]) == begin]
            station = next(r for r in here if r["system"] == "" and r["satellite"] == "")
            assert int(station["observed_epochs"]) == 10
            assert int(station["slips"]) == sum(inside(seconds_of(e["time_gpst"])) for e in found), begin
            values = self.rinex.values(inside)
            signals = {(r["system"], r["signal"]): r for r in here if r["satellite"] == "" and r["signal"]}
            assert set(signals) == set(values)
            for key, of in values.items():
                assert int(signals[key]["snr_values"]) == len(of["S"]), (begin, key)
                mean = sum(of["S"]) / len(of["S"])
                assert math.isclose(float(signals[key]["snr_dbhz"]), mean, abs_tol=0.006), (begin, key)

    def piped(self, file):
        """A pipe into which the file is written once."""
        pipe = self.work / f"pipe{len(list(self.work.glob('pipe*')))}"
        os.mkfifo(pipe)
        threading.Thread(target=lambda: pipe.write_bytes(file.read_bytes()), daemon=True).start()
        return pipe

    def pipes_hold_what_files_hold(self):
        """Observations, also where files may be joined, and navigation, of RINEX and of a recorded stream."""
        made = self.work / "stream"
        run("simulate", "--preset", "slips", "--hours", "1", "--rtcm", "7", "--output", made)
        stream = next(made.glob("*.rtcm3"))
        for observations, navigation in ((self.file, self.navigation), (next(made.glob("*_MO.rnx")), stream)):
            alone = report([observations, "--nav", navigation])["analysis"]
            assert alone["with_orbits"]
            assert report([observations, "--nav", self.piped(navigation)])["analysis"] == alone
            taken = report([self.piped(observations), "--nav", navigation], "--join", "day")["analysis"]
            assert taken["signals"] == alone["signals"]

    def detail_is_filtered_by_satellite_and_signal(self):
        everything, part = self.work / "all.csv", self.work / "part.csv"
        run("qc", "--no-config", "--quiet", f"--detail={everything}", self.file, self.navigation)
        run("qc", "--no-config", "--quiet", f"--detail={part}", "--detail-satellites", "G01,R", "--detail-signals",
            "G:2W,R:1C", self.file, self.navigation)
        wanted = [r for r in rows(everything) if (r["satellite"] == "G01" and r["signal"] == "2W")
                  or (r["satellite"][0] == "R" and r["signal"] == "1C")]
        assert rows(part) == wanted
        assert {r["satellite"][0] for r in wanted} == {"G", "R"} and len(wanted) < len(rows(everything)) / 10

    def worse(self):
        """The file of a station whose G 1C is weaker by 5 dB and whose G 5Q is gone."""
        at = {kind: 3 + 16 * i for i, kind in enumerate(self.rinex.types["G"])}
        changed = Rinex(self.rinex.text())
        for i, (seconds, lines) in enumerate(changed.epochs):
            out = []
            for line in lines.split("\n"):
                if line[:1] == "G":
                    line = line.ljust(3 + 16 * len(at))
                    strength = line[at["S1C"]: at["S1C"] + 14]
                    if strength.strip():
                        line = line[: at["S1C"]] + f"{float(strength) - 5:14.3f}" + line[at["S1C"] + 14:]
                    for kind in ("C5Q", "L5Q", "D5Q", "S5Q"):
                        if kind in at:
                            line = line[: at[kind]] + 16 * " " + line[at[kind] + 16:]
                    line = line.rstrip()
                out.append(line)
            changed.epochs[i] = (seconds, "\n".join(out))
        return self.write("worse", changed.text())

    def what_became_worse_is_found_in_every_output(self):
        before, page, text = self.work / "before.json", self.work / "page.html", self.work / "now.txt"
        before.write_text(json.dumps(self.whole), encoding="utf-8")
        now = report([self.worse(), self.navigation], "--compare", before, f"--html={page}", f"--text={text}")
        comparison = now["comparison"]
        assert comparison["signals_gone"] == ["G 5Q"] and comparison["signals_appeared"] == []
        # Every change listed is one between the two reports, beyond its limit.
        figures = (signals_of(self.whole["analysis"]), signals_of(now["analysis"]))
        strengths = [c for c in comparison["figures"] if c["signal"] == "1C" and c["subject"] == "G"]
        assert {c["figure"] for c in strengths} >= {"strength_mean_dbhz", "strength_p5_dbhz"}, strengths
        for change in strengths:
            values = [f["G", "1C"][change["figure"]] for f in figures]
            assert [change["before"], change["after"]] == values, change
            assert abs(values[1] - values[0]) > change["limit"] and change["worse"] is True, change
        means = [sum(v["G", "1C"]["S"]) / len(v["G", "1C"]["S"]) for v in
                 (self.rinex.values(), Rinex((self.work / "worse" / self.file.name).read_text()).values())]
        assert math.isclose(means[0] - means[1], 5, abs_tol=1e-6)
        findings = {f["id"]: f for f in now["findings"]}
        assert findings["signals-gone"]["title"] == "1 signal of the earlier report gone: G 5Q"
        assert findings["became-worse"]["severity"] == "warning"
        said = findings["became-worse"]["title"] + findings["became-worse"]["text"]
        assert f"Mean signal strength, G 1C: {means[0]:.1f} dB-Hz -> {means[1]:.1f} dB-Hz" in said, said
        for output in (text, page):
            assert "1 signal of the earlier report gone: G 5Q" in output.read_text(encoding="utf-8"), output
        assert now["verdict"]["grade"] == "fair"
        # The same data have nothing worse.
        same = report([self.file, self.navigation], "--compare", before)
        assert same["comparison"]["figures"] == [] and same["comparison"]["figures_compared"] > 100
        assert next(f for f in same["findings"] if f["id"] == "nothing-worse")["severity"] == "good"


def main():
    failed = 0
    with tempfile.TemporaryDirectory() as name:
        laws = Laws(pathlib.Path(name))
        named = [law for law in dir(Laws) if "_" in law and not law.startswith("_")]
        for law in named:
            try:
                getattr(laws, law)()
            except AssertionError as error:
                failed += 1
                print(f"{law}: {error}"[:1000])
    print(f"{len(named)} laws, {failed} failed")
    sys.exit(bool(failed))


main()
