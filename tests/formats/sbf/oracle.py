#!/usr/bin/env python3
"""Compares the fields that sbf_fields reads and writes with those of an independent parser of SBF, pysbf2.

usage: oracle.py SBF_FIELDS ORACLES_FOLDER [--random COUNT] [--seed SEED]

ORACLES_FOLDER is made by install_oracle.sh. Every field of COUNT random blocks is compared, which pysbf2 finds by
itself; of ReceiverSetup the two texts before the serial number of the receiver, which pysbf2 1.0.7 does not have.
Exits with 77 when pysbf2 is not installed and with 1 when anything differs.
"""
import argparse
import json
import pathlib
import subprocess
import sys
import tempfile

SKIPPED = 77
PI = 3.1415926535898
DO_NOT_USE = -2e10

# Places in the record of a navigation file (RINEX 3.05, tables A6 to A14), field and factor.
KEPLER = [(0, "a_f0", 1), (1, "a_f1", 1), (2, "a_f2", 1), (4, "C_rs", 1), (5, "DEL_N", PI), (6, "M_0", PI), (7, "C_uc", 1),
          (8, "e", 1), (9, "C_us", 1), (10, "SQRT_A", 1), (11, "t_oe", 1), (12, "C_ic", 1), (13, "OMEGA_0", PI),
          (14, "C_is", 1), (15, "i_0", PI), (16, "C_rc", 1), (17, "omega", PI), (18, "OMEGADOT", PI), (19, "IDOT", PI)]
GPS = KEPLER + [(3, "IODE2", 1), (20, "CAorPonL2", 1), (23, "URA", 1), (24, "health", 1), (25, "T_gd", 1), (26, "IODC", 1)]
BDS = KEPLER + [(3, "IODE", 1), (23, "URA", 1), (24, "SatH1", 1), (25, "T_GD1", 1), (26, "T_GD2", 1), (28, "IODC", 1)]
GALILEO = KEPLER + [(3, "IODnav", 1), (25, "BGD_L1E5a", 1), (26, "BGD_L1E5b", 1)]
GLONASS = [(0, "tau", -1), (1, "gamma", 1), (3, "X", 1), (4, "Dx", 1), (5, "Ddx", 1), (7, "Y", 1), (8, "Dy", 1),
           (9, "Ddy", 1), (11, "Z", 1), (12, "Dz", 1), (13, "Ddz", 1)]
# Block, satellite field, satellite numbers before 1 and table.
EPHEMERIDES = {"G": ("GPSNav", "PRN", 0, GPS), "J": ("QZSNav", "PRN", 180, GPS), "C": ("BDSNav", "PRN", 140, BDS),
               "E": ("GALNav", "SVID", 70, GALILEO), "R": ("GLONav", "SVID", 37, GLONASS)}


def their_blocks(path):
    from pysbf2 import ERR_RAISE, SBFReader
    with open(path, "rb") as stream:
        for _, block in SBFReader(stream, quitonerror=ERR_RAISE, scaling=False):
            yield block


def signed(value, bits):
    return value - (1 << bits) if value >> (bits - 1) else value


def signal_fields(get):
    """Signal number, antenna, lock time and strength."""
    low, high = get("SigIdxLo"), get("SigIdxHi")
    return [32 + high if low == 31 else low, get("AntennaID"), get("LockTime"), get("CN0")]


def other_fields(get):
    code = signed(get("CodeOffsetMSB"), 3) * 65536 + get("CodeOffsetLSB")
    carrier = get("CarrierMSB") * 65536 + get("CarrierLSB")
    doppler = signed(get("DopplerOffsetMSB"), 5) * 65536 + get("DopplerOffsetLSB")
    return signal_fields(get) + [code, int(code != -4 * 65536), carrier, int(carrier != -128 * 65536), doppler,
                                 int(doppler != -16 * 65536), get("HalfCycleAmbiguity")]


