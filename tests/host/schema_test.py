#!/usr/bin/env python3
"""Holds real output of the program against docs/user/report.schema.json.

usage: schema_test.py PROGRAM SCHEMA DATA_FOLDER

Exits 77 (skipped) without the data. Also checks that the schema refuses what it must.
"""
import copy
import json
import pathlib
import subprocess
import sys
import tempfile

import jsonschema

program, schema_path, data = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
day = data / "ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz"
quarter = data / "SEPT078M.21O"
if not day.exists() or not quarter.exists():
    print("no data in", data)
    sys.exit(77)

schema = json.loads(schema_path.read_text(encoding="utf-8"))
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)


def report(*arguments, code=0):
    run = subprocess.run([program, "qc", "--no-config", "--quiet", "--json", *map(str, arguments)],
                         stdout=subprocess.PIPE, check=False)
    assert run.returncode == code, (arguments, run.returncode)
    return json.loads(run.stdout)


def check(name, document):
    errors = sorted(validator.iter_errors(document), key=str)
    for error in errors[:5]:
        print(f"{name}: {list(error.absolute_path)}: {error.message[:300]}")
    assert not errors, name


whole = report(day, "--sats", "--profile", "network")
check("station-day", whole)
check("quarter of an hour with a failed verdict",
      report(quarter, "--interval", "5", "--exclude", "G04", "--profile", "network", code=0))
alone = report(data / "GRAS00FRA_R_20223151700_15M_01S_MO.crx.gz", "--sats")
check("without navigation", alone)
assert alone["library"]["absence"]["id"] == "no-navigation" and alone["library"]["run"]["position_ecef_m"] is None
check("several files, one of them missing", report(quarter, "/no/such/file.rnx", "--jobs", "2", code=1))

with tempfile.TemporaryDirectory() as folder:
    earlier = pathlib.Path(folder) / "whole.json"
    earlier.write_text(json.dumps(whole), encoding="utf-8")
    part = report(day, "--start", "06:00", "--end", "09:00", "--sampling", "60", "--signals", "G:1C,2W",
                  "--window", "1h", "--compare", earlier, "--profile", f"history:{folder}", code=3)
check("a part of the day in windows, compared", part)
assert part["run"]["selection"]["start_gpst"] == "2020-06-25 06:00:00.000", part["run"]["selection"]
assert [w["present_epochs"] for w in part["analysis"]["windows"]] == [60, 60, 60]
assert part["comparison"]["signals_gone"] and part["comparison"]["figures"], part["comparison"]
assert part["profile"]["grade"] == "no data" and part["profile"]["remarks"], part["profile"]

# The note ids that readers of JSON rely on.
ids = [note["id"] for note in whole["library"]["notes"]]
assert "galileo-no-channel" in ids and "phase-test" in ids, ids
assert whole["findings"], "a station-day has something to look at first"
galileo = next(s for s in whole["library"]["systems"] if s["letter"] == "E")
assert galileo["completeness_ratio"] is None

# What the schema must refuse.
for spoil in (lambda r: r["run"].pop("interval_s"),
              lambda r: r["library"]["systems"][0].update(completeness_ratio="1.0"),
              lambda r: r["library"]["signals"][0].update(surprise=1),
              lambda r: r["run"].update(first_epoch_gpst="yesterday"),
              lambda r: r.update(format=1)):
    bad = copy.deepcopy(whole)
    spoil(bad)
    assert not validator.is_valid(bad)
print("1 passed, 0 failed")
