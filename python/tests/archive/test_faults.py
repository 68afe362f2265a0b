"""Whatever ends a run, the next one makes the store that an undisturbed run makes: nothing lost, nothing twice.

ORSOLVA_ARCHIVE_STATIONS and ORSOLVA_ARCHIVE_DAYS set the size of the network: 3 and 4 unless they say otherwise. With 10 and 30
there is also a disk that is really full.
"""
import contextlib
import os
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import time

import pytest

import orsolva
import orsolva.archive
from conftest import FIRST_DAY, archive, program, simulate_file, simulate_network, started, sums
from orsolva.archive.store import Bundle, Store

STATIONS = int(os.environ.get("ORSOLVA_ARCHIVE_STATIONS", 3))
DAYS = int(os.environ.get("ORSOLVA_ARCHIVE_DAYS", 4))
FILES = STATIONS * DAYS
# Runs the command with a place to disturb it; sys.argv is the disturbance, then the arguments.
DISTURBED = """
import os, signal, sys
import orsolva.archive.store as store
from orsolva.archive.command import main

def kill():
    os.kill(os.getpid(), signal.SIGKILL)

exec(sys.argv[1])
sys.exit(main(sys.argv[2:]))
"""


@pytest.fixture(scope="module")
def network(tmp_path_factory):
    folder = tmp_path_factory.mktemp("network")
    simulate_network(folder, STATIONS, DAYS)
    return folder


@pytest.fixture(scope="module")
def undisturbed(network, tmp_path_factory):
    store = tmp_path_factory.mktemp("undisturbed") / "store"
    archive("init", store, "--buckets", 2)
    archive("run", store, network)
    assert committed(store) == FILES
    return sums(store)


@pytest.fixture
def store(tmp_path):
    archive("init", tmp_path / "store", "--buckets", 2)
    return tmp_path / "store"


def committed(store):
    """Runs in the store. Each is there once, and so are their rows."""
    with orsolva.archive.open(store) as opened:
        names = [name for name, in opened.sql("SELECT name FROM runs").fetchall()]
        assert len(names) == len(set(names))
        systems = opened.sql("SELECT run_id, system FROM systems").fetchall()
        assert len(systems) == len(set(systems))
        return len(names)


def disturbed(code, *arguments):
    """Runs the command with a disturbance. @return its exit code, negative of a signal"""
    done = subprocess.run([sys.executable, "-c", DISTURBED, code, *map(str, arguments)], capture_output=True, text=True, timeout=600)
    return done.returncode


def complete(store, network, undisturbed):
    """The next run completes the store."""
    archive("run", store, network)
    assert sums(store) == undisturbed
    archive("check", store)


def test_workers_are_killed(store, network, undisturbed):
    with started("run", store, network, "--workers", 3) as run:
        os.kill(run.workers(3)[0], signal.SIGKILL)
        for seed in range(2 if FILES > 20 else 0):  # as long as there are any
            time.sleep(0.4)
            with contextlib.suppress(ProcessLookupError, IndexError):
                os.kill(random.Random(seed).choice(run.workers_now()), signal.SIGKILL)
        output, _ = run.process.communicate(timeout=600)
    assert run.process.returncode == 0, output
    assert sums(store) == undisturbed


def test_the_coordinator_is_killed(store, network, undisturbed):
    with started("run", store, network, "--workers", 3) as run:
        workers = run.workers(3)
        if FILES > 20:
            run.wait_for_runs(store)
        run.process.kill()
        run.process.wait()
        ended = time.monotonic() + 10
        while any(pathlib.Path(f"/proc/{worker}").exists() for worker in workers):
            assert time.monotonic() < ended, "a worker outlives the coordinator"
            time.sleep(0.02)
    assert committed(store) < FILES
    complete(store, network, undisturbed)


@pytest.mark.parametrize("writes", range(7) if FILES > 20 else [0, 3, 5, 6])
def test_the_writer_is_killed_between_tables(store, network, undisturbed, writes):
    """After so many files of the first bundle: five tables, `runs`, and before the first of them."""
    code = f"""
def write(self, name, data, left=[{writes}], real=store.Store._write_table):
    def counted(self, table, bundle, rows):
        if left[0] == 0: kill()
        left[0] -= 1
        real(self, table, bundle, rows)
    return counted
store.Store._write_table = write(None, None, None)
"""
    assert disturbed(code, "run", store, network, "--workers", "0") == -signal.SIGKILL
    assert "its writing did not end" in archive("check", store, good=(1,))
    assert committed(store) < FILES
    complete(store, network, undisturbed)


