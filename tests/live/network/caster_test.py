"""The caster of the tests does what it says, seen through plain sockets and Python's own HTTP client."""
import http.client
import pathlib
import socket
import ssl
import sys
import tempfile
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import rtcm_stream  # noqa: E402
from caster import Caster, Connection, Mount, basic, make_certificate  # noqa: E402


def msm(number, time_field, more, payload=b"\x55" * 20):
    """The start of an MSM, enough to be cut into epochs."""
    head = (number << 12 | 7) << 31 | time_field << 1 | more
    return rtcm_stream.frame((head << 1).to_bytes(7, "big") + payload)


def made_epochs(count):
    station = rtcm_stream.frame((1005 << 4).to_bytes(2, "big") + b"\x00" * 17)
    return [[station, msm(1077, 1000 * i, 1), msm(1097, 1000 * i, 0)] for i in range(count)]


def joined(epochs):
    return b"".join(b"".join(epoch) for epoch in epochs)


def request(caster, head, tls=None):
    """The whole response to a request as it comes, and whether the connection was reset."""
    client = socket.create_connection(("127.0.0.1", caster.port), timeout=5)
    if tls:
        client = tls.wrap_socket(client, server_hostname="127.0.0.1")
    client.sendall(head)
    data = b""
    try:
        while more := client.recv(65536):
            data += more
    except ConnectionResetError:
        return data, True
    finally:
        client.close()
    return data, False


GET1 = b"GET /M HTTP/1.0\r\nUser-Agent: NTRIP test\r\n\r\n"


