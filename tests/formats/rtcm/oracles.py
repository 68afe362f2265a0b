#!/usr/bin/env python3
"""Compares the fields that rtcm_fields reads with those of two independent decoders of RTCM 3.

usage: oracles.py RTCM_FIELDS ORACLES_FOLDER [--random COUNT] [--seed SEED] [--samples FOLDER]

ORACLES_FOLDER is made by install_oracles.sh: a Python environment with pyrtcm and, where Rust is installed, a program
with rtcm-rs. Every message of the streams in FOLDER and of COUNT random ones is compared field by field: pyrtcm by number (DF) and value in the
order of the message, rtcm-rs by value and by satellite and signal. Exits with 77 when pyrtcm is not installed
and with 1 when anything differs that is not listed below with its reason.
"""
import argparse
import collections
import contextlib
import functools
import itertools
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

SKIPPED = 77
AT_A_TIME = 20000

# Where pyrtcm 1.2.1 differs, and why it is not followed. rtcm-rs agrees with this reader in each of these.
#
# Integers without the step of the field: whole light-milliseconds (DF014, DF044); gamma, tau, delta tau, tau_c and
# tau_GPS of GLONASS ICD 5.1 (tables 4.5 and 4.6); t_b in steps of 15 minutes (DF110).
PYRTCM_UNSCALED = {14, 44, 110, 121, 124, 125, 133, 135}
# Group delays of BDS are in nanoseconds there.
PYRTCM_FACTORS = {513: 1e9, 514: 1e9}
# It fails on MSM2 of every system: a group in its table of fields is a set instead of a dictionary.
PYRTCM_FAILS = {1072, 1082, 1092, 1102, 1112, 1122, 1132}
# Places of masks that it has no name for.
PYRTCM_NO_NAME = {"N/A", "/"}


def differs(ours, theirs, step):
    if ours is None or theirs is None:
        return (ours is None) != (theirs is None)
    # Single precision where the other decoder uses it.
    return abs(ours - theirs) > 0.01 * abs(step) + 3e-7 * abs(ours)


class Findings:
    def __init__(self):
        self.kinds = collections.Counter()
        self.examples = {}
        self.fields = collections.Counter()
        self.messages = collections.Counter()

    def add(self, kind, example):
        self.kinds[kind] += 1
        self.examples.setdefault(kind, example)


def step_of(raw, value):
    return 1.0 if value is None or raw == 0 else value / raw


# pyrtcm ------------------------------------------------------------------------------------------------------

@functools.lru_cache(maxsize=None)
def pyrtcm_number(name):
    """The DF number of an attribute such as "DF405_03"; None where it is no field."""
    match = re.match(r"DF(\d+)(?:_\d+)*$", name)
    if match:
        return int(match.group(1))
    return 419 if re.match(r"ExtSatInfo(_\d+)*$", name) else None


def pyrtcm_fields(message):
    """(DF number, value) in the order of the message."""
    for name, value in message.__dict__.items():
        number = pyrtcm_number(name)
        if number is not None:
            yield number, value


def our_fields(ours):
    """(DF number, integer, value) in the order of the message."""
    if "fields" in ours:
        yield from ours["fields"]
    elif "rows" in ours:
        yield from ours["head"]
        for row in ours["rows"]:
            yield from row
    elif "cells" in ours:
        yield from ours["head"]
        yield (396, ours["mask"], float(ours["mask"]))
        for group in (ours["satellites"], ours["cells"]):
            for column in range(len(group[0]["fields"]) if group else 0):
                for row in group:
                    yield row["fields"][column]


def joined_time(fields):
    """DF107 as one number: 5 bits of hours, 6 of minutes and 1 of half-minutes."""
    parts = [f for f in fields if f[0] == 107]
    if not parts:
        return fields
    place = fields.index(parts[0])
    raw = parts[0][1] << 7 | parts[1][1] << 1 | parts[2][1]
    return fields[:place] + [(107, raw, float(raw))] + fields[place + 3:]


