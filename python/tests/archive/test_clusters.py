"""A Dask cluster and an object store, both real, on this machine."""
import os
import socket
import subprocess
import sys
import time
import urllib.request

import pytest

import orsolva.archive
from conftest import archive, sums

distributed = pytest.importorskip("distributed")
s3fs = pytest.importorskip("s3fs")
pytest.importorskip("moto.server")


@pytest.fixture
def cluster():
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None, processes=True) as local:
        yield local


def test_a_dask_cluster_gives_the_same_bytes(tmp_path, network, undisturbed, cluster):
    archive("init", tmp_path / "store", "--buckets", 2)
    archive("run", tmp_path / "store", network, "--dask", cluster.scheduler_address)
    assert sums(tmp_path / "store") == sums(undisturbed)


def test_a_scheduler_that_is_not_there_is_an_error(tmp_path, network, monkeypatch):
    monkeypatch.setattr("orsolva.archive.workers.CONNECT_S", 1)
    archive("init", tmp_path / "store")
    assert "no scheduler there" in archive("run", tmp_path / "store", network, "--dask", "tcp://127.0.0.1:9", good=(1,))


@pytest.fixture(scope="module")
def object_store():
    """Address of a server with an object store's protocol."""
    with socket.socket() as free:
        free.bind(("127.0.0.1", 0))
        port = free.getsockname()[1]
    address = f"http://127.0.0.1:{port}"
    names = {"AWS_ACCESS_KEY_ID": "test", "AWS_SECRET_ACCESS_KEY": "test", "AWS_DEFAULT_REGION": "us-east-1", "AWS_ENDPOINT_URL": address, "FSSPEC_S3_ENDPOINT_URL": address}
    before = {name: os.environ.get(name) for name in names}
    os.environ.update(names)
    server = subprocess.Popen([sys.executable, "-m", "moto.server", "-p", str(port)], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        for _ in range(300):
            try:
                urllib.request.urlopen(address, timeout=1).close()
                break
            except OSError:
                time.sleep(0.1)
        files = s3fs.S3FileSystem()
        files.mkdir("rinex")
        files.mkdir("archive")
        yield files
    finally:
        server.kill()
        server.wait()
        for name, value in before.items():
            os.environ.pop(name) if value is None else os.environ.update({name: value})


def test_an_object_store_holds_sources_and_store(object_store, network, undisturbed):
    for file in sorted(network.rglob("*.rnx")):
        object_store.put_file(str(file), f"rinex/net/{file.name}")
    store = "s3://archive/store"
    archive("init", store, "--buckets", 2)
    output = archive("run", store, "s3://rinex/net")
    assert "12 judged" in output, output
    assert "12 done" in archive("run", store, "s3://rinex/net")
    assert "12 judged" in archive("check", store, "--sources")
    figures = "SELECT station, date, system, signal, strength_mean_dbhz, multipath_moving_rms_m, mp_rms_m FROM signals ORDER BY ALL"
    with orsolva.archive.open(store) as remote, orsolva.archive.open(undisturbed) as local:
        assert remote.sql(figures).fetchall() == local.sql(figures).fetchall()
        assert remote.scan("satellites").collect().height == local.scan("satellites").collect().height
    changed = sorted(network.rglob("*.rnx"))[0].name
    object_store.pipe_file(f"rinex/net/{changed}", b"no longer what it was")
    assert "1 changed" in archive("run", store, "s3://rinex/net")
    with orsolva.archive.open(store) as remote:
        ((error,),) = remote.sql("SELECT error FROM runs WHERE state = 'failed'").fetchall()
        assert f"s3://rinex/net/{changed}" in error


def test_one_holds_the_lease_of_an_object_store(object_store):
    from orsolva.archive.lease import Lease
    from orsolva.archive.places import place
    from orsolva.archive.settings import ArchiveError

    where = place("s3://archive/leases")
    with Lease(where), pytest.raises(ArchiveError, match="runs on this store"):
        Lease(where).__enter__()
    with Lease(where):
        pass
