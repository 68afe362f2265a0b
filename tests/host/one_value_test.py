#!/usr/bin/env python3
"""One file, one figure, one value: every figure of every output agrees, for every observation file of the data.

usage: one_value_test.py PROGRAM DATA_FOLDER

Judges all files in one run with every format, then holds CSV, lines for grep, text, page, network table and
index against the JSON of the same file. Exits 77 (skipped) without the data, unless ORSOLVA_NO_SKIPS is set.
"""
import csv
import io
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import zlib

program, data = sys.argv[1], pathlib.Path(sys.argv[2])
OBSERVATIONS = re.compile(r"(_[MGRECJ]O\.(crx|rnx)|\.\d\d[oOdD])(\.gz)?$")


def is_observation_file(path):
    """By its name and its first line; a folder or another file of such a name is none."""
    if not OBSERVATIONS.search(path.name) or not path.is_file():
        return False
    begins = path.read_bytes()
    if begins[:2] == b"\x1f\x8b":
        begins = zlib.decompressobj(31).decompress(begins, 200)
    first = begins.partition(b"\n")[0]
    return b"OBSERVATION" in first or b"CRINEX" in first or b"COMPACT RINEX" in first


files = sorted(p for p in data.glob("*") if is_observation_file(p)) if data.is_dir() else []
if not files:
    print("no observation files in", data)
    sys.exit(1 if os.environ.get("ORSOLVA_NO_SKIPS") else 77)

checks = 0


def same(name, found, expected, decimals=None):
    """Exactly the same, or within half a unit of the last decimal written."""
    global checks
    checks += 1
    if expected is None:
        assert found in (None, "", "-"), (name, found, expected)
        return
    assert found not in (None, "", "-"), (name, found, expected)
    if decimals is None:
        assert float(found) == float(expected), (name, found, expected)
    else:
        assert len(found.partition(".")[2]) == decimals, (name, found, decimals)
        assert abs(float(found) - float(expected)) <= 0.5000001 * 10.0 ** -decimals, (name, found, expected)


def as_shown(key, value):
    return 100 * value if value is not None and key.endswith("_ratio") else value


def written(name, key, found, value):
    """A field of a text: rounded, ratios in percent."""
    decimals = len(found.partition(".")[2]) if found not in ("", "-") else None
    same(name, found, as_shown(key, value), decimals)


def numbers(owner, skip=()):
    return {k: v for k, v in owner.items()
            if k not in skip and (v is None or isinstance(v, (int, float)))}


NAMES = ("rinex_version", "marker", "receiver", "antenna", "first_epoch_gpst", "last_epoch_gpst", "slot", "band",
         "first_reference", "last_reference", "position_ecef_m", "solution_ecef_m", "with_orbits", "multipath_partner",
         "phase_noise_method", "selection", "stream")


BINS = {"strength_mean_by_elevation": "strength_mean_dbhz", "strength_p5_by_elevation": "strength_p5_dbhz",
        "multipath_by_elevation": "multipath_moving_rms_m"}


def add_analysis(add, analysis):
    def add_signal(subject, signal):
        add(subject, signal["signal"], signal)
        for name, key in BINS.items():
            for part_of in signal[name]:
                place = f"{signal['signal']}@{part_of['from_deg']}-{part_of['to_deg']}"
                add(subject, place, {key: part_of["value"]})

    add("", "", analysis)
    for system in analysis["systems"]:
        add(system["letter"], "", system)
    for signal in analysis["signals"]:
        add_signal(signal["letter"], signal)
    for pair in analysis["wide_lanes"]:
        add(pair["letter"], "-".join(pair["signals"]), pair)
    for satellite in analysis["satellites"]:
        add(satellite["satellite"], "", satellite)
    for signal in analysis["satellite_signals"]:
        add_signal(signal["satellite"], signal)


