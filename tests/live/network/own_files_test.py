"""What `orsolva live` does when a file that it keeps or writes is bad.

usage: own_files_test.py PROGRAM
"""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
from service import simulate  # noqa: E402

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

    def test_events_that_cannot_be_written_are_said_once_and_in_the_exit_code(self):
        done = self.replay("--events", "/dev/full")
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertEqual(done.stderr.count("/dev/full"), 1, done.stderr)
        good = pathlib.Path(self.folder.name, "events.jsonl")
        done = self.replay("--events", good)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertGreater(good.stat().st_size, 0)


if __name__ == "__main__":
    unittest.main()
