"""What archives cost on this machine: time next to `orsolva qc --jobs` on the same files, and memory of a long listing.

usage: costs.py FOLDER [--days 24] [--hours 24] [--rounds 3] [--workers 2] [--names 1000000]

The days are of five systems at 30 s, whole ones or their first hours. Each round runs both, one after the other, into new folders; processor time
is that of all their processes. Exit code 1 when the median ratio of processor times is above 1.15, or when the listing takes
more than 200 MB.
"""
import argparse
import datetime
import os
import pathlib
import resource
import shutil
import statistics
import subprocess
import sys
import time

import orsolva
from orsolva.archive.command import main as archive

MOST_RATIO, MOST_MEGABYTES = 1.15, 200
COMMAND = os.environ.get("ORSOLVA_COMMAND", str(pathlib.Path(__file__).resolve().parents[3] / "build/bin/orsolva"))
LISTING = """
import datetime, resource, sys, time
import orsolva.archive.plan as plan
from orsolva.archive.places import Found
from orsolva.archive.store import Store

class Many:
    def listing(self):
        names, first = int(sys.argv[2]), datetime.date(2020, 1, 1)
        for i in range(names):
            day = first + datetime.timedelta(days=i // 2000)
            yield Found(f"/data/{day:%Y/%j}/{i % 2000:04}00TST_R_{day:%Y%j}0000_01D_30S_MO.crx.gz", 4000000, "time:1")

before, begun = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss, time.monotonic()
plan.place = lambda address: Many()
with plan.Plan(Store(sys.argv[1])) as listed:
    listed.take(["many"])
    counts = listed.compare(True)
    jobs = sum(len(found) for _, found in listed.jobs())
assert jobs == counts.new == int(sys.argv[2]), (jobs, counts)
print((resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before) / 1024, time.monotonic() - begun)
"""


def timed(command):
    """(wall, processor) seconds of a command with all its processes."""
    before, begun = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    used = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    return time.monotonic() - begun, used


def throughput(folder, days, hours, rounds, workers):
    """Prints both times of every round. @return the median ratio of processor times"""
    source = folder / "source"
    for day in range(days):
        date = datetime.date(2026, 1, 1) + datetime.timedelta(days=day)
        made = orsolva.simulate("station-day", seed=day, hours=hours, interval_s=30, start=str(date), station="COST00TST")
        made.write(source, gzip=True, crinex=True)[2].unlink()
    ratios = []
    for number in range(rounds):
        store, reports = folder / f"store{number}", folder / f"reports{number}"
        archive(["init", str(store)])
        qc = timed([COMMAND, "qc", "--no-config", "--quiet", "--jobs", str(workers), "--output", str(reports), "--formats", "json", str(source)])
        run = timed([sys.executable, "-m", "orsolva.archive", "run", str(store), str(source), "--workers", str(workers), "--quiet"])
        ratios.append(run[1] / qc[1])
        print(f"{days} days of {hours:g} h: qc --jobs {qc[0]:.1f} s, {qc[1]:.1f} s of processor; archive run {run[0]:.1f} s, {run[1]:.1f} s; ratio {ratios[-1]:.3f}, wall {run[0] / qc[0]:.3f}")
    size = sum(file.stat().st_size for file in (folder / "store0").rglob("*.parquet"))
    print(f"{size / days / 1000:.1f} kB a day in the store")
    return statistics.median(ratios)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--days", type=int, default=24)
    parser.add_argument("--hours", type=float, default=24)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--workers", type=int, default=2)
    parser.add_argument("--names", type=int, default=1000000)
    options = parser.parse_args()
    shutil.rmtree(options.folder, ignore_errors=True)
    archive(["init", str(options.folder / "listing"), "--stations", "2000"])
    done = subprocess.run([sys.executable, "-c", LISTING, str(options.folder / "listing"), str(options.names)], check=True, stdout=subprocess.PIPE, text=True)
    megabytes, seconds = map(float, done.stdout.split())
    print(f"a listing of {options.names} names: {megabytes:.0f} MB more than at the start, {seconds:.0f} s")
    ratio = throughput(options.folder, options.days, options.hours, options.rounds, options.workers) if options.days else 0.0
    sys.exit(ratio > MOST_RATIO or megabytes > MOST_MEGABYTES)


if __name__ == "__main__":
    main()