def compare_pyrtcm(ours, message, findings):
    number = ours["type"]
    if str(number) != message.identity:
        findings.add(("pyrtcm", number, "type"), (number, message.identity))
        return
    theirs = list(pyrtcm_fields(message))
    mine = joined_time(list(our_fields(ours)))
    if not mine:
        return compare_pyrtcm_texts(ours, message, findings)
    if len(mine) != len(theirs):
        findings.add(("pyrtcm", number, "count of fields"), (len(mine), len(theirs)))
        return
    for (df, raw, value), (their_df, their_value) in zip(mine, theirs):
        scale = step_of(raw, value)
        expected = raw if df in PYRTCM_UNSCALED else (raw * scale if value is None else value)
        expected *= PYRTCM_FACTORS.get(df, 1)
        scale *= PYRTCM_FACTORS.get(df, 1)
        if df in (394, 395, 396):
            expected = raw & (1 << 64) - 1
        findings.fields["pyrtcm"] += 1
        if df != their_df:
            findings.add(("pyrtcm", number, f"DF{df:03} is DF{their_df:03}"), None)
        elif value is None:
            continue  # pyrtcm gives the lowest value of a field for an invalid one
        elif differs(expected, their_value, scale):
            findings.add(("pyrtcm", number, f"DF{df:03}"), (raw, value, their_value))
    compare_pyrtcm_names(ours, message, findings)