@pytest.mark.parametrize("step", ["real(self, name, data[:99]); kill()", "os.makedirs(self.root / 'runs', exist_ok=True); open(self.root / 'runs/x.part', 'wb').write(data[:9]); kill()"])
def test_the_writer_is_killed_within_a_file(store, network, undisturbed, step):
    """A part that never got its name, and a file cut short by something other than this program."""
    code = f"""
import orsolva.archive.places as places
real = places.Folder.write
def write(self, name, data):
    if name.startswith('signals/'):
        {step}
    real(self, name, data)
places.Folder.write = write
"""
    assert disturbed(code, "run", store, network, "--workers", "0") == -signal.SIGKILL
    if "data[:99]" in step:
        assert "cannot be read" in archive("run", store, network, good=(1,))
        next(file for file in store.glob("signals/*/*/*/data.parquet") if file.stat().st_size == 99).unlink()
    complete(store, network, undisturbed)


def test_the_writer_is_killed_while_it_replaces_runs(store, own_network, tmp_path):
    """Then the file is what it was again: the run in `runs` holds, but some of its rows are gone."""
    archive("run", store, own_network)
    before = sums(store)
    file = sorted(own_network.rglob("*_MO.rnx"))[0]
    text, times = file.read_bytes(), file.stat()
    file.write_bytes(text.replace(b"40.", b"39."))
    code = "real = store.Store._write_table\nstore.Store._write_table = lambda s, t, b, r: kill() if t == 'satellites' else real(s, t, b, r)"
    assert disturbed(code, "run", store, own_network, "--workers", "0") == -signal.SIGKILL
    file.write_bytes(text)
    os.utime(file, ns=(times.st_atime_ns, times.st_mtime_ns))
    assert "0 new, 0 changed, 1 to repair" in archive("plan", store, own_network)
    complete(store, own_network, before)


@pytest.mark.parametrize("writes", [1, 4, 6] if FILES > 20 else [4])
def test_the_disk_is_full(store, network, undisturbed, writes):
    """From some file on nothing gets to the disk."""
    code = f"""
import errno
def fsync(descriptor, left=[{writes}], real=os.fsync):
    if left[0] == 0: raise OSError(errno.ENOSPC, os.strerror(errno.ENOSPC))
    left[0] -= 1
    real(descriptor)
os.fsync = fsync
"""
    assert disturbed(code, "run", store, network, "--workers", "0") == 1
    assert not list(store.rglob("*.part"))
    complete(store, network, undisturbed)


if FILES > 20:  # not every machine lets a test mount

    def test_a_small_disk_is_full(store, network, undisturbed, tmp_path):
        """A file system in memory with room for half of the store."""
        room = sum(path.stat().st_size for path in store.rglob("*")) + 400 * FILES
        archive_ = f"{sys.executable} -m orsolva.archive"
        script = f"""
            set -e; mkdir {tmp_path}/disk; mount -t tmpfs -o size={room} none {tmp_path}/disk; cp -r {store}/. {tmp_path}/disk
            code=0; {archive_} run {tmp_path}/disk {network} --workers 2 2>&1 || code=$?
            rm -r {store}; cp -r {tmp_path}/disk {store}; exit $code
        """
        done = subprocess.run(["unshare", "-Urm", "sh", "-c", script], capture_output=True, text=True, timeout=600)
        assert done.returncode == 1, done.stdout + done.stderr
        assert "No space left on device" in done.stdout and "Make room and run again" in done.stdout
        assert committed(store) < FILES and not list(store.rglob("*.part"))
        complete(store, network, undisturbed)


def test_a_worker_is_stopped_for_a_while(store, network, undisturbed):
    with started("run", store, network, "--workers", 3) as run:
        worker = run.workers(3)[0]
        os.kill(worker, signal.SIGSTOP)
        with pytest.raises(subprocess.TimeoutExpired):
            run.process.wait(60 if FILES > 20 else 3)
        os.kill(worker, signal.SIGCONT)
        output, _ = run.process.communicate(timeout=600)
    assert run.process.returncode == 0, output
    assert sums(store) == undisturbed


def test_the_coordinator_is_stopped_and_another_refused(store, network, undisturbed):
    with started("run", store, network, "--workers", 1) as run:
        run.workers(1)
        run.process.send_signal(signal.SIGSTOP)
        assert "runs on this store" in archive("run", store, network, good=(1,))
        run.process.send_signal(signal.SIGCONT)
        output, _ = run.process.communicate(timeout=600)
    assert run.process.returncode == 0, output
    assert sums(store) == undisturbed


