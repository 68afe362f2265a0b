"""`orsolva live` among stations and clients that misbehave: good stations lose nothing, costs stay bounded.

usage: hostile_test.py PROGRAM [HostileTest]
"""
import contextlib
import json
import os
import pathlib
import random
import resource
import socket
import sys
import tempfile
import threading
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import rtcm_stream  # noqa: E402
from caster import Caster, Mount  # noqa: E402
from service import Service, simulate  # noqa: E402

PROGRAM = sys.argv.pop(1)
SECONDS = 30
MOST_CORE = 0.6         # of a core, for all stations together; one that is not held back takes a whole one
MOST_GROWTH_KB = 20_000
CLIENTS = 50
LONGEST_ANSWER_S = 2.0  # on a busy machine; without limits it would be a minute


class Sender:
    """A server that gives each connection to a function, one thread each."""

    def __init__(self, talk):
        self.talk, self.connections = talk, 0
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self._accept, daemon=True).start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.listener.shutdown(socket.SHUT_RDWR)
        self.listener.close()

    def _accept(self):
        with contextlib.suppress(OSError):
            while True:
                client, _ = self.listener.accept()
                self.connections += 1
                threading.Thread(target=self._serve, args=(client,), daemon=True).start()

    def _serve(self, client):
        with client, contextlib.suppress(OSError):
            self.talk(client)


def raw_flood(data):
    def talk(client):
        while True:
            client.sendall(data)
    return talk


def flood(data):
    def talk(client):
        client.recv(4096)
        client.sendall(b"ICY 200 OK\r\n\r\n")
        while True:
            client.sendall(data)
    return talk


def storm(client):
    """Gives a byte of a stream and goes."""
    client.recv(4096)
    client.sendall(b"ICY 200 OK\r\n\r\n\xd3")


def endless_header(client):
    client.recv(4096)
    client.sendall(b"HTTP/1.1 200 OK\r\n")
    while True:
        client.sendall(b"X-More: " + b"x" * 1000 + b"\r\n")


def endless_table(client):
    client.recv(4096)
    client.sendall(b"SOURCETABLE 200 OK\r\nContent-Type: text/plain\r\n\r\n")
    while True:
        client.sendall(b"STR;OTHER;Other;RTCM 3.3;;2;GPS;N;DEU;50;8;0;0;g;none;N;N;0;\r\n" * 100)


