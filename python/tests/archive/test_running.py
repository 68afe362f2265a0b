"""Leases, bad input, and runs that end early."""
import contextlib
import errno
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import time

import pyarrow as pa
import pytest

import orsolva
import orsolva.archive
from conftest import archive, program, started, sums
from orsolva.archive.lease import EXPIRES_S, Lease
from orsolva.archive.places import Folder
from orsolva.archive.progress import Progress, span_of
from orsolva.archive.settings import ArchiveError


def test_one_holds_a_lease_at_a_time(tmp_path):
    place = Folder(str(tmp_path))
    with Lease(place) as lease:
        lease.check()
        for shard in ((1, 1), (1, 2)):
            with pytest.raises(ArchiveError, match=f"process {os.getpid()}"):
                Lease(place, shard).__enter__()
    with Lease(place, (1, 2)), Lease(place, (2, 2)):
        with pytest.raises(ArchiveError):
            Lease(place).__enter__()
    assert list(place.names("lease")) == []


def test_the_lease_of_a_process_that_is_gone_is_taken_over(tmp_path):
    place = Folder(str(tmp_path))
    gone = subprocess.run([sys.executable, "-c", "import os; print(os.getpid())"], capture_output=True, text=True)
    text = '{"host": "%s", "process": %d, "token": "x", "time": %f}'
    here = os.uname().nodename
    place.write("lease/1-of-1", (text % (here, int(gone.stdout), time.time())).encode())
    with Lease(place):
        pass
    # From another machine only its age says so.
    place.write("lease/1-of-1", (text % ("elsewhere", 1, time.time() - EXPIRES_S / 2)).encode())
    with pytest.raises(ArchiveError, match="elsewhere"):
        Lease(place).__enter__()
    place.write("lease/1-of-1", (text % ("elsewhere", 1, time.time() - EXPIRES_S - 1)).encode())
    with Lease(place):
        pass


def test_a_lease_does_not_outlast_its_age_when_its_process_number_is_anothers(tmp_path):
    place = Folder(str(tmp_path))
    text = '{"host": "%s", "process": %d, "token": "x", "time": %f}'
    for age, held in ((EXPIRES_S / 2, True), (EXPIRES_S + 1, False)):
        place.write("lease/1-of-1", (text % (os.uname().nodename, os.getpid(), time.time() - age)).encode())
        if held:
            with pytest.raises(ArchiveError, match="runs on this store"):
                Lease(place).__enter__()
        else:
            with Lease(place):
                pass


def test_nothing_is_written_once_the_lease_is_lost(tmp_path):
    place = Folder(str(tmp_path))
    with Lease(place) as lease:
        place.write("lease/1-of-1", b'{"host": "elsewhere", "process": 1, "token": "y", "time": 0}')
        with pytest.raises(ArchiveError, match="taken the store over"):
            lease.check()
    assert place.read("lease/1-of-1") is not None, "it is the other's"