def figures_of(report):
    """Every figure of the JSON by the first three fields of its CSV row."""
    out = {}

    def add(subject, signal, owner):
        for key, value in numbers(owner, NAMES).items():
            # What the headline takes from the analysis has the same value there.
            taken = subject == "" and key in report["headline"] and owner is report["analysis"]
            assert (subject, signal, key) not in out or taken, (subject, signal, key, "twice in one report")
            assert not taken or out[subject, signal, key] == value, (key, value)
            out[subject, signal, key] = value

    library = report["library"]
    add("", "", report["run"])
    add("", "", report["headline"])
    add_analysis(add, report["analysis"])
    add("", "", library["run"])
    add("", "", library["headline"])
    add("all", "", library["library_total"])
    for slot in library["library_total"]["slots"]:
        add("all", f"slot{slot['slot']}", slot)
    for system in library["systems"]:
        add(system["letter"], "", system)
        for band in system["bands"]:
            add(system["letter"], band["band"], band)
    for signal in library["signals"]:
        add(signal["letter"], signal["signal"], signal)
    for satellite in library["satellites"]:
        add(satellite["satellite"], "", satellite)
        for band in satellite["bands"]:
            add(satellite["satellite"], band["band"], band)
    for row in report["run"]["navigation_coverage"]:
        add(row["satellite"], "", row)
    return out


def check_csv(name, text, figures, verdict):
    rows = list(csv.DictReader(io.StringIO(text)))
    first = rows.pop(0)
    assert (first["figure"], first["unit"]) == ("verdict", "text"), first
    assert first["value"] == f"{verdict['grade']} - {verdict['text']}", first
    found = {(r["satellite"], r["signal"], r["figure"]): r["value"] for r in rows}
    assert len(found) == len(rows), (name, "a figure stands twice in the CSV")
    assert set(found) == set(figures), (name, set(found) ^ set(figures))
    for key, value in figures.items():
        same((name, key), found[key], value)


WHOLE = ["expected_epochs", "observed_epochs", "completeness_ratio", "phase_geometry_slip_epochs",
         "mp_restart_epochs", "observations_per_restart"]
SIGNAL = ["expected_epochs", "observed_epochs", "completeness_ratio", "mp_rms_m", "mp_restart_epochs",
          "phase_geometry_slip_epochs", "observations_per_restart", "snr_mean_dbhz", "snr_mean_below_30deg_dbhz",
          "snr_mean_above_30deg_dbhz"]
BAND = ["mp_rms_m", "snr_mean_dbhz", "snr_mean_below_30deg_dbhz", "snr_mean_above_30deg_dbhz"]
KEYS = {"G": "=GPS", "R": "=GLO", "C": "=BDS", "E": "=GAL", "J": "=QZS", "I": "=IRN", "S": "=SBS"}


SYSTEM_FIELDS = ["satellites_tracked", "satellites_without_orbit", "horizon_completeness_ratio", "cutoff_expected_epochs",
                 "cutoff_observed_epochs", "cutoff_completeness_ratio", "sure_slips", "unsure_slips",
                 "half_cycle_slips", "phase_jumps", "tested_steps", "observations_per_slip", "observations_without_slip",
                 "interruptions_of_signals", "interruptions_of_satellites", "roti_p95_tecu_min"]
SIGNAL_FIELDS = ["horizon_completeness_ratio", "cutoff_expected_epochs", "cutoff_observed_epochs",
                 "cutoff_completeness_ratio", "strength_mean_dbhz", "strength_p5_dbhz", "multipath_moving_rms_m",
                 "code_noise_m", "sure_slips", "unsure_slips", "half_cycle_slips", "phase_jumps", "tested_steps",
                 "observations_per_slip", "observations_without_slip", "interruptions_of_signals",
                 "interruptions_of_satellites"]


