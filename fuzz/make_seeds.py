#!/usr/bin/env python3
"""Cuts small seeds for the fuzz targets from the real files next to the checkout, and makes up others.

usage: make_seeds.py DATA_FOLDER OUT_FOLDER     (seeds go to OUT_FOLDER/<target>/)
"""
import gzip
import pathlib
import random
import struct
import sys

# The files that are cut; others in the folder are left alone.
FILES = (
    "ACOR00ESP_R_20213550000_01D_30S_MO.crx",
    "ACOR00ESP_R_20213550000_01D_30S_MO.rnx",
    "AJAC3550.21D",
    "AJAC3550.21O",
    "ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz",
    "ESBC00DNK_R_20201770000_01D_MN.rnx.gz",
    "GRAS00FRA_R_20223151700_15M_01S_MO.crx.gz",
    "KMS300DNK_R_20221591000_01H_30S_MO.crx",
    "KMS300DNK_R_20221591000_01H_MN.rnx.gz",
    "SEPT078M.21O",
    "SEPT078M.21P",
    "pdel0010.21d",
    "pdel0010.21o",
    "zegv0010.21d",
    "zegv0010.21o",
)


def text_of(path):
    data = path.read_bytes()
    return gzip.decompress(data) if data[:2] == b"\x1f\x8b" else data


def after_header(data):
    end = data.find(b"END OF HEADER")
    return data.find(b"\n", end) + 1 if end >= 0 else 0


def cut(data, body):
    """The header and about `body` bytes of whole lines."""
    start = after_header(data)
    end = data.find(b"\n", start + body)
    return data[: end + 1 if end >= 0 else len(data)]


def write(out, target, name, data):
    folder = out / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_bytes(data)


def seeds_of(path, out):
    data = text_of(path)
    name = path.name.replace(".gz", "")
    if b"NAVIGATION" in data[:200] or b"NAV DATA" in data[:200]:
        for size in (800, 4000):
            write(out, "navigation_reader", f"{name}.{size}", cut(data, size))
        # Later pieces hold the other systems.
        start = after_header(data)
        lines = data[start:].split(b"\n")
        for part in range(1, 6):
            at = len(lines) * part // 6
            while at < len(lines) and lines[at][:1] in (b" ", b""):
                at += 1
            piece = b"\n".join(lines[at : at + 24]) + b"\n"
            write(out, "navigation_reader", f"{name}.part{part}", data[:start] + piece)
    elif b"CRINEX" in data[:200]:
        for size in (1500, 6000):
            write(out, "observation_reader", f"{name}.{size}", cut(data, size))
            write(out, "crinex_decoder", f"{name}.{size}", cut(data, size)[after_header(data):])
    elif b"OBSERVATION" in data[:200]:
        for size in (1500, 6000):
            write(out, "observation_reader", f"{name}.{size}", cut(data, size))
    else:
        return
    piece = cut(data, 2000)
    write(out, "compressed_input", f"{name}.lines", b"\0" + gzip.compress(piece, mtime=0))
    two = gzip.compress(piece[:500], mtime=0) + gzip.compress(piece[500:], mtime=0)
    write(out, "compressed_input", f"{name}.members", b"\x03" + two)


def raw_measurements(second, satellites):
    """Class, ID and payload of RXM-RAWX. satellites: (gnssId, svId, sigId)"""
    payload = struct.pack("<dHbBBB2x", second, 2200, 18, len(satellites), 1, 1)
    for gnss, number, signal in satellites:
        payload += struct.pack("<ddfBBBBHBBBBBx", 2.2e7 + number, 1.1e8 + number, -120.5, gnss, number, signal, 7,
                               int(1000 * second) % 64500, 40, 2, 3, 4, 7)
    return b"\x02\x15" + payload


def ubx_frame(message):
    body = message[:2] + struct.pack("<H", len(message) - 2) + message[2:]
    first = second = 0
    for byte in body:
        first = (first + byte) % 256
        second = (second + first) % 256
    return b"\xb5\x62" + body + bytes((first, second))


def ubx_seeds(out):
    """Made up, as no real recording is at hand."""
    version = b"\x0a\x04" + b"EXT CORE 1.00".ljust(30, b"\0") + bytes(10) + b"MOD=ZED-F9P".ljust(30, b"\0")
    messages = [version, b"\x01\x07position"]
    for second in range(3):
        messages.append(raw_measurements(second, [(0, 5, 0), (0, 5, 3), (2, 11, 0), (3, 30, 0), (6, 4, 2), (5, 1, 0)]))
    write(out, "ubx_recording", "recording", b"\0" + b"$GNGGA," + b"".join(map(ubx_frame, messages)))
    counted = b"".join(struct.pack(">H", len(message)) + message for message in messages)
    write(out, "ubx_recording", "messages", b"\1" + counted)
    write(out, "ubx_recording", "survey", b"\3" + counted)


