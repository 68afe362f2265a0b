#!/usr/bin/env python3
"""An NTRIP caster for tests: versions 1 and 2, and the ways in which real casters and lines misbehave.

As a program:  caster.py [--port N] [--speed S] [--user NAME:PASSWORD] NAME=FILE...
A test uses Caster, Mount and Connection.
"""
import argparse
import base64
import dataclasses
import pathlib
import random
import select
import socket
import ssl
import struct
import subprocess
import sys
import threading
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import rtcm_stream  # noqa: E402


@dataclasses.dataclass
class Connection:
    """How one connection of a client goes."""
    version: int = 0               # 1 or 2; 0: the one that the client asks for
    piece: int = 0                 # bytes per send, and per chunk of version 2; 0: an epoch at once
    garbage: int = 0               # most bytes of garbage before each frame
    end_after: int | None = None   # bytes of the stream; None: to the end of the recording
    end: str = "close"             # "close", "reset" or "stall", when end_after is reached
    stall_s: float = 3600.0
    repeat: int = 0                # epochs sent before that are sent again first, as casters with a cache do
    bare_icy: bool = False         # version 1 without the empty line after "ICY 200 OK"


@dataclasses.dataclass
class Mount:
    """A stream of epochs; connections one after another go on where the last one ended."""
    name: str
    epochs: list                   # each a list of frames
    speed: float = 0.0             # of the stream against its own time; 0: as fast as the client reads
    begun: float | None = None     # time.monotonic() of the first epoch: who connects again gets what is on then
    plan: object = None            # called with the number of the connection from 0: a Connection, or None: 503
    user: str = ""                 # "name:password"
    nmea: bool = False             # whether the source table asks for GGA
    silent: bool = False           # sends nothing before a line of GGA has come on the connection
    hold: bool = True              # keeps the connection open after the last epoch
    at: int = 0                    # the next epoch
    connections: int = 0
    whole: int = 0                 # epochs of which every byte was sent once
    cut: int = 0                   # epochs of which a connection sent a part
    gga: list = dataclasses.field(default_factory=list)
    requests: list = dataclasses.field(default_factory=list)
    lock: threading.Lock = dataclasses.field(default_factory=threading.Lock)

    def __post_init__(self):
        self.seconds = list(rtcm_stream.seconds(self.epochs))

    def done(self):
        return self.at >= len(self.epochs)

    def start(self):
        """@return the time at which the first epoch is due"""
        now = time.monotonic()
        if self.begun is None:
            return now - (0 if self.done() or not self.speed else self.seconds[self.at] / self.speed)
        # The first client gets all, a little late perhaps: the ephemerides are in the first epoch.
        while self.connections > 1 and not self.done() and self.due(self.begun) < now:
            self.at += 1
        return self.begun

    def due(self, begun):
        return begun + self.seconds[self.at] / self.speed if self.speed else begun


class Ended(Exception):
    """The connection is over, as planned or by the client."""


class Caster:
    """Serves mounts on a port of this machine until close()."""

    def __init__(self, mounts, port=0, host="127.0.0.1", certificate=None):
        self.mounts = {mount.name: mount for mount in mounts}
        self.tls = None
        if certificate:
            self.tls = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            self.tls.load_cert_chain(*certificate)
        self.closing = threading.Event()
        self.listener = socket.create_server((host, port))
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self._accept, daemon=True).start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        self.closing.set()
        self.listener.shutdown(socket.SHUT_RDWR)
        self.listener.close()

    def _accept(self):
        while not self.closing.is_set():
            try:
                client, _ = self.listener.accept()
            except OSError:
                return
            threading.Thread(target=self._serve, args=(client,), daemon=True).start()

    def _serve(self, client):
        try:
            client.settimeout(60)  # a busy machine reads late
            if self.tls:
                client = self.tls.wrap_socket(client, server_side=True)
            client.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            self._answer(client)
        except (OSError, Ended):
            pass
        finally:
            client.close()

    def _answer(self, client):
        path, fields = read_request(client)
        version = 2 if "2.0" in fields.get("ntrip-version", "") else 1
        mount = self.mounts.get(path.lstrip("/").split("?")[0])
        if mount is None:
            client.sendall(source_table(self.mounts.values(), version, found=path == "/"))
            return
        mount.requests.append(fields)
        if mount.user and fields.get("authorization", "") != basic(mount.user):
            client.sendall(refusal("401 Unauthorized", version, 'WWW-Authenticate: Basic realm="/%s"' % mount.name))
            return
        with mount.lock:  # one client after another
            number = mount.connections
            mount.connections += 1
            plan = mount.plan(number) if mount.plan else Connection()
            if plan is None:
                client.sendall(refusal("503 Service Unavailable", version))
                return
            last = self._stream(client, mount, plan, plan.version or version, number)
        if last == "reset":
            client.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        elif last == "stall":
            until = time.monotonic() + plan.stall_s
            while not self.closing.is_set() and time.monotonic() < until:
                listen(client, mount, 0.05)

    def _stream(self, client, mount, plan, version, number):
        if version == 1:
            client.sendall(b"ICY 200 OK\r\n" + (b"" if plan.bare_icy else b"\r\n"))
        else:
            client.sendall(b"HTTP/1.1 200 OK\r\nNtrip-Version: Ntrip/2.0\r\nServer: test caster\r\n"
                           b"Content-Type: gnss/data\r\nTransfer-Encoding: chunked\r\nConnection: close\r\n\r\n")
        sender = Sender(client, plan, version, number)
        while mount.silent and not mount.gga and not self.closing.is_set():
            listen(client, mount, 0.05)
        begun = mount.start()
        for epoch in mount.epochs[max(0, mount.at - plan.repeat):mount.at]:
            if not sender.send_epoch(epoch):
                return plan.end
        while not mount.done():
            listen(client, mount, max(0.0, mount.due(begun) - time.monotonic()))
            if self.closing.is_set():
                raise Ended
            before = sender.sent
            if not sender.send_epoch(mount.epochs[mount.at]):
                # The rest of an epoch that was cut short never comes: the next connection starts with the next one.
                if sender.sent > before:
                    mount.cut += 1
                    mount.at += 1
                return plan.end
            mount.at += 1
            mount.whole += 1
        if mount.hold:
            return "stall"
        if version == 2:
            client.sendall(b"0\r\n\r\n")
        return "close"