def check_sum(name, text, report):
    first = text.splitlines()[0].split(" ", 2)
    assert first[0] == "#VERDICT" and first[2] == f"{report['verdict']['grade']} - {report['verdict']['text']}", first
    lines = {line.split(" ")[0]: line.split(" ") for line in text.splitlines() if not line.startswith("#")}
    library, head, analysis = report["library"], report["headline"], report["analysis"]
    per_slip = "observations_per_slip" if head["cycle_slips"] else "observations_without_slip"
    for field, key in zip(lines["SUM"][5:11], ["cutoff_expected_epochs", "cutoff_observed_epochs",
                                               "cutoff_completeness_ratio", "gps_mp1_rms_m", "gps_mp2_rms_m",
                                               per_slip]):
        written((name, "SUM", key), key, field, head[key])
    for line, owner in (("=ANALYSIS", head), ("=LIBRARY", library["headline"])):
        assert len(lines[line]) == len(owner) + 2, lines[line]
        for field, (key, value) in zip(lines[line][1:], owner.items()):
            written((name, line, key), key, field, value)
    for system in analysis["systems"]:
        fields = lines[KEYS[system["letter"]]]
        assert len(fields) == len(SYSTEM_FIELDS) + 2, fields
        for field, key in zip(fields[1:], SYSTEM_FIELDS):
            written((name, fields[0], key), key, field, system[key])
    for signal in analysis["signals"]:
        fields = lines[KEYS[signal["letter"]] + signal["signal"]]
        assert len(fields) == len(SIGNAL_FIELDS) + 2, fields
        for field, key in zip(fields[1:], SIGNAL_FIELDS):
            written((name, fields[0], key), key, field, signal[key])
    run = {**report["run"], **library["run"]}
    for field, key in zip(lines["=LIBRARY-RUN"][1:4], ["epochs", "judged_epochs", "lost_epochs"]):
        same((name, "=LIBRARY-RUN", key), field, run[key])

    def whole(fields, owner, bands, prefix):
        for field, key in zip(fields[2:8], WHOLE):
            written((name, fields[0], key), key, field, owner[prefix + key])
        for slot in range(1, 7):
            band = next((b for b in bands if b["slot"] == slot), {})
            for field, key in zip(fields[6 + 2 * slot:8 + 2 * slot], BAND):
                written((name, fields[0], slot, key), key, field, band.get(prefix + key))

    whole(lines["=LIBRARY-ALL"], library["library_total"], library["library_total"]["slots"], "total_")
    for system in library["systems"]:
        whole(lines["=LIBRARY-" + KEYS[system["letter"]][1:]], system, system["bands"], "")
    for signal in library["signals"]:
        fields = lines["=LIBRARY-" + KEYS[signal["letter"]][1:] + signal["signal"]]
        for field, key in zip(fields[2:12], SIGNAL):
            written((name, fields[0], key), key, field, signal[key])


def part(text, heading):
    """The lines of a part of the text report."""
    lines = text.splitlines()
    start = next((i for i, line in enumerate(lines) if line.startswith(heading)), None)
    if start is None:
        return []
    end = next((i for i in range(start, len(lines)) if lines[i] == ""), len(lines))
    return lines[start + 1:end]


def check_total(name, text, total):
    """The sums over all systems, and below an empty line the band slots."""
    sums = part(text, "LIBRARY TOTAL")[1:]
    if total["total_expected_epochs"] is None and not total["slots"]:
        assert not sums, (name, sums)
        return
    assert len(sums) == 1, (name, sums)
    fields = sums[0].split()
    assert len(fields) == len(WHOLE), (name, fields)
    for field, key in zip(fields, WHOLE):
        written((name, "text", "total", key), "total_" + key, field, total["total_" + key])
    rows = part(text, "Band slot")
    assert len(rows) == len(total["slots"]), (name, rows)
    for row, slot in zip(rows, total["slots"]):
        fields = row.split()
        assert fields[:2] == ["slot", str(slot["slot"])] and len(fields) == 2 + len(BAND), (name, row)
        for field, key in zip(fields[2:], BAND):
            written((name, "text", *fields[:2], key), key, field, slot["total_" + key])


def check_satellites(name, lines, satellites):
    """A row for each, and below it the bands that have an MP or an SNR."""
    at = 1
    for satellite in satellites:
        fields = lines[at].split()
        who = satellite["satellite"]
        assert fields[0] == who and len(fields) >= 2 + len(WHOLE), (name, who, lines[at])
        assert " ".join(fields[1:-len(WHOLE)]) == satellite["state"], (name, who, lines[at])
        for field, key in zip(fields[-len(WHOLE):], WHOLE):
            written((name, "text", who, key), key, field, satellite[key])
        below = []
        for at in range(at + 1, len(lines) + 1):
            if at == len(lines) or not lines[at].startswith(" "):
                break
            below += lines[at].split()
        lists, kind = {"MP": {}, "SNR": {}}, None
        for word in below:
            if word in lists:
                kind = lists[word]
            else:
                band, _, value = word.partition("=")
                kind[band] = value
        for kind, key in (("MP", "mp_rms_m"), ("SNR", "snr_mean_dbhz")):
            values = {b["band"]: b[key] for b in satellite["bands"] if b[key] is not None}
            assert set(lists[kind]) == set(values), (name, who, kind, lists[kind], values)
            for band, value in values.items():
                written((name, "text", who, band, key), key, lists[kind][band], value)
    assert at == len(lines) or not satellites, (name, lines[at:])