def compare_pyrtcm_names(ours, message, findings):
    for i, cell in enumerate(ours.get("cells", []), 1):
        their_signal = getattr(message, f"CELLSIG_{i:02}")
        findings.fields["pyrtcm"] += 1
        if cell["signal"] != their_signal and their_signal not in PYRTCM_NO_NAME:
            findings.add(("pyrtcm", ours["type"] // 10 * 10, f"signal {cell['signal']}"), their_signal)
    offsets = {"S": -20 + 120, "J": 192}
    for i, row in enumerate(ours.get("satellites", []), 1):
        their_number = getattr(message, f"PRN_{i:02}")
        number = int(row["name"][1:]) if row["name"] else None
        if number is not None:
            number += offsets.get(row["name"][0], 0)
        findings.fields["pyrtcm"] += 1
        if number is not None and their_number not in PYRTCM_NO_NAME and str(number) != their_number.lstrip("0"):
            findings.add(("pyrtcm", ours["type"] // 10 * 10, f"satellite {row['name']}"), their_number)


def compare_pyrtcm_texts(ours, message, findings):
    fields = collections.defaultdict(list)
    for df, value in pyrtcm_fields(message):
        fields[df].append(value)
    if "texts" in ours:
        for text, df in zip(ours["texts"], (30, 33, 228, 230, 232)):
            theirs = "".join(fields[df]).rstrip(" \0")
            findings.fields["pyrtcm"] += 1
            if text != theirs:
                findings.add(("pyrtcm", ours["type"], f"DF{df:03}"), (text, theirs))
        for bias, df in zip(ours.get("biases", []), (423, 424, 425, 426)):
            findings.fields["pyrtcm"] += 1
            if (bias is not None) != bool(fields[df]) or (fields[df] and differs(bias, fields[df][0], 0.02)):
                findings.add(("pyrtcm", ours["type"], f"DF{df:03}"), (bias, fields[df]))
    if "date" in ours:
        findings.fields["pyrtcm"] += 2
        if ours["date"] != [fields[51][0], fields[52][0]]:
            findings.add(("pyrtcm", ours["type"], "date"), (ours["date"], fields[51], fields[52]))
    if "text" in ours and ours["text"].rstrip("\0").encode("latin-1").decode("utf-8", "replace") != fields[140][0]:
        findings.add(("pyrtcm", ours["type"], "DF140"), (ours["text"], fields[140]))
    if "leap" in ours and ours["leap"] != fields[54][0]:
        findings.add(("pyrtcm", ours["type"], "DF054"), (ours["leap"], fields[54]))


# rtcm-rs -----------------------------------------------------------------------------------------------------

def leaves(value):
    """Values in the order of the message."""
    if isinstance(value, dict):
        for part in value.values():
            yield from leaves(part)
    elif isinstance(value, list):
        for part in value:
            yield from leaves(part)
    else:
        yield value


def signal_name(value):
    return "".join(str(part) for part in value)


def rust_value(number, df, raw, value):
    """What rtcm-rs makes of a field where it is more than a scaled number."""
    if df == 134:  # the first year of the four
        return raw * 4 + 1992
    if df == 40 or (df == 419 and number // 10 == 108):
        return raw - 7
    return value


def compare_values(kind, mine, theirs, findings, number):
    if len(mine) != len(theirs):
        findings.add(("rtcm-rs", number, f"count of {kind}"), (len(mine), len(theirs), mine, theirs))
        return
    for (df, raw, value), their_value in zip(mine, theirs):
        findings.fields["rtcm-rs"] += 1
        expected = rust_value(number, df, raw, value)
        if their_value is None and is_none_in_rust(df, raw):
            continue
        if differs(expected, their_value, step_of(raw, value)):
            findings.add(("rtcm-rs", number, f"DF{df:03}"), (raw, value, their_value))


def is_none_in_rust(df, raw):
    """Values that rtcm-rs marks as not given, as this reader does where it uses them."""
    zero = df in (15, 20, 45, 50, 403, 408, 409) and raw == 0
    # Day of week and channel that are not known; ranges beyond a light-millisecond, GLONASS two.
    unknown = (df, raw) in ((416, 7), (419, 15), (11, (1 << 24) - 1), (41, (1 << 25) - 1))
    return zero or unknown


def compare_rust(ours, theirs, findings):
    number = ours["type"]
    if "undecoded" in ours or (theirs == "Corrupt" and ours.get("cells") == []):
        return  # rtcm-rs rejects an MSM without cells, which receivers send and which may end an epoch
    if not isinstance(theirs, dict) or f"Msg{number}" not in theirs:
        findings.add(("rtcm-rs", number, "not decoded"), str(theirs)[:80])
        return
    body = theirs[f"Msg{number}"]
    if "fields" in ours:
        compare_values("fields", ours["fields"][1:], list(leaves(body)), findings, number)
    elif "rows" in ours:
        rows = body.pop("satellites")
        count = [f for f in ours["head"][1:] if f[0] not in (6, 35)]
        compare_values("head", count, list(leaves(body)), findings, number)
        for mine, their_row in zip(ours["rows"], rows):
            compare_values("row", mine, list(leaves(their_row)), findings, number)
        if len(rows) != len(ours["rows"]):
            findings.add(("rtcm-rs", number, "count of satellites"), (len(ours["rows"]), len(rows)))
    elif "cells" in ours:
        compare_rust_msm(ours, body, findings)


def compare_rust_msm(ours, body, findings):
    number = ours["type"]
    data = body.pop("data_segment")
    head = [f for f in ours["head"][1:] if f[0] not in (394, 395)]
    compare_values("head", head, list(leaves(body)), findings, number)
    for name, rows in (("satellites", data["satellite_data"]), ("cells", data["signal_data"])):
        if len(rows) != len(ours[name]):
            findings.add(("rtcm-rs", number, f"count of {name}"), (len(ours[name]), len(rows)))
        for mine, their_row in zip(ours[name], rows):
            satellite = mine.get("place", mine.get("satellite"))
            if their_row.pop("satellite_id") != satellite:
                findings.add(("rtcm-rs", number, "satellite"), satellite)
            if name == "cells":
                their_signal = signal_name(their_row.pop("signal_id"))
                findings.fields["rtcm-rs"] += 1
                if their_signal != mine["signal"]:
                    findings.add(("rtcm-rs", number // 10 * 10, f"signal {mine['signal']}"), their_signal)
            compare_values(name, mine["fields"], list(leaves(their_row)), findings, number)


# Files -------------------------------------------------------------------------------------------------------

@contextlib.contextmanager
def json_lines(*command):
    """What a program prints, message by message: streams of any length take little memory."""
    with subprocess.Popen(command, stdout=subprocess.PIPE) as running:
        yield (json.loads(line) for line in running.stdout)
    if running.returncode != 0:
        raise subprocess.CalledProcessError(running.returncode, command)


def compare_with_pyrtcm(mine, findings):
    from pyrtcm import RTCMReader

    if mine["type"] in PYRTCM_FAILS:
        return
    body = bytes.fromhex(mine["bytes"])
    findings.messages["pyrtcm"] += 1
    try:
        # Without its CRC: the frame is found by the program and, independently, by rtcm-rs.
        frame = b"\xd3" + len(body).to_bytes(2, "big") + body + b"\0\0\0"
        compare_pyrtcm(mine, RTCMReader.parse(frame, validate=0), findings)
    except Exception as error:  # pylint: disable=broad-except
        findings.add(("pyrtcm", mine["type"], "exception"), repr(error))


def compare_file(program, rust, path, findings):
    with contextlib.ExitStack() as open_programs:
        ours = open_programs.enter_context(json_lines(program, "dump", path))
        rust_messages = open_programs.enter_context(json_lines(rust, path)) if rust else ()
        missing = object()
        for mine, theirs in itertools.zip_longest(ours, rust_messages, fillvalue=missing):
            if mine is missing or (rust and theirs is missing):
                findings.add(("rtcm-rs", 0, f"count of messages in {path}"), None)
            if mine is not missing:
                compare_with_pyrtcm(mine, findings)
            if missing not in (mine, theirs):
                findings.messages["rtcm-rs"] += 1
                compare_rust(mine, theirs, findings)


def compare_random(program, rust, count, seed, findings):
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "random.rtcm3")
        while count > 0:
            subprocess.run([program, "random", str(min(count, AT_A_TIME)), str(seed), path], check=True)
            compare_file(program, rust, path, findings)
            count -= AT_A_TIME
            seed += 1
            print(f"{findings.messages['pyrtcm']} messages, {sum(findings.kinds.values())} findings", file=sys.stderr, flush=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("oracles", type=pathlib.Path)
    parser.add_argument("--random", type=int, default=0)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--samples", type=pathlib.Path)
    given = parser.parse_args()
    rust = given.oracles / "target" / "release" / "rtcm-oracle"
    rust = str(rust) if rust.exists() else None
    packages = list(given.oracles.glob("python/lib/python*/site-packages"))
    if not packages:
        print(f"the decoders are not in {given.oracles}: run tests/formats/rtcm/install_oracles.sh {given.oracles}")
        return SKIPPED
    sys.path.insert(0, str(packages[0]))
    findings = Findings()
    streams = sorted(given.samples.glob("*")) if given.samples and given.samples.is_dir() else []
    for path in streams:
        if path.suffix in (".rtcm", ".rtcm3", ".log"):
            compare_file(given.program, rust, str(path), findings)
    compare_random(given.program, rust, given.random, given.seed, findings)
    decoders = ("pyrtcm", "rtcm-rs") if rust else ("pyrtcm",)
    if not rust:
        print("rtcm-rs is not installed: compared with pyrtcm alone")
    for name in decoders:
        print(f"{name}: {findings.messages[name]} messages, {findings.fields[name]} fields compared")
    for kind, count in sorted(findings.kinds.items(), key=str):
        print(f"{count} x {kind}: {findings.examples[kind]}")
    return 1 if findings.kinds or not all(findings.messages[name] for name in decoders) else 0


if __name__ == "__main__":
    sys.exit(main())
