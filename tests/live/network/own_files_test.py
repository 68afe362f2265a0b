"""What `orsolva live` does when a file that it keeps or writes is bad, and when a replay has ended; and where its files are.

usage: own_files_test.py PROGRAM
"""
import json
import pathlib
import socket
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
from service import Service, simulate, table_of  # noqa: E402

PROGRAM = sys.argv.pop(1)
SECONDS = 70


class OwnFilesTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.recording = simulate(PROGRAM, cls.folder.name, SECONDS)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def replay(self, *options):
        return subprocess.run([PROGRAM, "live", self.recording, *options], capture_output=True, text=True, timeout=60)

    def test_a_damaged_file_of_kept_ephemerides_is_noted_and_replaced(self):
        for number, damaged in enumerate((b"", b"no ephemerides", bytes(range(256)) * 20)):
            state = pathlib.Path(self.folder.name, f"state{number}")
            state.mkdir()
            name = self.recording.name.split(".")[0]
            kept = state / f"{name}.rtcm3"
            kept.write_bytes(damaged)
            done = self.replay("--state", state)
            self.assertEqual(done.returncode, 0, done.stderr)
            events = [json.loads(line) for line in done.stdout.splitlines()]
            notes = [event["seen"] for event in events if event["kind"] == "no_ephemerides"]
            self.assertEqual(len(notes), 1, events)
            self.assertIn(str(kept), notes[0])
            self.assertGreater(len(kept.read_bytes()), 1000)
            self.assertNotEqual(kept.read_bytes(), damaged)

    def test_the_files_of_a_station_stay_in_their_folders_whatever_its_name(self):
        inner = pathlib.Path(self.folder.name, "names", "inner")
        inner.mkdir(parents=True)
        names = ["../A.B", "../A_B", "/A", ".A"]
        network = inner.parent / "network.toml"
        network.write_text("".join(table_of(name, str(self.recording)) for name in names), encoding="utf-8")
        done = subprocess.run([PROGRAM, "live", "--stations", network, "--state", inner / "state", "--reports", inner / "reports"],
                              capture_output=True, text=True, timeout=60)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertNotIn("not_written", done.stdout)
        self.assertEqual(sorted(path.name for path in inner.parent.iterdir()), ["inner", "network.toml"])
        self.assertEqual(sorted(path.name for path in inner.iterdir()), ["reports", "state"])
        stems = ["%2E.%2FA.B", "%2E.%2FA_B", "%2EA", "%2FA"]
        self.assertEqual(sorted(path.name for path in (inner / "state").iterdir()), [stem + ".rtcm3" for stem in stems])
        reports = {path.name.rsplit("_", 1)[0] for path in (inner / "reports").iterdir()}
        self.assertEqual(sorted(reports), stems)

    def test_events_that_cannot_be_written_are_said_once_and_in_the_exit_code(self):
        done = self.replay("--events", "/dev/full")
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertEqual(done.stderr.count("/dev/full"), 1, done.stderr)
        good = pathlib.Path(self.folder.name, "events.jsonl")
        done = self.replay("--events", good)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertGreater(good.stat().st_size, 0)

    def test_a_line_of_events_that_was_cut_short_spoils_no_other(self):
        events = pathlib.Path(self.folder.name, "cut.jsonl")
        events.write_text('{"id":1}\n{"id":2,"ti', encoding="utf-8")
        self.assertEqual(self.replay("--events", events).returncode, 0)
        lines = events.read_text(encoding="utf-8").splitlines()
        self.assertEqual(lines[:2], ['{"id":1}', '{"id":2,"ti'])
        self.assertGreater(len([json.loads(line) for line in lines[2:]]), 0)

    def test_a_folder_that_cannot_be_made_ends_the_service_at_once(self):
        for option in ("--state", "--reports"):
            done = self.replay(option, "/dev/null/folder")
            self.assertEqual((done.returncode, done.stdout), (1, ""), done.stderr)
            self.assertIn("/dev/null/folder", done.stderr)

    def test_files_that_cannot_be_written_are_noted(self):
        done = self.replay("--state", "/proc/self", "--reports", "/proc/self")
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertIn("could not be written", done.stderr)
        events = [json.loads(line) for line in done.stdout.splitlines()]
        notes = sorted(event["seen"] for event in events if event["kind"] == "not_written")
        self.assertEqual(len(notes), 2, events)
        self.assertTrue(all("/proc/self/" in note for note in notes), notes)

    def test_the_second_source_of_a_replay_is_closed_when_it_has_ended(self):
        with socket.create_server(("127.0.0.1", 0)) as second, socket.create_server(("127.0.0.1", 0)) as other:
            def address(server):
                return f"tcp://127.0.0.1:{server.getsockname()[1]}"
            # The other station keeps the service running.
            stations = {"R": {"source": self.recording, "nav": address(second)}, "OTHER": address(other)}
            # In two seconds: the second source is opened before the replay has ended.
            with Service(PROGRAM, stations, "--speed", str(SECONDS / 2)):
                connection, _ = second.accept()
                with connection:
                    connection.settimeout(15)
                    self.assertEqual(connection.recv(1), b"")


if __name__ == "__main__":
    unittest.main()