def elided(name, room=29):
    """A name as the column of a table holds it."""
    tail = (room - 3) // 2
    return name if len(name) <= room else name[:room - 3 - tail] + "..." + name[-tail:]


GROUPS = {"Completeness": ("completeness_", "expected_", "observed_"), "Multipath": ("mp", "observations_"),
          "Satellites": ("satellites_",), "Events": ("geometry_", "code_", "receiver_", "gaps_")}


HEADLINE = [(r"(\S+) nominal", "nominal_epochs"), (r"(\S+) present", "present_epochs"),
            (r"(\S+) missing", "missing_epochs"), (r"(\S+) gaps?\b", "data_gaps"),
            (r"(\S+) observations expected", "cutoff_expected_epochs"),
            (r"expected, (\S+) observed", "cutoff_observed_epochs"),
            (r"Completeness (\S+)(?: %)?,", "cutoff_completeness_ratio"),
            (r"Satellites (\S+) observed", "satellites_tracked"), (r"(\S+) with orbit", "satellites_with_orbit"),
            (r"(\S+) without orbit", "satellites_without_orbit"),
            (r"(\S+) never observed", "satellites_never_observed"), (r"Cycle slips (\S+),", "cycle_slips"),
            (r"(\S+) tested steps", "tested_steps"), (r"(\S+) of satellites,", "interruptions_of_satellites"),
            (r"(\S+) of single signals", "interruptions_of_signals"), (r"(\S+)(?: m)? MP1", "gps_mp1_rms_m"),
            (r"(\S+)(?: m)? MP2 of GPS", "gps_mp2_rms_m"), (r"(\S+)(?: m)? worst signal", "worst_multipath_rms_m")]


def check_headline(name, text, report):
    """The verdict in the second line, and the lines of the headline."""
    head = report["headline"]
    lines = text.splitlines()
    said = " ".join(" ".join(lines[1:lines.index("")]).split())
    assert said == " ".join(f"Verdict: {report['verdict']['grade']} - {report['verdict']['text']}".split()), (name, said)
    said = " ".join(" ".join(part(text, "HEADLINE")).split())
    for pattern, key in HEADLINE:
        found = re.search(pattern, said)
        if not found:  # a group without figures is one dash
            assert head[key] is None, (name, pattern, said)
            continue
        written((name, "text", key), key, found.group(1), head[key])
    if head["observations_without_slip"] is not None:
        assert f"more than {head['observations_without_slip']} observations per slip" in said, (name, said)
    elif head["observations_per_slip"] is not None:
        found = re.search(r"(\S+) observations per slip", said)
        written((name, "text"), "observations_per_slip", found.group(1), head["observations_per_slip"])