def test_bad_files_are_failed_runs_and_the_others_go_on(tmp_path, own_network):
    files = sorted(own_network.rglob("*_MO.rnx"))
    files[0].write_bytes(b"")
    files[1].write_bytes(os.urandom(5000))
    text = files[2].read_bytes()
    files[2].write_bytes(text[: len(text) * 2 // 3])
    store = tmp_path / "store"
    archive("init", store)
    printed = archive("run", store, own_network)
    with orsolva.archive.open(store) as opened:
        states = dict(opened.sql("SELECT name, state FROM runs").fetchall())
        errors = dict(opened.sql("SELECT name, error FROM runs WHERE error IS NOT NULL").fetchall())
    assert len(states) == 12
    assert states[files[0].stem] == states[files[1].stem] == "failed", printed
    assert states[files[2].stem] in ("incomplete", "judged")
    assert str(files[0]) in errors[files[0].stem]
    before = sums(store)
    assert "0 new, 0 changed" in archive("run", store, own_network)
    assert "2 to repair" in archive("plan", store, own_network, "--retry")
    assert sums(store) == before


def test_a_file_that_changes_while_it_is_judged_is_left_to_the_next_run(own_network):
    from orsolva.archive.judge import from_bytes, judge_chunk
    from orsolva.archive.plan import Job
    from orsolva.archive.settings import Settings
    from orsolva.archive.file_names import parse

    jobs = []
    for file in sorted(own_network.rglob("*_MO.rnx"))[:3]:
        name = parse(file.name)
        jobs.append(Job("0" * 16, name.stem, name.station, name.start, str(file), 1, f"time:{file.stat().st_mtime_ns}", ()))
    os.utime(jobs[1].path)
    os.remove(jobs[2].path)
    assert from_bytes(judge_chunk(jobs, Settings())["runs"])["name"].to_pylist() == [jobs[0].name]


def test_ctrl_c_leaves_a_store_that_the_next_run_completes(tmp_path, network, undisturbed):
    store = tmp_path / "store"
    archive("init", store, "--buckets", 2)
    with started("run", store, network, "--workers", 2) as run:
        worker = run.workers(2)[0]
        os.kill(worker, signal.SIGSTOP)
        run.wait_for_runs(store)
        run.process.send_signal(signal.SIGINT)
        assert run.process.wait(60) == 130, run.printed()
    assert not pathlib.Path(f"/proc/{worker}").exists()
    with orsolva.archive.open(store) as opened:
        assert 0 < len(opened.sql("SELECT name FROM runs").fetchall()) < 12
    archive("check", store)
    archive("run", store, network)
    assert sums(store) == sums(undisturbed)


def test_a_folder_that_cannot_be_read_is_left_out(tmp_path, own_network, monkeypatch):
    """Such as lost+found. Tests may run as root, who reads everything."""
    (own_network / "lost+found").mkdir()
    closed, real = {str(own_network / "lost+found")}, os.scandir

    def scandir(path):
        if str(path) in closed:
            raise PermissionError(errno.EACCES, os.strerror(errno.EACCES), str(path))
        return real(path)

    monkeypatch.setattr(os, "scandir", scandir)
    archive("init", tmp_path / "store")
    printed = archive("plan", tmp_path / "store", own_network)
    assert "12 new" in printed and f"1 left out that cannot be read (the first: [Errno 13] Permission denied: '{own_network}/lost+found')" in printed
    closed.add(str(own_network))
    assert "Permission denied" in archive("plan", tmp_path / "store", own_network, good=(1,))
    closed.add(str(tmp_path / "store"))
    with pytest.raises(PermissionError):  # rows must not seem to be absent
        list(Folder(str(tmp_path / "store")).names())


@pytest.mark.parametrize("settings, sum_", [([], "os.stat"), (["--verify"], "opened")])
def test_a_file_that_cannot_be_read_is_a_failed_run(tmp_path, own_network, monkeypatch, settings, sum_):
    """Others of its bundle are judged, and so is it once it can be read. A disk fails for one file."""
    from orsolva.archive import places

    file = sorted(own_network.rglob("*_MO.rnx"))[1]
    failing, stat, opened = [str(file)], os.stat, places.opened

    def fail(real):
        def call(path, *arguments, **more):
            if str(path) in failing:
                raise OSError(errno.EIO, os.strerror(errno.EIO), str(path))
            return real(path, *arguments, **more)

        return call

    archive("init", tmp_path / "store", *settings)
    with monkeypatch.context() as patched:
        if sum_ == "opened":
            patched.setattr(places, "opened", fail(opened))
        else:
            patched.setattr(places.os, "stat", fail(stat))
        assert "11 judged, 0 incomplete, 1 failed" in archive("run", tmp_path / "store", own_network)
        assert f"{file}: cannot be read" in archive("check", tmp_path / "store", "--sources")
    with orsolva.archive.open(tmp_path / "store") as opened_store:
        ((error,),) = opened_store.sql("SELECT error FROM runs WHERE state = 'failed'").fetchall()
    assert "Input/output error" in error and str(file) in error
    assert "1 judged, 0 incomplete, 0 failed" in archive("run", tmp_path / "store", own_network, *([] if settings else ["--retry"]))


@pytest.mark.parametrize("error", [pa.ArrowInvalid("no rows"), MemoryError("too large"), UnicodeDecodeError("utf-8", b"x", 0, 1, "bad byte")])
def test_any_exception_of_a_file_is_a_failed_run(tmp_path, network, monkeypatch, error):
    file, real = sorted(network.rglob("*_MO.rnx"))[5], orsolva.qc

    def qc(path, *arguments, **more):
        if path == str(file):
            raise error
        return real(path, *arguments, **more)

    archive("init", tmp_path / "store")
    monkeypatch.setattr(orsolva, "qc", qc)
    assert "11 judged, 0 incomplete, 1 failed" in archive("run", tmp_path / "store", network)
    with orsolva.archive.open(tmp_path / "store") as opened:
        assert opened.sql("SELECT name, error FROM runs WHERE state = 'failed'").fetchall() == [(file.stem, f"{file}: {type(error).__name__}: {error}")]


def test_a_chunk_that_cannot_be_judged_costs_no_other(tmp_path, own_network, monkeypatch):
    """What changed in other bundles is still counted."""
    from orsolva.archive import workers

    files = sorted(own_network.rglob("*_MO.rnx"), key=lambda file: file.name)
    january, february = (next(file for file in files if f"_2026{day}" in file.name) for day in ("030", "032"))
    real = workers.judge_chunk

    def judge_chunk(chunk, settings):
        if any(job.path == str(january) for job in chunk):
            raise MemoryError("no room")
        if any(job.path == str(february) for job in chunk):
            os.utime(february)
        return real(chunk, settings)

    archive("init", tmp_path / "store")
    with monkeypatch.context() as patched:
        patched.setattr(workers, "judge_chunk", judge_chunk)
        printed = archive("run", tmp_path / "store", own_network, good=(1,))
    assert "were not judged (MemoryError: no room). Run again." in printed and "\n1 changed or were removed" in printed
    assert "6 changed" not in printed
    archive("run", tmp_path / "store", own_network)
    with orsolva.archive.open(tmp_path / "store") as opened:
        assert opened.sql("SELECT count(*) FROM runs WHERE state = 'judged'").fetchall() == [(12,)]


def test_a_profile_is_written_to_a_file_of_its_own_that_is_removed(tmp_path):
    """Once per process; a link that waits under a name that can be guessed leads nowhere."""
    code = """
import os, pathlib, sys, tempfile
victim = pathlib.Path(sys.argv[1]) / "victim"
victim.write_text("mine")
os.symlink(victim, f"{tempfile.gettempdir()}/orsolva-profile-{os.getpid()}.toml")
from orsolva.archive.judge import _written
path = _written("text")
assert path == _written("text") and open(path).read() == "text" and os.stat(path).st_mode & 0o077 == 0
assert victim.read_text() == "mine"
print(path)
"""
    (tmp_path / "shared").mkdir()
    environment = {**os.environ, "TMPDIR": str(tmp_path / "shared")}
    done = subprocess.run([sys.executable, "-c", code, str(tmp_path)], capture_output=True, text=True, env=environment)
    assert done.returncode == 0, done.stderr
    assert done.stdout.startswith(f"{tmp_path}/shared/") and not pathlib.Path(done.stdout.strip()).exists()


def test_workers_leave_no_profile_behind(tmp_path, network):
    (tmp_path / "shared").mkdir()
    archive("init", tmp_path / "store", "--profile", pathlib.Path(__file__).resolve().parents[3] / "host/report/profiles/station.toml")
    program("run", tmp_path / "store", network, "--workers", 2, env={**os.environ, "TMPDIR": str(tmp_path / "shared")})
    assert list((tmp_path / "shared").iterdir()) == []
    with orsolva.archive.open(tmp_path / "store") as opened:
        assert opened.sql("SELECT count(*) FROM runs WHERE profile_passed IS NOT NULL").fetchall() == [(12,)]


class Terminal(list):
    def write(self, text):
        self.append(text)

    def flush(self):
        pass

    def isatty(self):
        return True


def test_the_bar_has_rate_and_time_left():
    terminal = Terminal()
    progress = Progress(stream=terminal)
    progress.begin()
    progress._begun -= 10
    progress._last -= 1
    progress.judged(20, 50)
    assert "[############" in terminal[-1] and "20 of 50 files, 2.0 a second, 15 s left" in terminal[-1]
    progress.end()
    assert terminal[-1] == "\r\x1b[K"


def test_spans_are_for_people():
    assert [span_of(s) for s in (0.4, 59, 60, 3599, 12000, 100000)] == ["0 s", "59 s", "1 min", "59 min", "3 h 20 min", "1 d 3 h"]


def test_a_link_does_no_harm(tmp_path, network):
    """A folder that is linked to from itself would be listed for ever."""
    source = tmp_path / "source"
    shutil.copytree(network, source)
    (source / "again").symlink_to(source, target_is_directory=True)
    archive("init", tmp_path / "store")
    assert "12 new" in archive("plan", tmp_path / "store", source)


@pytest.mark.parametrize("when", ["before", "after"])
def test_of_two_numbers_of_shards_that_begin_together_one_is_refused(tmp_path, monkeypatch, when):
    """Before or after one writes its lease, the other begins."""
    place, held, create = Folder(str(tmp_path)), [], Folder.create

    def begin(lease):
        with contextlib.suppress(ArchiveError):
            held.append(lease.__enter__())

    def create_both(self, name, data):
        made = create(self, name, data) if when == "after" or name != "lease/1-of-1" else None
        if name == "lease/1-of-1":
            begin(Lease(place, (1, 2)))
        return create(self, name, data) if made is None else made

    monkeypatch.setattr(Folder, "create", create_both)
    begin(Lease(place))
    assert len(held) == 1
    held[0].__exit__()
    assert list(place.names("lease")) == []


def test_an_object_store_that_cannot_be_listed_is_not_empty(monkeypatch):
    """As with folders: what is below a source is counted and left out, the source itself and the store are errors."""
    fsspec = pytest.importorskip("fsspec")
    from orsolva.archive.places import place

    memory = fsspec.filesystem("memory")
    for name in ("a/1", "a/b/2", "c/3"):
        memory.pipe_file(f"/listed/{name}", b"x")
    ls, closed = type(memory).ls, []

    def listed(self, path, *arguments, **more):
        if path.rstrip("/") in closed:
            raise PermissionError(errno.EACCES, os.strerror(errno.EACCES), path)
        return ls(self, path, *arguments, **more)

    monkeypatch.setattr(type(memory), "ls", listed)
    where, left_out = place("memory://listed"), []
    assert sorted(found.path for found in where.listing(left_out.append)) == [f"memory:///listed/{name}" for name in ("a/1", "a/b/2", "c/3")]
    closed.append("/listed/a")
    assert [found.path for found in where.listing(left_out.append)] == ["memory:///listed/c/3"]
    assert [error.filename for error in left_out] == ["/listed/a"]
    with pytest.raises(PermissionError):  # rows must not seem to be absent
        list(where.names())
    closed.append("/listed")
    with pytest.raises(PermissionError):
        list(where.listing(left_out.append))
    with pytest.raises(ArchiveError, match="there is nothing"):
        list(place("memory://elsewhere").listing(left_out.append))
    assert list(place("memory://elsewhere").names("unfinished/")) == []


@pytest.mark.parametrize("number", [errno.EPERM, errno.ENOTSUP])
def test_a_store_needs_no_file_system_with_links(tmp_path, network, undisturbed, monkeypatch, number):
    def link(*_, **__):
        raise OSError(number, os.strerror(number))

    monkeypatch.setattr(os, "link", link)
    archive("init", tmp_path / "store", "--buckets", 2)
    assert "other settings" in archive("init", tmp_path / "store", "--buckets", 3, good=(1,))
    archive("run", tmp_path / "store", network)
    assert sums(tmp_path / "store") == sums(undisturbed)
    place = Folder(str(tmp_path))
    with Lease(place), pytest.raises(ArchiveError, match="runs on this store"):
        Lease(place).__enter__()
