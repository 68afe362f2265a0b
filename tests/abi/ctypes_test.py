"""The C interface from a language that is neither C nor C++: through ctypes, with the bits of the eight functions.

usage: ctypes_test.py C_LIBRARY LIBRARY LAYOUT
"""
import ctypes
import re
import struct
import sys
import unittest

C_LIBRARY, LIBRARY, LAYOUT = sys.argv[1:4]
OK, NO_DATA, NO_NAVIGATION = 1, 0, -1
NOT_STARTED, ALREADY_STARTED, BAD_ARGUMENT, BAD_SIZE = -100, -101, -103, -200
WEEK_START = 315964800 + 2200 * 604800
GPS, PRN = 1, 5


def read_layout():
    with open(LAYOUT, encoding="utf-8") as file:
        text = file.read()
    sizes = {name: int(size) for name, size in re.findall(r"^(\w+) size (\d+)", text, re.M)}
    offsets = {name: int(offset) for name, offset in re.findall(r"^(\w+\.\w+) at (\d+)", text, re.M)}
    return sizes, offsets


SIZES, OFFSETS = read_layout()


class Record:
    """A record as bytes, its fields by their names in records.h."""

    def __init__(self, kind, count=1):
        self.kind = kind
        self.bytes = ctypes.create_string_buffer(SIZES[kind] * count)

    def put(self, form, field, value, index=0):
        struct.pack_into("<" + form, self.bytes, SIZES[self.kind] * index + OFFSETS[f"{self.kind}.{field}"], value)

    def get(self, form, field):
        return struct.unpack_from("<" + form, self.bytes, OFFSETS[f"{self.kind}.{field}"])[0]

    def size(self):
        return ctypes.c_size_t(SIZES[self.kind])


def navigation():
    """A set of one GPS record; keeps the record alive."""
    record, body = Record("GpsEph_gbt"), Record("NavBodyData_QC_gbt")
    for form, field, value in (("i", "prn", PRN), ("i", "week", 2200), ("d", "sqrtA", 5153.6), ("d", "i0", 0.96)):
        record.put(form, field, value)
    struct.pack_into("<q", record.bytes, OFFSETS["GpsEph_gbt.toc"], WEEK_START)
    body.put("i", "gps_num", 1)
    body.put("Q", "gps_eph", ctypes.addressof(record.bytes))
    body.owner = record
    return body


def epochs(count):
    """Two signals of one satellite every 30 s."""
    made = Record("ObsEpoch_QC_gbt", count)
    satellite, signal = OFFSETS["ObsEpoch_QC_gbt.sats"], SIZES["Signal_QC_gbt"]
    for k in range(count):
        made.put("q", "time", WEEK_START + 30 * k, k)
        made.put("I", "sat_num", 1, k)
        at = SIZES["ObsEpoch_QC_gbt"] * k + satellite
        struct.pack_into("<B3xiI", made.bytes, at, GPS, PRN, 2)
        for i, code in enumerate((1, 16)):
            start = at + OFFSETS["Satellite_gbt.signals"] + signal * i
            struct.pack_into("<ddffB", made.bytes, start, 2.2e7 + k, 1.1e8 + 5.0 * k, 0.0, 45.0, code)
    return made


def position_over(config):
    """Puts the station below the satellite, so that something is judged."""
    config.put("d", "interval", 30.0)
    config.put("B", "enable_position", 1)
    struct.pack_into("<3d", config.bytes, OFFSETS["config_qct.position"], 6378137.0, 0.0, 0.0)