class CasterTest(unittest.TestCase):
    def setUp(self):
        self.epochs = made_epochs(5)

    def serve(self, plan=None, **settings):
        self.mount = Mount("M", self.epochs, plan=lambda _: plan or Connection(), hold=False, **settings)
        caster = Caster([self.mount])
        self.addCleanup(caster.close)
        return caster

    def test_crc_has_the_published_check_value(self):
        self.assertEqual(rtcm_stream.crc24q(b"123456789"), 0xCDE703)

    def test_a_recording_is_cut_into_its_epochs_and_noise_is_left_out(self):
        noisy = b"\xd3\x00\xff" + b"".join(b"".join(epoch) + b"\xd3" for epoch in self.epochs)
        self.assertEqual(list(rtcm_stream.epochs(noisy)), self.epochs)
        self.assertEqual([rtcm_stream.epoch_field(epoch[-1]) for epoch in self.epochs], [0, 1000, 2000, 3000, 4000])

    def test_version_1_sends_the_stream_after_icy(self):
        data, _ = request(self.serve(), GET1)
        self.assertEqual(data, b"ICY 200 OK\r\n\r\n" + joined(self.epochs))
        self.assertEqual((self.mount.whole, self.mount.cut), (5, 0))

    def test_a_bare_icy_has_no_empty_line(self):
        data, _ = request(self.serve(Connection(bare_icy=True)), GET1)
        self.assertEqual(data, b"ICY 200 OK\r\n" + joined(self.epochs))

    def test_version_2_is_chunked_down_to_single_bytes(self):
        for piece in (0, 1):
            caster = self.serve(Connection(piece=piece))
            client = http.client.HTTPConnection("127.0.0.1", caster.port, timeout=5)
            client.request("GET", "/M", headers={"Ntrip-Version": "Ntrip/2.0"})
            self.assertEqual(client.getresponse().read(), joined(self.epochs))
            client.close()
        data, _ = request(self.serve(Connection(piece=1)), GET1.replace(b"\r\n\r\n", b"\r\nNtrip-Version: Ntrip/2.0\r\n\r\n"))
        self.assertEqual(data.split(b"\r\n\r\n", 1)[1][:6], b"1\r\n\xd3\r\n")

    def test_a_connection_that_ends_in_an_epoch_costs_that_epoch_only(self):
        first = len(joined(self.epochs[:1]))
        caster = self.serve(Connection(end_after=first + 10))
        self.assertEqual(request(caster, GET1)[0][14:], joined(self.epochs)[:first + 10])
        self.assertEqual(request(caster, GET1)[0][14:], joined(self.epochs[2:])[:first + 10])
        self.assertEqual((self.mount.whole, self.mount.cut, self.mount.at), (2, 2, 4))

    def test_a_reset_is_a_reset(self):
        self.assertTrue(request(self.serve(Connection(end_after=50, end="reset")), GET1)[1])
        self.assertFalse(request(self.serve(Connection(end_after=50)), GET1)[1])

    def test_a_stall_keeps_the_connection_and_lets_another_in(self):
        caster = self.serve(Connection(end_after=50, end="stall", stall_s=0.5))
        started = time.monotonic()
        self.assertEqual(len(request(caster, GET1)[0]), 14 + 50)
        self.assertGreaterEqual(time.monotonic() - started, 0.5)

    def test_epochs_are_repeated_where_asked_for(self):
        size = len(joined(self.epochs[:3]))
        caster = self.serve(Connection(end_after=size, repeat=1))
        self.assertEqual(request(caster, GET1)[0][14:], joined(self.epochs[:3]))
        self.assertEqual(request(caster, GET1)[0][14:], joined(self.epochs[2:]))
        self.assertEqual(self.mount.whole, 5)

    def test_garbage_stands_between_frames_which_stay_whole(self):
        data, _ = request(self.serve(Connection(garbage=30)), GET1)
        self.assertGreater(len(data), 14 + len(joined(self.epochs)))
        self.assertEqual(list(rtcm_stream.epochs(data)), self.epochs)

    def test_a_wrong_password_is_refused_in_both_versions(self):
        caster = self.serve(user="me:secret")
        self.assertTrue(request(caster, GET1)[0].startswith(b"HTTP/1.0 401 "))
        wrong = GET1[:-2] + b"Authorization: " + basic("me:wrong").encode() + b"\r\nNtrip-Version: Ntrip/2.0\r\n\r\n"
        self.assertTrue(request(caster, wrong)[0].startswith(b"HTTP/1.1 401 "))
        right = wrong.replace(basic("me:wrong").encode(), basic("me:secret").encode())
        self.assertTrue(request(caster, right)[0].startswith(b"HTTP/1.1 200 "))

    def test_the_source_table_lists_mounts(self):
        caster = self.serve(nmea=True)
        table, _ = request(caster, GET1.replace(b"/M", b"/"))
        self.assertTrue(table.startswith(b"SOURCETABLE 200 OK\r\n"))
        self.assertTrue(table.endswith(b"ENDSOURCETABLE\r\n"))
        self.assertEqual(table.split(b"STR;")[1].split(b";")[10], b"1")
        self.assertTrue(request(caster, GET1.replace(b"/M", b"/N"))[0].startswith(b"SOURCETABLE 200 OK\r\n"))
        absent = GET1.replace(b"/M", b"/N").replace(b"\r\n\r\n", b"\r\nNtrip-Version: Ntrip/2.0\r\n\r\n")
        self.assertTrue(request(caster, absent)[0].startswith(b"HTTP/1.1 404 "))

    def test_epochs_come_at_their_time(self):
        caster = self.serve(speed=10)
        started = time.monotonic()
        request(caster, GET1)
        self.assertGreaterEqual(time.monotonic() - started, 0.4)

    def test_who_connects_again_gets_what_is_on(self):
        size = len(joined(self.epochs[:1]))
        caster = self.serve(Connection(end_after=size), speed=10, begun=time.monotonic() - 0.15)
        self.assertEqual(request(caster, GET1)[0][14:], joined(self.epochs[:1]))
        self.mount.begun = time.monotonic() - 0.25
        self.assertEqual(request(caster, GET1)[0][14:], joined(self.epochs[3:4]))

    def test_times_go_on_over_the_end_of_a_week(self):
        late = [[msm(1077, 604_799_000, 1), msm(1087, 5, 0)], [msm(1077, 0, 0)], [msm(1087, 7, 0)], [msm(1097, 2000, 0)]]
        self.assertEqual(list(rtcm_stream.seconds(late)), [0, 1, 1, 3])

    def test_lines_of_position_are_kept(self):
        caster = self.serve(speed=50)
        gga = b"$GPGGA,120000,5000.0,N,01400.0,E,4,12,0.8,300.0,M,45.0,M,,*5A\r\n"
        request(caster, GET1 + gga)
        self.assertEqual(self.mount.gga, [gga.decode()])

    def test_tls_with_a_certificate_of_its_own(self):
        with tempfile.TemporaryDirectory() as folder:
            certificate = make_certificate(folder)
            with Caster([Mount("M", self.epochs, hold=False)], certificate=certificate) as caster:
                data, _ = request(caster, GET1, ssl.create_default_context(cafile=certificate[0]))
                self.assertEqual(data, b"ICY 200 OK\r\n\r\n" + joined(self.epochs))
                with self.assertRaises(ssl.SSLCertVerificationError):
                    request(caster, GET1, ssl.create_default_context())


if __name__ == "__main__":
    unittest.main()