def first_fields(block, number):
    def get(name):
        return getattr(block, f"{name}_{number:02}")
    signal, antenna, lock, cn0 = signal_fields(get)
    carrier = get("CarrierMSB") * 65536 + get("CarrierLSB")
    others = [other_fields(lambda name, k=k: getattr(block, f"{name}_{number:02}_{k:02}")) for k in range(1, get("N2") + 1)]
    return [get("SVID"), signal, antenna, get("CodeMSB") * 2**32 + get("CodeLSB"), get("Doppler"),
            int(get("Doppler") != -(2**31)), carrier, int(carrier != -128 * 65536), cn0, lock, get("HalfCycleAmbiguity"),
            get("SigIdxHi") if get("SigIdxLo") != 31 else 0, others]


def galileo_health(block):
    def signal(name):
        valid, status, health = (getattr(block, name + part) for part in ("Health", "dvs", "hs"))
        return (status | health << 1) if valid else 0
    return signal("L1-B") | signal("E5a") << 3 | signal("E5b") << 6


def ephemeris_pairs(ours, block):
    name, satellite, offset, table = EPHEMERIDES[ours["block"]]
    pairs = [("block", name, block.identity), ("satellite", ours["number"], getattr(block, satellite) - offset)]
    for place, field, factor in table:
        value = getattr(block, field)
        may_lack = field in ("T_gd", "T_GD1", "T_GD2", "BGD_L1E5a", "BGD_L1E5b")
        pairs.append((field, ours["v"][place], 0 if may_lack and value == DO_NOT_USE else value * factor))
    pairs.append(("clock", ours["second"], block.t_oe if name == "GLONav" else block.t_oc))
    if name == "GLONav":
        pairs += [("FreqNr", ours["v"][10], block.FreqNr - 8), ("health", ours["v"][6], int(block.B & 4 != 0 or block.l == 1))]
    if name == "GALNav":
        inav = block.Source == 2
        pairs += [("Source", ours["v"][20], 517 if inav else 258), ("health", ours["v"][24], galileo_health(block)),
                  ("SISA", ours["v"][23], block.SISA_L1E5b if inav else block.SISA_L1E5a)]
    return pairs


def pairs_of(ours, block):
    if ours["block"] == "MeasEpoch":
        pairs = [("block", ours["block"], block.identity), ("scrambled", ours["scrambled"], block.Scrambling),
                 ("e6b", ours["e6b"], block.E6BUsed), ("N1", len(ours["satellites"]), block.N1)]
        for number, satellite in enumerate(ours["satellites"], 1):
            for k, (mine, other) in enumerate(zip(satellite, first_fields(block, number))):
                pairs.append((f"field {k} of satellite {number}", mine, other))
        return pairs
    if ours["block"] == "ReceiverSetup":
        def text(value):
            return (value if isinstance(value, str) else value.decode()).rstrip("\0 ")
        return [("block", ours["block"], block.identity), ("MarkerName", ours["marker"], text(block.MarkerName)),
                ("MarkerNumber", ours["number"], text(block.MarkerNumber))]
    return ephemeris_pairs(ours, block)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("oracles", type=pathlib.Path)
    parser.add_argument("--random", type=int, default=1000)
    parser.add_argument("--seed", type=int, default=1)
    given = parser.parse_args()
    packages = [p for p in given.oracles.glob("python/lib/python*/site-packages") if (p / "pysbf2").is_dir()]
    if not packages:
        print(f"pysbf2 is not in {given.oracles}: run tests/formats/sbf/install_oracle.sh {given.oracles}")
        return SKIPPED
    sys.path.insert(0, str(packages[0]))
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "random.sbf"
        subprocess.run([given.program, "random", str(given.random), str(given.seed), path], check=True)
        dump = subprocess.run([given.program, "dump", path], check=True, stdout=subprocess.PIPE, text=True).stdout
        mine = [json.loads(line) for line in dump.splitlines()]
        theirs = list(their_blocks(path))
    found, fields = [], 0
    for ours, block in zip(mine, theirs):
        pairs = pairs_of(ours, block)
        found += [f"{ours['block']} {name}: {one} and {other}" for name, one, other in pairs if one != other]
        fields += len(pairs)
    print(f"pysbf2: {len(theirs)} blocks, {fields} fields compared")
    for text in found[:20]:
        print(text)
    return 1 if found or len(mine) != given.random or len(theirs) != given.random else 0


if __name__ == "__main__":
    sys.exit(main())