SBF_NUMBERS = (4027, 5891, 4004, 4002, 4081, 4095, 5902)  # as fuzz/sbf_recording.cpp has them


def sbf_measurements(second):
    """Body of MeasEpoch: three signals of a GPS satellite, two of a GLONASS and one of a Galileo satellite."""
    def first(signal, satellite, others, channel=0):
        return struct.pack("<BBBBIiHbBHBB", 1, signal, satellite, 5, 1000 * satellite + second, -12345000, 250, 0, 136,
                           20 + second, channel << 3, others)

    def other(signal):
        return struct.pack("<BBBBbBHHH", signal, 20 + second, 120, 0, -1, 0, 500, 64036, 100)

    body = struct.pack("<IHBBBBBB", 1000 * second, 2200, 3, 20, 12, 0, 0, 0)
    return body + first(0, 5, 2) + other(2) + other(3) + first(8, 41, 1, 5) + other(11) + first(17, 81, 0)


def sbf_ephemeris(number, satellite):
    """Body of a block of ephemerides, its elements those of no orbit."""
    size = {5891: 132, 4004: 88, 4002: 144, 4081: 132, 4095: 132}[number]
    body = bytearray(struct.pack("<IHBB", 2000, 2200, satellite, 2) + bytes(size - 8))
    places = {4002: (16 - 8, 100 - 8, 104 - 8), 4004: (16 - 8, 76 - 8, 76 - 8)}.get(number, (80 - 8, 88 - 8, 32 - 8))
    struct.pack_into("<d", body, places[0], 5153.5)
    for place in places[1:]:
        struct.pack_into("<I", body, place, 7200)
    return bytes(body)


def sbf_block(number, body):
    body += bytes(-len(body) % 4)
    checked = struct.pack("<HH", number, 8 + len(body)) + body
    crc = 0
    for byte in checked:
        crc ^= byte << 8
        for _ in range(8):
            crc = (crc << 1 ^ 0x1021 if crc & 0x8000 else crc << 1) & 0xFFFF
    return b"$@" + struct.pack("<H", crc) + checked


def sbf_seeds(out):
    """Made up, as no real recording is at hand."""
    setup = struct.pack("<IH2x", 0, 2200) + b"STATION".ljust(252, b"\0")
    blocks = [(6, setup)]
    blocks += [(k, sbf_ephemeris(SBF_NUMBERS[k], satellite)) for k, satellite in enumerate((5, 41, 81, 150, 183), 1)]
    blocks += [(0, sbf_measurements(second)) for second in range(3)] + [(16, struct.pack("<IH", 0, 2200))]
    recording = b"".join(sbf_block(SBF_NUMBERS[k] if k < 7 else k << 8, body) for k, body in blocks)
    write(out, "sbf_recording", "recording", b"\0$GPGGA," + recording)
    counted = b"".join(struct.pack(">HBB", 2 + len(body), k, 1) + body for k, body in blocks)
    write(out, "sbf_recording", "blocks", b"\1" + counted)
    write(out, "sbf_recording", "survey", b"\3" + counted)


def stream_seeds(path, out):
    """The beginning of a recording as it is, in pieces of 17 bytes, for the stations of live streams."""
    for size in (2000, 12000):
        write(out, "live_station", f"{path.name}.{size}", b"\0\x10" + path.read_bytes()[:size])
        write(out, "rtcm_stream", f"{path.name}.{size}", b"\0" + path.read_bytes()[:size])


def main(data_folder, out_folder):
    out = pathlib.Path(out_folder)
    sbf_seeds(out)
    ubx_seeds(out)
    for path in sorted((pathlib.Path(data_folder).parent / "rtcm").glob("*.log")):
        stream_seeds(path, out)
    for name in FILES:
        seeds_of(pathlib.Path(data_folder) / name, out)
    choice = random.Random(1)
    for k in range(16):
        write(out, "boundary_records", f"random{k}", choice.randbytes(4 * (20 + 60 * k)))
    for k in range(16):
        write(out, "analysis", f"random{k}", choice.randbytes(4 * (20 + 30 * k)))


if __name__ == "__main__":
    main(*sys.argv[1:])