class CInterface(unittest.TestCase):
    def setUp(self):
        self.cbb = ctypes.CDLL(LIBRARY)
        self.c = ctypes.CDLL(C_LIBRARY)
        self.c.orsolva_create.restype = ctypes.c_void_p
        for text in ("orsolva_version", "orsolva_status_text"):
            getattr(self.c, text).restype = ctypes.c_char_p
        self.session = ctypes.c_void_p(self.c.orsolva_create())
        self.config = Record("config_qct")
        self.assertEqual(self.c.orsolva_config_init(self.config.bytes, self.config.size()), OK)
        position_over(self.config)
        self.navigation = navigation()

    def tearDown(self):
        self.c.orsolva_destroy(self.session)

    def start(self):
        return self.c.orsolva_start(self.session, self.config.bytes, self.config.size(), self.navigation.bytes,
                                    self.navigation.size())

    def feed(self, made, count):
        return self.c.orsolva_feed(self.session, made.bytes, ctypes.c_size_t(count), made.size())

    def result(self, function, kind):
        record = Record(kind)
        return function(self.session, record.bytes, record.size()), record

    def test_versions(self):
        self.assertEqual(self.c.orsolva_abi_version(), 1)
        self.assertRegex(self.c.orsolva_version().decode(), r"^\d+\.\d+\.\d+$")

    def test_defaults_judge_everything_above_ten_degrees(self):
        record = Record("config_qct")
        self.assertEqual(self.c.orsolva_config_init(record.bytes, record.size()), OK)
        self.assertEqual((record.get("d", "elevation"), record.get("d", "interval")), (10.0, 1.0))
        self.assertEqual((record.get("B", "enable_position"), record.get("i", "auto_detect_freq")), (0, 1))
        self.assertEqual(record.bytes.raw[:5], bytes([1] * 5))

    def test_the_bits_are_those_of_the_eight_functions(self):
        made = epochs(40)
        self.assertEqual(self.start(), OK)
        self.assertEqual(self.feed(made, 40), OK)
        state, whole = self.result(self.c.orsolva_result, "result_qct")
        self.assertEqual(state, OK)
        state, codes = self.result(self.c.orsolva_code_result, "total_code_qc_result")
        self.assertEqual(state, OK)
        self.assertEqual((whole.get("q", "start_time"), whole.get("q", "end_time")), (WEEK_START, WEEK_START + 1170))
        direct_whole, direct_codes = self.direct(made, 40)
        self.assertEqual(whole.bytes.raw, direct_whole.bytes.raw)
        self.assertEqual(codes.bytes.raw, direct_codes.bytes.raw)
        self.assertTrue(any(codes.bytes.raw))

    def direct(self, made, count):
        self.cbb._Z14CreatQcProcessv.restype = ctypes.c_void_p
        self.cbb._Z9InitialQcRK18NavBodyData_QC_gbtPK10config_qctPy.restype = ctypes.c_bool
        self.cbb._Z18GetAllPeriodResultPyP10result_qct.restype = ctypes.c_bool
        handle = ctypes.c_void_p(self.cbb._Z14CreatQcProcessv())
        body = Record("ObsBodyData_QC_gbt")
        body.put("i", "epoch_num", count)
        body.put("Q", "epochs", ctypes.addressof(made.bytes))
        whole, codes = Record("result_qct"), Record("total_code_qc_result")
        initial = self.cbb._Z9InitialQcRK18NavBodyData_QC_gbtPK10config_qctPy
        self.assertTrue(initial(self.navigation.bytes, self.config.bytes, handle))
        self.assertEqual(self.cbb._Z10GNSSQCPlusRK18ObsBodyData_QC_gbtPy(body.bytes, handle), OK)
        self.assertTrue(self.cbb._Z18GetAllPeriodResultPyP10result_qct(handle, whole.bytes))
        self.cbb._Z17GetEachCodeResultPyR20total_code_qc_result(handle, codes.bytes)
        self.cbb._Z13DiposeProcessPy(handle)
        return whole, codes

    def test_wrong_order_of_calls(self):
        self.assertEqual(self.feed(epochs(1), 1), NOT_STARTED)
        self.assertEqual(self.result(self.c.orsolva_result, "result_qct")[0], NOT_STARTED)
        self.assertEqual(self.start(), OK)
        self.assertEqual(self.start(), ALREADY_STARTED)
        self.assertEqual(self.result(self.c.orsolva_code_result, "total_code_qc_result")[0], NO_DATA)
        self.assertEqual(self.feed(epochs(1), 0), NO_DATA)

    def test_wrong_sizes(self):
        record, short = Record("result_qct"), ctypes.c_size_t(8)
        self.assertEqual(self.c.orsolva_config_init(self.config.bytes, short), BAD_SIZE)
        self.assertEqual(self.c.orsolva_start(self.session, self.config.bytes, self.config.size(),
                                              self.navigation.bytes, short), BAD_SIZE)
        self.assertEqual(self.start(), OK)
        self.assertEqual(self.c.orsolva_feed(self.session, epochs(1).bytes, ctypes.c_size_t(1), short), BAD_SIZE)
        self.assertEqual(self.c.orsolva_result(self.session, record.bytes, short), BAD_SIZE)

    def test_null_pointers(self):
        record = Record("result_qct")
        self.assertEqual(self.c.orsolva_config_init(None, self.config.size()), BAD_ARGUMENT)
        self.assertEqual(self.c.orsolva_result(None, record.bytes, record.size()), BAD_ARGUMENT)
        self.assertEqual(self.c.orsolva_result(self.session, None, record.size()), BAD_ARGUMENT)
        self.assertEqual(self.start(), OK)
        self.assertEqual(self.c.orsolva_feed(self.session, None, ctypes.c_size_t(3), epochs(1).size()), BAD_ARGUMENT)
        self.c.orsolva_destroy(None)

    def test_navigation_without_records(self):
        self.navigation.put("i", "gps_num", 0)
        self.assertEqual(self.start(), NO_NAVIGATION)
        self.navigation.put("i", "gps_num", 1)
        self.assertEqual(self.start(), OK)

    def test_every_status_has_a_text(self):
        texts = [self.c.orsolva_status_text(code) for code in (1, 0, -1, -2, -3, -100, -101, -103, -104, -105, -200)]
        self.assertEqual(len(set(texts)), len(texts))
        self.assertNotIn(b"unknown status", texts)
        self.assertEqual(self.c.orsolva_status_text(77), b"unknown status")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