def check_text(name, text, report):
    check_headline(name, text, report)
    library = report["library"]
    head, run = library["headline"], {**report["run"], **library["run"]}
    said = " ".join(" ".join(part(text, "LIBRARY RECORD")).split())
    for pattern, key in [(r"Completeness (\S+)(?: %(?:\[\d+\])?)?,", "completeness_ratio"),
                         (r"(\S+) epochs expected", "expected_epochs"), (r"expected, (\S+) observed", "observed_epochs"),
                         (r"(\S+)(?: m)? MP1", "mp1_rms_m"), (r"(\S+)(?: m)? MP2", "mp2_rms_m"),
                         (r"(\S+) observations per restart", "observations_per_restart"),
                         (r"(\S+) observed, \S+ judged", "satellites_observed"), (r"(\S+) judged", "satellites_judged"),
                         (r"(\S+) excluded", "satellites_excluded"), (r"(\S+) unhealthy", "satellites_unhealthy"),
                         (r"(\S+) without record", "satellites_without_record"),
                         (r"(\S+) without position", "satellites_without_position"),
                         (r"(\S+) below the cut-off", "satellites_below_cutoff"),
                         (r"(\S+) geometry-free slips", "geometry_free_slips"), (r"(\S+) code jumps", "code_jumps"),
                         (r"(\S+) slips of the receiver", "receiver_slip_epochs"),
                         (r"(\S+) gaps in view", "gaps_in_view")]:
        found = re.search(pattern, said)
        if not found:  # a group without figures is one dash
            group = next(g for g, keys in GROUPS.items() if key.startswith(keys))
            assert re.search(rf"^{group} +-$", text, re.MULTILINE), (name, pattern, said)
        written((name, "text", key), key, found.group(1) if found else "-", head[key])
    # The mark on the headline's completeness is that of the note about what it leaves out.
    left_out = [i for i, note in enumerate(library["notes"], 1) if note["id"] == "galileo-not-counted"]
    mark = re.search(r"Completeness \S+ %\[(\d+)\]", said)
    assert (mark and [int(mark.group(1))]) == (left_out or None) or head["completeness_ratio"] is None, (name, said)
    judged, lost = ("-" if run[key] is None else run[key] for key in ("judged_epochs", "lost_epochs"))
    assert f"{run['epochs']} read, {judged} judged, {lost} lost" in text, name
    rows = part(text, "LIBRARY SYSTEMS")[1:]
    assert len(rows) == len(library["systems"]), (name, rows)
    for row, system in zip(rows, library["systems"]):
        for field, key in zip(row.split()[-6:], WHOLE):
            written((name, "text", system["letter"], key), key, field, system[key])
    bands = [(s["letter"], b) for s in library["systems"] for b in s["bands"]]
    rows = part(text, "LIBRARY BANDS")[1:]
    assert len(rows) == len(bands), (name, rows)
    for row, (letter, band) in zip(rows, bands):
        for field, key in zip(row.split()[-5:], BAND + ["iono_rms_cycles"]):
            written((name, "text", letter, band["band"], key), key, field, band[key])
    rows = part(text, "LIBRARY SIGNALS")[1:]
    assert len(rows) == len(library["signals"]), (name, rows)
    for row, signal in zip(rows, library["signals"]):
        assert row.startswith(f"{signal['letter']} {signal['signal']} "), (name, row)
        for field, key in zip(row.split()[-10:], SIGNAL):
            written((name, "text", signal["letter"], signal["signal"], key), key, field, signal[key])
    check_total(name, text, library["library_total"])
    check_satellites(name, part(text, "LIBRARY SATELLITES"), library["satellites"])
    # The findings lead, each with its title.
    parts = part(text, "WHAT TO LOOK AT FIRST") + part(text, "ALSO FOUND")
    found = " ".join(" ".join(parts).split())
    at = -1
    for finding in report["findings"]:
        at = found.find(" ".join(f"{finding['title']}. {finding['text']}".split()), at + 1)
        assert at >= 0, (name, finding["title"], found)


def script(page, identity):
    text = page.split(f'id="{identity}">', 1)[1].split("</script>", 1)[0]
    return json.loads(text)


def check_findings(name, report, figures):
    """A figure of a finding is that of the headline, of the run or of the signal concerned."""
    for finding in report["findings"]:
        letter, _, signal = (finding["signal"] or "").partition(" ")
        for key, value in finding["figures"].items():
            same((name, finding["id"], key), value, figures[letter, signal, key])