def test_a_file_that_ends_its_process_is_a_failed_run(store, network, tmp_path):
    """The others are judged, however often a chunk with it is lost."""
    poison = sorted(network.rglob("*_MO.rnx"))[FILES // 2]
    (tmp_path / "sitecustomize.py").write_text(f"""
import os, orsolva
real = orsolva.qc
def qc(path, *arguments, **more):
    if path == {str(poison)!r}: os.abort()
    return real(path, *arguments, **more)
orsolva.qc = qc
""")
    path = os.pathsep.join([str(tmp_path), os.environ["PYTHONPATH"]])
    program("run", store, network, "--workers", 3, env={**os.environ, "PYTHONPATH": path})
    with orsolva.archive.open(store) as opened:
        failed = opened.sql("SELECT name, error FROM runs WHERE state <> 'judged'").fetchall()
    assert committed(store) == FILES
    assert [name for name, _ in failed] == [poison.stem] and "the process that judged it ended" in failed[0][1]
    assert "1 to repair" in archive("run", store, network, "--retry")
    archive("check", store)


def test_a_file_is_replaced_and_another_removed_during_the_run(store, own_network, monkeypatch, tmp_path):
    files = sorted(own_network.rglob("*_MO.rnx"))
    real = orsolva.qc

    def qc(path, *arguments, **more):
        report = real(path, *arguments, **more)
        if path == str(files[4]):
            simulate_file(own_network, "ST0100DNK", FIRST_DAY, seed=77)
        if path == str(files[5]):
            files[5].unlink()
        return report

    files[4] = next(file for file in files if file.name.startswith("ST0100DNK") and file.parent.name == f"{FIRST_DAY:%j}")
    files[5] = next(file for file in files if file.name.startswith("ST0200DNK"))
    with monkeypatch.context() as patched:
        patched.setattr(orsolva, "qc", qc)
        assert "2 changed or were removed while they were judged" in archive("run", store, own_network)
    assert committed(store) == 10
    assert "1 new" in archive("run", store, own_network)
    archive("init", tmp_path / "fresh", "--buckets", 2)
    archive("run", tmp_path / "fresh", own_network)
    assert sums(store) == sums(tmp_path / "fresh")


def test_unreadable_truncated_and_doubled_files(store, network, tmp_path):
    source = tmp_path / "source"
    shutil.copytree(network, source)
    files = sorted(source.rglob("*_MO.rnx"))
    files[0].write_bytes(b"")
    files[1].rename(files[1].with_suffix(".crx.gz"))  # not what its name says
    text = files[2].read_bytes()
    files[2].write_bytes(text[: len(text) // 2])
    shutil.copy(files[3], files[3].with_suffix(".rnx.gz"))
    (source / "elsewhere").mkdir()
    shutil.copy(files[3], source / "elsewhere")
    with started("run", store, source, "--workers", 3) as run:
        run.workers(1)
        run.process.kill()
    archive("run", store, source)
    assert committed(store) == FILES
    archive("init", tmp_path / "fresh", "--buckets", 2)
    archive("run", tmp_path / "fresh", source)
    assert sums(store) == sums(tmp_path / "fresh")
    with orsolva.archive.open(store) as opened:
        states = dict(opened.sql("SELECT name, state FROM runs").fetchall())
    assert states[files[0].stem] == "failed" and states[files[3].stem] == "judged"
    assert list(states.values()).count("judged") >= FILES - 3


@pytest.mark.parametrize("table, when", [("runs", "left out"), ("signals", "not written")])
def test_a_damaged_table_file_costs_its_bundle_alone(store, network, undisturbed, table, when):
    """Seen when the plan is made or when the bundle is written. Once the file is removed, its rows are judged again."""
    archive("run", store, network, "--until", FIRST_DAY)
    damaged = sorted(store.glob(f"{table}/*/*/*/data.parquet"))[0]
    damaged.write_bytes(damaged.read_bytes()[:999])
    printed = {command: archive(command, store, *sources, good=(1,)) for command, sources in (("run", [network]), ("plan", [network]), ("check", []))}
    for text in printed.values():
        assert text.count("cannot be read") == 1 and f"{damaged}: cannot be read" in text and "Remove this file and run with --repair." in text
    assert when in printed["run"] and "0 new" in printed["plan"] and "left out" in printed["plan"]
    damaged.unlink()
    assert committed(store) > 0
    archive("run", store, network, "--repair")
    assert sums(store) == undisturbed


def test_an_unfinished_bundle_is_completed_next_to_a_damaged_one(store, network, undisturbed, tmp_path):
    """Both are without new files; what is not the name of a bundle is none."""
    archive("run", store, network)
    places = sorted(path.parent.relative_to(store / "runs") for path in store.glob("runs/*/*/*/data.parquet"))
    bundles = [Bundle.of_path(f"runs/{path}/data.parquet") for path in (places[0], places[-1])]
    (store / bundles[0].path("signals")).write_bytes(b"damaged")
    for name in [*(bundle.name for bundle in bundles), ".nfs0001"]:
        (store / "unfinished" / name).touch()
    (tmp_path / "empty").mkdir()
    assert f"{bundles[0].name} was not completed" in archive("run", store, tmp_path / "empty", good=(1,))
    assert not (store / "unfinished" / bundles[1].name).exists()


def test_ctrl_c_while_a_bundle_is_written_loses_none_of_its_rows(store, network):
    """What was judged is written."""
    code = """
real = store.Store._write_table
def write(self, table, bundle, rows, left=[3]):
    left[0] -= 1
    if left[0] == 0: raise KeyboardInterrupt
    real(self, table, bundle, rows)
store.Store._write_table = write
"""
    assert disturbed(code, "run", store, network, "--workers", "0") == 130
    assert committed(store) > 0
    archive("check", store)
