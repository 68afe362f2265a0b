"""A recording of RTCM 3 cut into frames and epochs, for casters of tests.

Frame: 0xD3, 6 bits reserved, 10 bits length, message, CRC-24Q (polynomial 0x1864CFB). MSM header: message number
(12 bits), station (12), epoch time (30), multiple message bit (1): 0 in the last message of an epoch.
"""

PREAMBLE = 0xD3
MSM_OF_SYSTEMS = {first + kind for first in (1070, 1080, 1090, 1100, 1110, 1120, 1130) for kind in range(1, 8)}


def _table():
    rows = []
    for byte in range(256):
        crc = byte << 16
        for _ in range(8):
            crc = (crc << 1) ^ (0x1864CFB if crc & 0x800000 else 0)
        rows.append(crc & 0xFFFFFF)
    return rows


_CRC = _table()


def crc24q(data):
    crc = 0
    for byte in data:
        crc = ((crc << 8) & 0xFFFFFF) ^ _CRC[(crc >> 16) ^ byte]
    return crc


def frame(message):
    """The frame of a message."""
    data = bytes([PREAMBLE, len(message) >> 8, len(message) & 0xFF]) + message
    return data + crc24q(data).to_bytes(3, "big")


def frames(data):
    """The sound frames of a recording, in order; what lies between them is left out."""
    at = 0
    while at + 6 <= len(data):
        length = ((data[at + 1] & 3) << 8 | data[at + 2]) + 6
        whole = data[at:at + length]
        if data[at] == PREAMBLE and len(whole) == length and crc24q(whole[:-3]) == int.from_bytes(whole[-3:], "big"):
            yield whole
            at += length
        else:
            at += 1


def message_number(whole_frame):
    return whole_frame[3] << 4 | whole_frame[4] >> 4


def is_msm(whole_frame):
    return message_number(whole_frame) in MSM_OF_SYSTEMS


def epoch_field(whole_frame):
    """The 30 bits of the epoch time of an MSM, as transmitted."""
    return int.from_bytes(whole_frame[6:10], "big") >> 2


def more_follows(whole_frame):
    """The multiple message bit of an MSM."""
    return bool(whole_frame[9] >> 1 & 1)


def seconds(epoch_list):
    """Seconds of each epoch since the first one, from the MSM of GPS, Galileo or QZSS; the week may end between."""
    week_ms = 604_800_000
    since_first, last = 0, None
    for epoch in epoch_list:
        fields = [epoch_field(whole) for whole in epoch if message_number(whole) // 10 in (107, 109, 111)]
        if fields:
            since_first += 0 if last is None else (fields[0] - last) % week_ms
            last = fields[0]
        yield since_first / 1000


def epochs(data):
    """The recording in lists of frames; each ends with the last MSM of an epoch.

    Other messages belong to the epoch after them. What follows the last epoch is left out.
    """
    collected = []
    for whole in frames(data):
        collected.append(whole)
        if is_msm(whole) and not more_follows(whole):
            yield collected
            collected = []