def check_files(files, folder):
    """Judges the files in one run with every format. @return the reports by name"""
    out = pathlib.Path(folder) / "out"
    run = subprocess.run([program, "qc", "--no-config", "--quiet", "--sats", "--output", str(out), "--formats",
                          "text,json,csv,sum,html", *map(str, files)], stderr=subprocess.PIPE, check=False)
    network = list(csv.DictReader(io.StringIO((out / "network.csv").read_text(encoding="utf-8"))))
    table = (out / "network.txt").read_text(encoding="utf-8")
    index = script((out / "index.html").read_text(encoding="utf-8"), "network-data")
    assert len(network) == len(files) and len(index["rows"]) == len(files)
    assert run.returncode == 0, run
    # Errors are indented below their rows.
    text_rows = [line for line in table.splitlines()[2:] if not line.startswith(" ")]
    assert len(text_rows) == len(files), table
    reports = {}
    for row, line, text_row in zip(network, index["rows"], text_rows):
        assert row["file"] == line["file"] and row["state"] == line["state"]
        head = f"{elided(pathlib.Path(row['file']).name):<30}{row['state']} "
        assert text_row.startswith(head), (row["file"], text_row)
        name = pathlib.Path(row["file"]).name
        path = next(p for p in out.glob("*.json") if json.loads(p.read_text("utf-8"))["run"]["observation_file"] ==
                    row["file"])
        report = json.loads(path.read_text(encoding="utf-8"))
        reports[name] = report
        figures = figures_of(report)
        beside = lambda ending: path.with_suffix(ending).read_text(encoding="utf-8")  # noqa: E731
        check_csv(name, beside(".csv"), figures, report["verdict"])
        check_sum(name, beside(".sum"), report)
        check_text(name, beside(".txt"), report)
        check_findings(name, report, figures)
        states = {c["satellite"]: c["state"] for c in report["run"]["navigation_coverage"]}
        library = report["library"]
        for satellite in library["satellites"]:
            assert satellite["state"] == states[satellite["satellite"]], (name, satellite["satellite"])
        same((name, "satellites judged"), list(states.values()).count("judged"),
             library["headline"]["satellites_judged"])
        same((name, "satellites observed"), len(report["run"]["navigation_coverage"]),
             sum(v for k, v in library["headline"].items() if k.startswith("satellites_") and k != "satellites_observed"))
        # The page leaves out the single signals of satellites.
        report["analysis"].pop("satellite_signals")
        assert script(beside(".html"), "report-data") == report, name
        assert row["verdict"] == line["verdict"] == report["verdict"]["text"], name
        for key, value in {**report["headline"], **library["headline"]}.items():
            same((name, "network.csv", key), row[key], value)
            same((name, "index", key), line[key], value)
        for key in ("duration_h", "lost_epochs"):
            value = {**report["run"], **library["run"]}[key]
            same((name, "network.csv", key), row[key], value)
            same((name, "index", key), line[key], value)
        for field, key in zip(text_row.split()[-5:], ["cutoff_completeness_ratio", "missing_epochs", "cycle_slips",
                                                      "gps_mp1_rms_m", "gps_mp2_rms_m"]):
            written((name, "network.txt", key), key, field, figures["", "", key])
    ratios = sorted(float(r["cutoff_completeness_ratio"]) for r in network if r["cutoff_completeness_ratio"])
    same("index least", index["summary"]["least_completeness_ratio"], ratios[0] if ratios else None)
    same("index median", index["summary"]["median_completeness_ratio"],
         (ratios[(len(ratios) - 1) // 2] + ratios[len(ratios) // 2]) / 2 if ratios else None)
    return reports


with tempfile.TemporaryDirectory() as folder:
    with_navigation = check_files(files, folder)

# The same files where no navigation lies next to them: everyone has a report all the same.
with tempfile.TemporaryDirectory() as folder:
    alone = pathlib.Path(folder) / "observations"
    alone.mkdir()
    for file in files:
        (alone / file.name).symlink_to(file.resolve())
    without = check_files(sorted(alone.iterdir()), folder)

assert len(files) >= 12, files
assert set(with_navigation) == set(without) == {file.name for file in files}
judged = [name for name, report in with_navigation.items() if report["library"]["absence"] is None]
assert len(judged) >= 3, judged
for name, report in without.items():
    assert report["library"]["absence"]["id"] == "no-navigation", name
    assert report["verdict"]["grade"] == "not judged", name
    assert report["findings"][0]["id"] == "no-navigation" and "BRDC00IGS_R_" in report["findings"][0]["text"], name
print(f"1 passed, 0 failed ({len(judged)} of {len(files)} files judged by the library, {checks} values held)")
