"""A running `orsolva live` for tests."""
import json
import os
import pathlib
import socket
import subprocess
import tempfile
import time
import urllib.error
import urllib.request

GPS_MINUS_UTC_S = 18


def free_port():
    with socket.create_server(("127.0.0.1", 0)) as listener:
        return listener.getsockname()[1]


def simulate(program, folder, seconds, *options):
    """A recording of RTCM 3 that begins now, at an epoch per second. @return its path"""
    start = time.strftime("%Y-%m-%d %H:%M:%S", time.gmtime(time.time() + GPS_MINUS_UTC_S))
    subprocess.run([program, "simulate", "--output", folder, "--start", start, "--hours", str(seconds / 3600),
                    "--interval", "1", "--rtcm", "7", *options], check=True, capture_output=True)
    return next(pathlib.Path(folder).glob("*.rtcm3"))


def table_of(name, keys):
    """A station of the file: its source, or a dictionary of its keys."""
    keys = {"name": name, **(keys if isinstance(keys, dict) else {"source": keys})}
    return "[[station]]\n" + "".join(f'{key} = "{text}"\n' for key, text in keys.items()) + "\n"


class Service:
    """The program with stations by name and source, or keys with texts; ends with the block."""

    def __init__(self, program, stations, *options, environment=None):
        self.folder = tempfile.TemporaryDirectory()
        self.count = len(stations)
        network = pathlib.Path(self.folder.name, "network.toml")
        network.write_text("".join(table_of(name, keys) for name, keys in stations.items()), encoding="utf-8")
        self.events_file = pathlib.Path(self.folder.name, "events.jsonl")
        self.log = pathlib.Path(self.folder.name, "log.txt").open("w+", encoding="utf-8", errors="replace")
        self.url = f"http://127.0.0.1:{free_port()}/"
        self.process = subprocess.Popen(
            [program, "live", "--stations", network, "--listen", self.url[7:-1], "--events", self.events_file, *options],
            stdout=subprocess.DEVNULL, stderr=self.log, env={**os.environ, **(environment or {})})

    def __enter__(self):
        self.until(lambda: self.get("metrics"), 20)
        self.until(lambda: len(self.stations()) == self.count, 20)
        return self

    def __exit__(self, kind, *_):
        self.process.terminate()
        self.process.wait(timeout=30)
        said = self.said()
        self.log.close()
        self.folder.cleanup()
        # A sanitizer that found something ends it with another code.
        assert kind is not None or self.process.returncode == 0, f"ended with {self.process.returncode}: {said}"

    def get(self, path):
        """The text, or None while the service does not listen yet."""
        try:
            with urllib.request.urlopen(self.url + path, timeout=30) as answer:
                return answer.read().decode()
        except (urllib.error.URLError, ConnectionError):
            if self.process.poll() is not None:
                raise AssertionError(f"the service ended with {self.process.returncode}: {self.said()}") from None
            return None

    def stations(self):
        return {station["name"]: station for station in json.loads(self.get("state.json"))["stations"]}

    def events(self):
        return json.loads(self.get("events.json?after=0&wait=0"))["events"]

    def said(self):
        """What it wrote to standard error."""
        self.log.seek(0)
        return self.log.read()

    def until(self, condition, seconds):
        """What the condition gives once it is true."""
        end = time.monotonic() + seconds
        while not (found := condition()):
            assert time.monotonic() < end, f"not within {seconds} s; stations: {self.get('state.json')}"
            time.sleep(0.1)
        return found
