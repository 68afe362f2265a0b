#!/usr/bin/env python3
"""What a host may do to the program: full disks, read errors, missing permissions, closed pipes, interrupts.

usage: faults_test.py PROGRAM DATA_FOLDER [TEST...]   exits 77 (skipped) without the data

Every fault gives an error that names the file and what is wrong, the documented exit code, no half-written file and
no temporary name.
"""
import contextlib
import gzip
import json
import os
import pathlib
import pty
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
import tty
import unittest

PROGRAM = ""
DATA = pathlib.Path()
OBSERVATIONS = "SEPT078M.21O"
NAVIGATION = "SEPT078M.21P"
GIVE_UP_S = 120  # of waiting for something that has to happen


def limit_files(most_bytes):
    return lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (most_bytes, most_bytes))


def await_that(holds, what):
    end = time.monotonic() + GIVE_UP_S
    while not holds():
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain until {what}")
        time.sleep(0.01)


class Faults(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="orsolva_faults_"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.observations = DATA / OBSERVATIONS
        self.navigation = DATA / NAVIGATION

    def run_program(self, *arguments, **options):
        """Runs to the end. @return exit code, standard output and error"""
        before = options.pop("before", [])
        environment = dict(os.environ, ORSOLVA_CONFIG="", HOME=str(self.folder), XDG_CONFIG_HOME="")
        options.setdefault("stdout", subprocess.PIPE)
        options.setdefault("stdin", subprocess.DEVNULL)
        done = subprocess.run([*before, PROGRAM, *map(str, arguments)], stderr=subprocess.PIPE, check=False,
                              env=environment, timeout=GIVE_UP_S, **options)
        return done.returncode, done.stdout, done.stderr.decode(errors="replace")

    def start(self, *arguments, **options):
        process = subprocess.Popen([PROGRAM, *map(str, arguments)], stderr=subprocess.PIPE,
                                   stdout=subprocess.PIPE, **options)
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def qc(self, *arguments, **options):
        return self.run_program("qc", self.observations, self.navigation, *arguments, **options)

    def names(self, folder=None):
        return sorted(p.name for p in (folder or self.folder).iterdir())

    def assert_fails(self, answer, *parts, code=1):
        self.assertEqual(answer[0], code, answer[2])
        self.assertTrue(answer[2].startswith("orsolva: "), answer[2])
        for part in parts:
            self.assertIn(part, answer[2])
        self.assertNotIn(".part-", answer[2])


class FullDisk(Faults):
    def test_a_report_that_finds_no_room_fails_the_run(self):
        with open("/dev/full", "wb") as full:
            self.assert_fails(self.qc(stdout=full), "standard output", "No space left")
            self.assert_fails(self.qc("--json", stdout=full), "standard output", "No space left")
        for flag in ("--text", "--json", "--csv", "--sum", "--html", "--detail", "--network"):
            answer = self.qc("--quiet", f"{flag}=/dev/full")
            self.assert_fails(answer, "/dev/full", "No space left", "Check the folder and the room on the disk")

    def test_every_command_that_prints_says_when_it_could_not(self):
        for command in (["config"], ["version"], ["manual"], ["explain"], ["explain", "mp1"], ["--help"],
                        ["qc", "--help"], ["completion", "bash"], ["completion", "zsh"], ["completion", "fish"],
                        ["inspect", self.navigation], ["simulate", "--list-presets"],
                        ["simulate", "--hours", "0.1", "--output", self.folder]):
            with open("/dev/full", "wb") as full:
                self.assert_fails(self.run_program(*command, stdout=full), "standard output")

    def test_a_file_that_cannot_grow_is_named_and_leaves_nothing(self):
        for name in ("r.json", "r.csv", "r.html", "d.csv", "d.csv.gz"):
            flag = {"d.csv": "--detail", "d.csv.gz": "--detail", "r.html": "--html"}.get(name, "--" + name[2:])
            path = self.folder / name
            answer = self.qc("--quiet", "--sats", f"{flag}={path}", preexec_fn=limit_files(4096))
            self.assert_fails(answer, f"{path}: could not be written (File too large)", "Check the folder")
            self.assertEqual(self.names(), [])

    def test_the_file_that_stood_there_stays(self):
        path = self.folder / "r.json"
        path.write_text("former")
        self.assert_fails(self.qc("--quiet", f"--json={path}", preexec_fn=limit_files(4096)), str(path))
        self.assertEqual(path.read_text(), "former")
        self.assertEqual(self.names(), ["r.json"])

    def test_a_folder_of_reports_keeps_those_that_found_room(self):
        into = self.folder / "out"
        answer = self.qc("--quiet", "--output", into, "--formats", "sum,json,text,html,detail",
                         preexec_fn=limit_files(20000))
        self.assert_fails(answer, "SEPT078M.21O.", "could not be written")
        for name in self.names(into):
            self.assertFalse(name.startswith("."), name)
            self.assertLess((into / name).stat().st_size, 20000)

    def test_a_simulation_that_finds_no_room_leaves_the_folder_as_it_was(self):
        for options in ([], ["--gzip"], ["--crinex"]):
            answer = self.run_program("simulate", "--hours", "0.5", "--output", self.folder, *options,
                                      preexec_fn=limit_files(8192))
            self.assert_fails(answer, str(self.folder / "SIMU00ORS_R_"), "File too large")
            self.assertEqual(self.names(), [])


class ReadErrors(Faults):
    def test_an_input_that_cannot_be_read_is_named_with_the_reason(self):
        # Reading the first page of a process's memory is an error of the device.
        broken = "/proc/self/mem"
        self.assert_fails(self.run_program("qc", broken, self.navigation), broken, "Input/output error")
        self.assert_fails(self.run_program("qc", self.observations, "--nav", broken), broken, "Input/output error")
        self.assert_fails(self.run_program("inspect", broken), broken, "Input/output error")
        for command in (("qc", self.folder, self.navigation), ("inspect", self.folder)):
            self.assert_fails(self.run_program(*command), str(self.folder), "found a folder, expected a file")
        self.assert_fails(self.run_program("qc", ""), "the name of a file is empty", code=2)

    def test_settings_that_cannot_be_read_are_named_with_the_reason(self):
        for broken, why in ((self.folder, "Is a directory"), ("/proc/self/mem", "Input/output error"),
                            ("/dev/zero", "more than")):
            self.assert_fails(self.qc(f"--config={broken}"), str(broken), why, code=2)
            self.assert_fails(self.qc(f"--profile={broken}"), str(broken), why, code=2)
            self.assert_fails(self.run_program("simulate", "--scenario", broken, "--output", self.folder),
                              str(broken), why)
        self.assert_fails(self.run_program("compare", self.folder, self.observations), str(self.folder), "directory")

    def test_what_was_read_before_an_error_is_judged(self):
        # The reading end of a terminal gives what was written and then an input error once the writer has gone.
        master, slave = pty.openpty()
        tty.setraw(slave)

        def write():
            with os.fdopen(slave, "wb") as out, contextlib.suppress(OSError):
                out.write(self.observations.read_bytes()[:1500000])

        writer = threading.Thread(target=write)
        writer.start()
        try:
            answer = self.run_program("qc", "-", self.navigation, "--json", stdin=master)
        finally:
            os.close(master)
            writer.join()
        self.assert_fails(answer, "Input/output error", "The report covers what was read before")
        run = json.loads(answer[1])["run"]
        self.assertGreater(run["epochs"], 100)
        self.assertLess(run["epochs"], 900)

    def test_compressed_data_that_end_early_or_are_damaged_are_judged_as_far_as_they_go(self):
        compressed = gzip.compress(self.observations.read_bytes(), 6)
        half = len(compressed) // 2
        for name, data in (("truncated", compressed[:half]),
                           ("damaged", compressed[:half] + bytes(b ^ 0x55 for b in compressed[half:]))):
            path = self.folder / "SEPT078M.21O.gz"
            path.write_bytes(data)
            answer = self.run_program("qc", path, self.navigation, "--json")
            self.assert_fails(answer, str(path), f"{name} compressed data", "covers what was read before")
            report = json.loads(answer[1])
            self.assertGreater(report["run"]["epochs"], 100)
            self.assertLess(report["run"]["epochs"], 900)
            self.assertTrue(any(name in n["text"] and not n["recovered"] for n in report["notices"]))
            self.assert_fails(self.run_program("inspect", path), str(path), name)

    def test_navigation_cut_off_in_its_compression_is_an_error_beside_the_report(self):
        path = self.folder / "SEPT078M.21P.gz"
        compressed = gzip.compress(self.navigation.read_bytes(), 6)
        path.write_bytes(compressed[:len(compressed) * 3 // 4])
        answer = self.run_program("qc", self.observations, path, "--json")
        self.assert_fails(answer, str(path), "truncated compressed data")
        self.assertEqual(json.loads(answer[1])["run"]["epochs"], 900)


class Permissions(Faults):
    def run_program(self, *arguments, **options):
        if os.geteuid() == 0:  # the superuser is held to permissions without these two rights
            options["before"] = ["setpriv", "--bounding-set=-dac_override,-dac_read_search"]
        return super().run_program(*arguments, **options)

    def copy_without_rights(self, path):
        own = self.folder / path.name
        shutil.copyfile(path, own)
        own.chmod(0)
        return own

    def test_an_input_that_must_not_be_read_is_named(self):
        for path, arguments in ((self.observations, [self.navigation]), (self.navigation, [self.observations])):
            own = self.copy_without_rights(path)
            self.assert_fails(self.run_program("qc", own, *arguments), str(own), "Permission denied",
                              "Check the name and the permissions")

    def test_settings_that_must_not_be_read_are_named(self):
        own = self.copy_without_rights(self.navigation)
        self.assert_fails(self.qc(f"--config={own}"), str(own), "Permission denied", code=2)
        self.assert_fails(self.qc(f"--profile={own}"), str(own), "Permission denied", code=2)
        self.assert_fails(self.run_program("simulate", "--scenario", own), str(own), "Permission denied")

    def test_a_folder_that_must_not_be_written_is_named_and_stays_empty(self):
        closed = self.folder / "closed"
        closed.mkdir(mode=0o555)
        for arguments in ([f"--json={closed}/r.json"], ["--output", closed], ["--output", closed / "deeper"],
                          [f"--html={closed}/r.html"], [f"--detail={closed}/d.csv.gz"]):
            self.assert_fails(self.qc("--quiet", *arguments), str(closed), "Permission denied", "Check the")
        self.assert_fails(self.run_program("simulate", "--hours", "0.1", "--output", closed), str(closed),
                          "Permission denied")
        self.assertEqual(self.names(closed), [])


class Streams(Faults):
    def closed_pipe(self):
        reading, writing = os.pipe()
        os.close(reading)
        self.addCleanup(os.close, writing)
        return writing

    def test_a_report_nobody_reads_ends_the_run_in_silence_and_leaves_no_file(self):
        into = self.folder / "r.json"
        for arguments in (["--text", f"--json={into}"], ["--events=-"], ["--network=-", self.observations]):
            code, _, err = self.qc("--quiet", *arguments, stdout=self.closed_pipe())
            self.assertEqual((code, err), (-signal.SIGPIPE, ""), arguments)
        self.assertEqual(self.names(), [])

    def test_commands_end_in_silence_when_nobody_reads(self):
        for command in (["config"], ["manual"], ["explain"], ["inspect", self.observations]):
            code, _, err = self.run_program(*command, stdout=self.closed_pipe())
            self.assertEqual(code, -signal.SIGPIPE)
            self.assertEqual(err, "")

    def test_the_first_lines_of_many_reports_may_be_enough(self):
        many = " ".join(f"'{self.observations}'" for _ in range(6))
        done = subprocess.run(["bash", "-c", f"'{PROGRAM}' qc --no-config --csv {many} '{self.navigation}' | head -1; "
                               "echo ${PIPESTATUS[0]}"], capture_output=True, text=True, check=True, timeout=GIVE_UP_S)
        heading, code = done.stdout.splitlines()
        self.assertIn("figure", heading)
        self.assertEqual(code, str(128 + signal.SIGPIPE), done.stderr)
        self.assertEqual(done.stderr.count("\n"), done.stderr.count(": processed"), done.stderr)

    def test_a_closed_standard_output_is_no_place_for_the_next_file(self):
        good, closed = self.folder / "good.csv", self.folder / "closed.csv"
        self.assertEqual(self.qc("--quiet", f"--detail={good}")[0], 0)
        answer = self.qc(f"--detail={closed}", stdout=None, preexec_fn=lambda: os.close(1))
        self.assert_fails(answer, "standard output", "Bad file descriptor")
        self.assertEqual(closed.read_bytes(), good.read_bytes())
        self.assertEqual(self.names(), ["closed.csv", "good.csv"])

    def test_a_closed_standard_input_is_an_error_of_reading(self):
        answer = self.run_program("qc", "-", self.navigation, stdin=None, preexec_fn=lambda: os.close(0))
        self.assert_fails(answer, "-: found Bad file descriptor")

    def test_a_closed_standard_error_harms_no_report(self):
        path = self.folder / "r.json"
        done = subprocess.run([PROGRAM, "qc", "--verbose", f"--json={path}", self.observations, self.navigation],
                              check=False, preexec_fn=lambda: os.close(2), timeout=GIVE_UP_S)
        self.assertEqual(done.returncode, 0)
        self.assertEqual(json.loads(path.read_bytes())["run"]["epochs"], 900)

    def test_names_with_commands_for_a_terminal_are_shown_without_them(self):
        hostile = self.folder / "\x1b]0;owned\x07\nSUM.21O"
        shutil.copyfile(self.observations, hostile)
        code, out, err = self.run_program("qc", hostile, self.navigation, "--verbose")
        self.assertEqual(code, 0, err)
        (self.folder / "\x1b[31m.21O").write_text("nothing of RINEX\n")
        failed = self.run_program("qc", self.folder, self.navigation)
        inspected = self.run_program("inspect", hostile)
        for text in (out.decode(), err, failed[1].decode(), failed[2], inspected[1].decode()):
            self.assertNotIn("\x1b", text)
            self.assertNotIn("\x07", text)
            self.assertNotIn("\nSUM", text)


class Interrupts(Faults):
    """The run waits at a pipe while the signal comes, so that it always comes at the same point."""

    def setUp(self):
        super().setUp()
        self.into = self.folder / "out"
        self.pipe = self.folder / "SEPC078M.21O"
        os.mkfifo(self.pipe)
        self.text = self.observations.read_bytes()

    def start_three(self):
        """Two files that will be processed and a third that waits."""
        files = []
        for letter in "AB":
            files.append(self.folder / f"SEP{letter}078M.21O")
            shutil.copyfile(self.observations, files[-1])
        return self.start("qc", "--no-config", "--jobs", "1", "--output", self.into, "--formats", "json,detail,html",
                          f"--sum={self.folder}/all.sum", *files, self.pipe, self.navigation)

    def assert_only_whole_files(self):
        self.assertEqual(self.names(self.into), sorted(f"SEP{letter}078M.21O{ending}" for letter in "AB"
                                                       for ending in (".json", ".detail.csv", ".html")))
        for letter in "AB":
            self.assertEqual(json.loads((self.into / f"SEP{letter}078M.21O.json").read_bytes())["run"]["epochs"], 900)
        self.assertEqual(self.names(), ["SEPA078M.21O", "SEPB078M.21O", "SEPC078M.21O", "out"])

    def wait_for_third(self):
        await_that(lambda: self.into.exists() and ".part-SEPC078M.21O.html" in self.names(self.into),
                   "the third file is begun")

    def test_finished_files_stay_and_the_rest_leaves_nothing(self):
        for number, code in ((signal.SIGINT, 130), (signal.SIGTERM, 143)):
            shutil.rmtree(self.into, ignore_errors=True)
            process = self.start_three()
            with open(self.pipe, "wb", buffering=0) as out:
                out.write(self.text[:60000])
                self.wait_for_third()
                process.send_signal(number)
                with contextlib.suppress(BrokenPipeError):
                    while True:  # until the run has seen the signal
                        out.write(self.text[self.text.index(b">"):])
            self.assertEqual(process.wait(GIVE_UP_S), code)
            self.assert_only_whole_files()

    def test_a_run_that_waits_for_its_input_ends_all_the_same(self):
        process = self.start_three()
        with open(self.pipe, "wb", buffering=0) as out:
            out.write(self.text[:60000])
            self.wait_for_third()
            process.send_signal(signal.SIGTERM)
            self.assertEqual(process.wait(GIVE_UP_S), 143)
        self.assert_only_whole_files()

    def test_a_simulation_leaves_the_folder_as_it_was(self):
        for number, code in ((signal.SIGINT, 130), (signal.SIGTERM, 143)):
            made = self.folder / "made"
            process = self.start("simulate", "--hours", "168", "--interval", "1", "--output", made)
            await_that(lambda: made.exists() and any("_MO" in name for name in self.names(made)),
                       "the observations are begun")
            process.send_signal(number)
            self.assertEqual(process.wait(GIVE_UP_S), code)
            self.assertEqual(self.names(made), [])


class Resources(Faults):
    def run_with_threads(self, most):
        """Judges three files at the same time as a user who may have so many threads."""
        def limit_threads():
            resource.setrlimit(resource.RLIMIT_NPROC, (most, most))
            if os.geteuid() == 0:  # who is not limited
                os.setgroups([])
                os.setuid(61234)  # nobody's, so that the limit counts this process alone

        # The leak check of sanitized builds is a thread of its own.
        environment = dict(os.environ, ASAN_OPTIONS="detect_leaks=0")
        done = subprocess.run([self.folder / pathlib.Path(PROGRAM).name, "qc", "--no-config", "--quiet", "--jobs", "3",
                               "a.rnx", "b.rnx", "c.rnx", NAVIGATION], capture_output=True, cwd=self.folder,
                              preexec_fn=limit_threads, env=environment, check=False, timeout=GIVE_UP_S)
        return done.returncode, done.stdout, done.stderr.decode()

    def test_threads_that_the_system_refuses_are_gone_without_and_none_is_an_error(self):
        self.folder.chmod(0o755)
        for path in (pathlib.Path(PROGRAM), self.navigation):
            shutil.copy(path, self.folder / path.name)
        for name in ("a.rnx", "b.rnx", "c.rnx"):
            shutil.copyfile(self.observations, self.folder / name)
        self.assert_fails(self.run_with_threads(1), "the system refused", "temporarily")
        if os.geteuid() == 0:
            self.assertEqual(self.run_with_threads(2)[0], 0)

    def test_a_crinex_file_expands_within_bounds(self):
        """Every line break after this epoch line represents a satellite with 200 types."""
        def header(text, label):
            return f"{text:60}{label}\n"

        types = "".join(header(f"{letter if k == 0 else ' '}  200" + " C1C" * 13, "SYS / # / OBS TYPES")
                        for letter in "GREJC" for k in range(16))
        satellites = "".join(f"{letter}{number:02}" for letter in "GREJCS" for number in range(100))
        epoch = "> 2021 03 19 12 00 00.0000000  0" + f"{len(satellites) // 3:3}" + "      " + satellites + "\n"
        text = (header("3.0                 COMPACT RINEX FORMAT", "CRINEX VERS   / TYPE") +
                header("", "CRINEX PROG / DATE") +
                header("     3.04           OBSERVATION DATA    M", "RINEX VERSION / TYPE") + types +
                header("", "END OF HEADER") + epoch + "\n" * 600000)
        path = self.folder / "hostile.crx"
        path.write_text(text)
        process = self.start("qc", "--no-config", path, self.navigation)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(process.returncode, 1)
        self.assertIn(b"orsolva: ", process.stderr.read())
        # Kilobytes; the sanitizers take several times as much.
        self.assertLess(usage.ru_maxrss, 1 << 20)


if __name__ == "__main__":
    PROGRAM, DATA = sys.argv[1], pathlib.Path(sys.argv[2])
    if not (DATA / OBSERVATIONS).exists():
        print(f"no file {DATA / OBSERVATIONS}")
        sys.exit(77)
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)
