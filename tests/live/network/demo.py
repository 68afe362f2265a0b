"""A network of five simulated stations with faults, their caster, and `orsolva live` with its page.

usage: demo.py PROGRAM FOLDER [--listen HOST:PORT] [--minutes N] [--speed S] [--check]

Epochs come once per second, in real time, unless --speed says otherwise. Events are printed as they happen. With --check
it ends as soon as every fault has raised its alarm, with 1 when one has not.
"""
import argparse
import json
import math
import pathlib
import subprocess
import sys
import threading
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
from caster import Caster, Connection, mount_of_file  # noqa: E402
from service import GPS_MINUS_UTC_S, free_port  # noqa: E402

BANDS_1 = ["1C", "1P"]
SLIPS = [{"kind": "slip", "satellite": system, "size": 7, "at_s": 90} for system in "GREC"]
OFFLINE_S = (120, 160)  # of LISB

# name: latitude and longitude in degrees, faults, alarms that they raise, what happens
STATIONS = {
    "BERN": (46.88, 7.47, [], [], "a quiet station"),
    "OSLO": (59.74, 10.37, [{"kind": "snr_drop", "signal": code, "size": 9, "at_s": 150, "duration_s": 120} for code in BANDS_1],
             ["snr_drop"], "band 1 loses 9 dB at 2:30, as by interference, for two minutes"),
    "ROMA": (41.86, 12.49, SLIPS, ["slip_burst"], "every satellite slips at 1:30"),
    "KIEL": (54.32, 10.12, [{"kind": "missing_epoch", "at_s": 100, "duration_s": 25}], ["data_gap"],
             "nothing is tracked from 1:40 on for 25 seconds"),
    "LISB": (38.72, -9.14, [], ["data_gap"], "the caster drops the stream at 2:00 and refuses it for 40 seconds"),
}


def earth_fixed(latitude_deg, longitude_deg):
    """Position on the ellipsoid of WGS 84, m."""
    a, e2 = 6378137.0, 0.00669437999014
    b, l = math.radians(latitude_deg), math.radians(longitude_deg)
    n = a / math.sqrt(1 - e2 * math.sin(b) ** 2)
    return n * math.cos(b) * math.cos(l), n * math.cos(b) * math.sin(l), n * (1 - e2) * math.sin(b)


def simulate(program, folder, name, begin_utc, minutes):
    latitude, longitude, faults, _, _ = STATIONS[name]
    scenario = {"name": name, "station": name + "00XXX", "seed": sum(name.encode()), "hours": minutes / 60, "interval_s": 1,
                "start": time.strftime("%Y-%m-%d %H:%M:%S", time.gmtime(begin_utc + GPS_MINUS_UTC_S)),
                "receiver": {"position_m": earth_fixed(latitude, longitude)}, "faults": faults}
    place = pathlib.Path(folder, name)
    place.mkdir(parents=True, exist_ok=True)
    for old in place.iterdir():
        old.unlink()
    description = place / "scenario.json"
    description.write_text(json.dumps(scenario), encoding="utf-8")
    subprocess.run([program, "simulate", "--scenario", description, "--output", place, "--rtcm", "7"], check=True,
                   stdout=subprocess.DEVNULL)
    return next(place.glob("*.rtcm3"))


def simulate_all(given):
    """@return the time at which the streams begin, a few seconds from now, and the recordings by name"""
    lead_s = 10
    while True:
        begin_utc = round(time.time()) + lead_s
        print(f"Simulating {len(STATIONS)} stations, {given.minutes:g} minutes each.", flush=True)
        recordings = {name: simulate(given.program, given.folder, name, begin_utc, given.minutes) for name in STATIONS}
        if begin_utc - time.time() > 4:
            return begin_utc, recordings
        lead_s *= 3  # a busy machine


def lisbon(mount):
    """The plan of a station whose caster drops and refuses it for a while."""
    def plan(_):
        since = (time.monotonic() - mount.begun) * mount.speed
        if since >= OFFLINE_S[1]:
            return Connection()
        if since >= OFFLINE_S[0]:
            return None
        until = next((i for i, s in enumerate(mount.seconds) if s >= OFFLINE_S[0]), len(mount.epochs))
        return Connection(end_after=sum(len(frame) for epoch in mount.epochs[mount.at:until] for frame in epoch))
    return plan


def wait_for_alarms(events_file, process):
    """Prints events until all that is expected has been raised, or the service ends. @return what is missing"""
    missing = {(name, kind) for name, station in STATIONS.items() for kind in station[3]}
    with open(events_file, encoding="utf-8") as lines:
        while missing and process.poll() is None:
            line = lines.readline()
            if not line:
                time.sleep(0.2)
                continue
            event = json.loads(line)
            print_event(event)
            if event["state"] == "raised":
                missing.discard((event["station"], event["kind"]))
    return missing


def print_event(event):
    if event["state"] == "note" and event["kind"] == "hour":
        return
    words = [event["time"][11:19], event["station"], "" if event["state"] == "note" else event["state"], event["kind"],
             event.get("subject", ""), "-", event.get("seen", ""), event.get("advice", "") if event["state"] == "raised" else ""]
    print(" ".join(word for word in words if word), flush=True)


def follow(events_file, process):
    with open(events_file, encoding="utf-8") as lines:
        while process.poll() is None:
            line = lines.readline()
            print_event(json.loads(line)) if line else time.sleep(0.2)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("folder")
    parser.add_argument("--listen", default="127.0.0.1:9464")
    parser.add_argument("--minutes", type=float, default=90)
    parser.add_argument("--speed", type=float, default=1, help="of the streams against their own time")
    parser.add_argument("--check", action="store_true")
    given = parser.parse_args()
    listen = f"127.0.0.1:{free_port()}" if given.check else given.listen
    begin_utc, recordings = simulate_all(given)
    mounts = [mount_of_file(name, path, speed=given.speed) for name, path in recordings.items()]
    for mount in mounts:
        mount.begun = time.monotonic() + begin_utc - time.time()
        if mount.name == "LISB":
            mount.plan = lisbon(mount)
    with Caster(mounts) as caster:
        stations = pathlib.Path(given.folder, "stations.toml")
        stations.write_text("".join(f'[[station]]\nname = "{name}"\nsource = "ntrip://127.0.0.1:{caster.port}/{name}"\n\n'
                                    for name in STATIONS), encoding="utf-8")
        events_file = pathlib.Path(given.folder, "events.jsonl")
        events_file.write_text("")
        command = [given.program, "live", "--stations", stations, "--listen", listen, "--events", events_file]
        print("$ " + " ".join(map(str, command)))
        for name, station in STATIONS.items():
            print(f"  {name}: {station[4]}")
        print(f"\nThe page: http://{listen}/     metrics: http://{listen}/metrics     Ctrl-C ends it.\n", flush=True)
        process = subprocess.Popen(command)
        try:
            if given.check:
                timer = threading.Timer(300, process.terminate)
                timer.start()
                missing = wait_for_alarms(events_file, process)
                timer.cancel()
                print("missing: " + ", ".join(f"{name} {kind}" for name, kind in sorted(missing)) if missing else "every fault raised its alarm")
                return 1 if missing else 0
            follow(events_file, process)
        except KeyboardInterrupt:
            print()
        finally:
            if process.poll() is None:
                process.terminate()
            process.wait(timeout=30)
    return 0


if __name__ == "__main__":
    sys.exit(main())