def process_cost(pid):
    """Seconds of processor time and kB of resident memory of a process."""
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    seconds = (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")
    return seconds, int(fields[21]) * resource.getpagesize() // 1024


class HostileTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.epochs = list(rtcm_stream.epochs(simulate(PROGRAM, cls.folder.name, SECONDS).read_bytes()))
        assert len(cls.epochs) == SECONDS

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def assert_judged(self, service, *names):
        for name in names:
            station = service.until(lambda: (s := service.stations()[name])["epochs"] >= SECONDS and s, 60)
            self.assertEqual((station["epochs"], station["epochs_lost"], station["epochs_dropped"]), (SECONDS, 0, 0), name)

    def test_stations_that_misbehave_stop_no_other_and_cost_little(self):
        noise = random.Random(1).randbytes(1 << 20)
        false_frames = b"\xd3\x03\xff" * 100_000  # a CRC over a thousand bytes at every third byte
        talks = {"NOISE": flood(noise), "FRAMES": flood(false_frames), "STORM": storm, "HEADER": endless_header,
                 "TABLE": endless_table, "RAW": raw_flood(noise)}
        with contextlib.ExitStack() as stack:
            good = [Mount("GOOD", self.epochs, speed=1), Mount("FINE", self.epochs, speed=1)]
            caster = stack.enter_context(Caster(good))
            senders = {name: stack.enter_context(Sender(talk)) for name, talk in talks.items()}
            stations = {name: f"ntrip://127.0.0.1:{sender.port}/{name}" for name, sender in senders.items()}
            stations["RAW"] = f"tcp://127.0.0.1:{senders['RAW'].port}"
            stations.update({mount.name: f"ntrip://127.0.0.1:{caster.port}/{mount.name}" for mount in good})
            with Service(PROGRAM, stations) as service:
                service.until(lambda: service.stations()["GOOD"]["epochs"] >= 10, 60)
                begun, (spent, held_kb), storms = time.monotonic(), process_cost(service.process.pid), senders["STORM"].connections
                self.assert_judged(service, "GOOD", "FINE")
                passed = time.monotonic() - begun
                core = (process_cost(service.process.pid)[0] - spent) / passed
                grown_kb = process_cost(service.process.pid)[1] - held_kb
                states = service.stations()
                rate = (senders["STORM"].connections - storms) / passed
                print(f"{passed:.0f} s: {core:.2f} of a core, {grown_kb} kB more, {rate:.1f} connections of the storm per second,"
                      f" {states['NOISE']['bytes']} bytes of noise", file=sys.stderr)
                self.assertLess(core, MOST_CORE)
                if "ORSOLVA_SANITIZED" not in os.environ:  # a sanitizer keeps what was freed
                    self.assertLess(grown_kb, MOST_GROWTH_KB)
                self.assertLess(rate, 3)
                self.assert_misbehaviour_is_told(service, senders, time.monotonic() - begun + 40)

    def assert_misbehaviour_is_told(self, service, senders, most_seconds):
        """What each station that misbehaves has come to."""
        for name in senders:
            state = service.until(lambda: (s := service.stations()[name])["alarms"] and s, 60)
            with self.subTest(name, state=state):
                self.assertEqual([alarm["kind"] for alarm in state["alarms"]], ["data_gap"])
                self.assertEqual((state["epochs"], state["frames"]), (0, 0))
                if name in ("NOISE", "FRAMES", "RAW"):
                    # Read at its rate, and found to hold nothing; a frame's length may wait for its end.
                    self.assertGreater(state["bytes"], 1 << 20)
                    self.assertLess(state["bytes"], (4 << 20) + most_seconds * (256 << 10))
                    self.assertGreater(state["skipped_bytes"], 0.99 * state["bytes"])
                if name == "FRAMES":
                    self.assertGreater(state["crc_errors"], 0)
                if name == "RAW":
                    self.assertEqual((state["connected"], state["connections"], state["problem"]), (True, 1, None))
                if name == "STORM":
                    self.assertEqual(state["bytes"], state["connections"])
                    self.assertGreater(state["connections"], 5)
                if name in ("HEADER", "TABLE"):
                    self.assertEqual((state["connected"], state["connections"], state["bytes"]), (False, 0, 0))
                if name == "HEADER":
                    self.assertTrue(state["problem"])
                    self.assertIn(state["problem"], state["alarms"][0]["seen"])
                if name == "TABLE":
                    # Asked for the table and for the stream, and again after a minute.
                    self.assertEqual(state["problem"], "the caster does not know the mount point")
                    self.assertLessEqual(senders[name].connections, 4)

    def test_clients_that_drip_and_sip_slow_neither_the_judging_nor_others(self):
        mounts = [Mount(f"M{i}", self.epochs, speed=1) for i in range(5)]
        with Caster(mounts) as caster:
            with Service(PROGRAM, {m.name: f"ntrip://127.0.0.1:{caster.port}/{m.name}" for m in mounts}) as service:
                address = ("127.0.0.1", int(service.url.rsplit(":", 1)[1].rstrip("/")))
                over = threading.Event()
                hostile = [threading.Thread(target=self.misbehave, args=(address, over, drip)) for drip in (True, False)]
                for thread in hostile:
                    thread.start()
                try:
                    longest = 0.0
                    while not all(mount.done() for mount in mounts):
                        start = time.monotonic()
                        json.loads(service.get("state.json"))
                        longest = max(longest, time.monotonic() - start)
                        time.sleep(0.1)
                    self.assert_judged(service, *(mount.name for mount in mounts))
                finally:
                    over.set()
                    for thread in hostile:
                        thread.join()
        print(f"longest answer {longest:.2f} s among {2 * CLIENTS} clients", file=sys.stderr)
        self.assertLess(longest, LONGEST_ANSWER_S)

    @staticmethod
    def misbehave(address, over, drip):
        """Clients that send a request, or read replies, a byte at a time; who loses its connection comes again."""
        clients = []
        while not over.is_set():
            while len(clients) < CLIENTS:
                client = socket.create_connection(address, timeout=5)
                client.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 2048)
                client.sendall(b"GET /state.json HTTP/1.1\r\nX: " if drip else
                               b"GET /events.json?after=0&wait=1 HTTP/1.1\r\nHost: x\r\n\r\n")
                client.setblocking(False)
                clients.append(client)
            for client in list(clients):
                try:
                    gone = drip and client.send(b"x") == 0
                    gone = client.recv(1) == b"" or gone
                except BlockingIOError:
                    gone = False
                except OSError:
                    gone = True
                if gone:
                    clients.remove(client)
                    client.close()
            time.sleep(0.05)
        for client in clients:
            client.close()


if __name__ == "__main__":
    unittest.main()