class Sender:
    """Sends epochs on one connection as its plan says."""

    def __init__(self, client, plan, version, number):
        self.client, self.plan, self.version = client, plan, version
        self.sent = 0  # bytes of frames
        self.noise = random.Random(number)

    def send_epoch(self, epoch):
        """@return False when the plan ends the connection before the end of the epoch"""
        if not self.plan.garbage:
            return self._send_frames(b"".join(epoch))
        for frame in epoch:
            self._send(self.noise.randbytes(self.noise.randrange(self.plan.garbage + 1)))
            if not self._send_frames(frame):
                return False
        return True

    def _send_frames(self, data):
        left = len(data)
        if self.plan.end_after is not None:
            left = min(left, self.plan.end_after - self.sent)
        self._send(data[:left])
        self.sent += left
        return left == len(data)

    def _send(self, data):
        step = self.plan.piece or len(data) or 1
        for at in range(0, len(data), step):
            piece = data[at:at + step]
            self.client.sendall(piece if self.version == 1 else b"%X\r\n%s\r\n" % (len(piece), piece))


def read_request(client):
    """Path and fields, by lower-case name, of a request; its body is left to be read."""
    data = b""
    while b"\r\n\r\n" not in data:
        more = client.recv(1)
        if not more or len(data) > 8192:
            raise Ended
        data += more
    lines = data.decode("latin-1").split("\r\n")
    words = lines[0].split(" ")
    if len(words) != 3 or words[0] not in ("GET", "POST"):
        raise Ended
    fields = dict(line.split(":", 1) for line in lines[1:] if ":" in line)
    return words[1], {name.strip().lower(): value.strip() for name, value in fields.items()}


def listen(client, mount, seconds):
    """Waits and keeps the lines of GGA that the client sends meanwhile, with their ends.

    @throws Ended when the client has closed
    """
    until = time.monotonic() + seconds
    while True:
        left = max(0.0, until - time.monotonic())
        if select.select([client], [], [], left)[0]:
            data = client.recv(1024)
            mount.gga += [line.decode("latin-1") for line in data.splitlines(keepends=True)]
            if not data:
                raise Ended
        if left == 0.0:
            return


def basic(user):
    return "Basic " + base64.b64encode(user.encode()).decode()


def refusal(status, version, *fields):
    head = "\r\n".join(["%s %s" % ("HTTP/1.1" if version == 2 else "HTTP/1.0", status), *fields,
                        "Content-Length: 0", "Connection: close"])
    return head.encode() + b"\r\n\r\n"


def source_table(mounts, version, found=True):
    """The table of mounts; version 1 sends it for an unknown mount too, version 2 says 404."""
    if not found and version == 2:
        return refusal("404 Not Found", version)
    lines = ["STR;%s;%s;RTCM 3.3;;2;GPS+GLO+GAL+BDS;TEST;XXX;50.00;14.00;%d;0;simulated;none;%s;N;9600;"
             % (mount.name, mount.name, mount.nmea, "B" if mount.user else "N") for mount in mounts]
    body = "\r\n".join(lines + ["ENDSOURCETABLE", ""]).encode()
    status = b"SOURCETABLE 200 OK" if version == 1 else b"HTTP/1.1 200 OK\r\nNtrip-Version: Ntrip/2.0"
    kind = b"text/plain" if version == 1 else b"gnss/sourcetable"
    return b"%s\r\nContent-Type: %s\r\nContent-Length: %d\r\nConnection: close\r\n\r\n%s" % (status, kind, len(body), body)


def make_certificate(folder):
    """A certificate for 127.0.0.1 and its key, signed by itself. @return their paths"""
    certificate, key = pathlib.Path(folder, "caster.pem"), pathlib.Path(folder, "caster.key")
    subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
                    "-days", "2", "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1",
                    "-keyout", key, "-out", certificate], check=True, capture_output=True)
    return str(certificate), str(key)


def mount_of_file(name, path, **settings):
    return Mount(name, list(rtcm_stream.epochs(pathlib.Path(path).read_bytes())), **settings)


def main():
    parser = argparse.ArgumentParser(description="An NTRIP caster for tests and demonstrations.")
    parser.add_argument("--port", type=int, default=2101)
    parser.add_argument("--speed", type=float, default=1.0, help="of the streams against their own time")
    parser.add_argument("--user", default="", help="NAME:PASSWORD that every mount asks for")
    parser.add_argument("mount", nargs="+", help="NAME=FILE")
    given = parser.parse_args()
    mounts = [mount_of_file(*text.split("=", 1), speed=given.speed, user=given.user)
              for text in given.mount]
    with Caster(mounts, given.port) as caster:
        print("caster on port %d: %s" % (caster.port, " ".join(caster.mounts)), flush=True)
        try:
            threading.Event().wait()
        except KeyboardInterrupt:
            pass


if __name__ == "__main__":
    main()
