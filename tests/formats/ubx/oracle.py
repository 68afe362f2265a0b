#!/usr/bin/env python3
"""Compares the fields that ubx_fields reads and writes with those of an independent parser of UBX, pyubx2.

usage: oracle.py UBX_FIELDS ORACLES_FOLDER [--random COUNT] [--seed SEED]

ORACLES_FOLDER is made by install_oracle.sh. Every field of COUNT random messages is compared, whose frames pyubx2 finds
by itself. Exits with 77 when pyubx2 is not installed and with 1 when anything differs.
"""
import argparse
import json
import pathlib
import subprocess
import sys
import tempfile

SKIPPED = 77
# In the order of ubx_fields.
FIELDS = ("prMes", "cpMes", "doMes", "gnssId", "svId", "sigId", "freqId", "locktime", "cno",
          "prValid", "cpValid", "halfCyc", "subHalfCyc")


def their_messages(path):
    from pyubx2 import ERR_RAISE, UBXReader
    with open(path, "rb") as stream:
        for _, message in UBXReader(stream, quitonerror=ERR_RAISE):
            yield message


def differences(ours, theirs):
    """Of one message, as texts, and how many fields were compared."""
    pairs = [("rcvTow", ours["second"], theirs.rcvTow), ("week", ours["week"], theirs.week),
             ("numMeas", len(ours["measurements"]), theirs.numMeas)]
    for number, measurement in enumerate(ours["measurements"], 1):
        pairs += [(f"{name}_{number:02}", value, getattr(theirs, f"{name}_{number:02}"))
                  for name, value in zip(FIELDS, measurement)]
    return [f"{name}: {mine} and {other}" for name, mine, other in pairs if mine != other], len(pairs)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("oracles", type=pathlib.Path)
    parser.add_argument("--random", type=int, default=1000)
    parser.add_argument("--seed", type=int, default=1)
    given = parser.parse_args()
    packages = [p for p in given.oracles.glob("python/lib/python*/site-packages") if (p / "pyubx2").is_dir()]
    if not packages:
        print(f"pyubx2 is not in {given.oracles}: run tests/formats/ubx/install_oracle.sh {given.oracles}")
        return SKIPPED
    sys.path.insert(0, str(packages[0]))
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "random.ubx"
        subprocess.run([given.program, "random", str(given.random), str(given.seed), path], check=True)
        dump = subprocess.run([given.program, "dump", path], check=True, stdout=subprocess.PIPE, text=True).stdout
        mine = [json.loads(line) for line in dump.splitlines()]
        theirs = list(their_messages(path))
    found, fields = [], 0
    for ours, other in zip(mine, theirs):
        wrong, count = differences(ours, other)
        found += wrong
        fields += count
    print(f"pyubx2: {len(theirs)} messages, {fields} fields compared")
    for text in found[:20]:
        print(text)
    return 1 if found or len(mine) != given.random or len(theirs) != given.random else 0


if __name__ == "__main__":
    sys.exit(main())
