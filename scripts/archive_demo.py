"""The network of scripts/archive-demo, and a look at its pages.

usage: archive_demo.py simulate FOLDER     writes eight stations and sixty days
       archive_demo.py look FOLDER         opens every page in Chromium without a window; exit code 1 with errors

A day is three hours of GPS at 60 s, at the same sidereal time: under the same satellites. What happens is in STORIES, and once at all stations.
"""
import concurrent.futures
import datetime
import math
import os
import pathlib
import random
import subprocess
import sys

DAYS = 60
FIRST_DAY = datetime.date(2026, 3, 1)
SIDEREAL_DAY_S = 86164
# Station: latitude, longitude, and what happens from which day on.
STORIES = {
    "AALB00DNK": (57.0, 9.9, None),
    "BERG00NOR": (60.4, 5.3, ("snr of 1C 3 dB lower", 40)),
    "CORK00IRL": (51.9, -8.5, ("new antenna, in the header", 35)),
    "DIJO00FRA": (47.3, 5.0, ("new antenna, not in the header", 45)),
    "EVOR00PRT": (38.6, -7.9, ("snr 0.08 dB lower every day", 30)),
    "FOGG00ITA": (41.5, 15.5, ("silent", 54)),
    "GDAN00POL": (54.4, 18.6, ("new firmware", 30)),
    "HELS00FIN": (60.2, 25.0, ("multipath twice as large", 38)),
}
# GPS lowers the power of a signal: every station sees it.
WEAKER_SIGNAL, WEAKER_DB, WEAKER_FROM = "2W", 2, 12


def position(latitude_deg, longitude_deg):
    """Earth-centred position at sea level, m (WGS 84)."""
    a, e2 = 6378137.0, 0.00669437999014
    latitude, longitude = math.radians(latitude_deg), math.radians(longitude_deg)
    n = a / math.sqrt(1 - e2 * math.sin(latitude) ** 2)
    return [n * math.cos(latitude) * math.cos(longitude), n * math.cos(latitude) * math.sin(longitude), n * (1 - e2) * math.sin(latitude)]


def simulate_day(folder, station, day):
    """Writes a station's day, unless it is silent."""
    import orsolva

    latitude, longitude, story = STORIES[station]
    event, since = story if story and day >= story[1] else ("", 0)
    if event == "silent":
        return
    chance = random.Random(f"{station} {day}")
    swapped = event.startswith("new antenna")
    snr = chance.gauss(0, 0.1) + 1.5 * swapped - 0.08 * (day - since) * event.startswith("snr 0.08")
    ratio = (1 + chance.gauss(0, 0.05)) * (0.6 if swapped else 2.0 if event.startswith("multipath") else 1.0)
    faults = [{"kind": "slip", "size": 1, "random": 1 + chance.randrange(3)}] if chance.random() < 0.3 else []
    if event.startswith("snr of 1C"):
        faults.append({"kind": "snr_drop", "signal": "1C", "size": 3})
    if day >= WEAKER_FROM:
        faults.append({"kind": "snr_drop", "signal": WEAKER_SIGNAL, "size": WEAKER_DB})
    errors = {"snr_zenith_dbhz": 50 + snr, "snr_horizon_dbhz": 33 + snr, "multipath_m": {"zenith": 0.08 * ratio, "horizon": 0.6 * ratio}}
    second = (43200 - 236 * day) % SIDEREAL_DAY_S
    date = FIRST_DAY + datetime.timedelta(days=day)
    made = orsolva.simulate(
        scenario={"errors": errors, "faults": faults, "signals": {"G": ["1C", "2W"]}},
        seed=chance.randrange(2**31), start=f"{date} {second // 3600:02}:{second // 60 % 60:02}:00", hours=3, interval_s=60,
        systems="G", station=station, position=position(latitude, longitude),
    )  # fmt: skip
    observations, _, truth = made.write(pathlib.Path(folder) / f"{date:%Y/%j}" / station)
    truth.unlink()
    antenna = "NEW" if event == "new antenna, in the header" else "OLD"
    firmware = "2.0" if event == "new firmware" else "1.0"
    lines = [f"{'7':20}{'DEMO RECEIVER':20}{firmware:20}REC # / TYPE / VERS", f"{'9':20}{antenna + ' ANTENNA':16}{'NONE':24}ANT # / TYPE"]
    text = observations.read_text().splitlines(keepends=True)
    for line in lines:
        text = [f"{line}\n" if old[60:].rstrip() == line[60:] else old for old in text]
    observations.write_text("".join(text))


def simulate(folder):
    """Writes all days on all cores."""
    days = [(station, day) for day in range(DAYS) for station in STORIES]
    with concurrent.futures.ProcessPoolExecutor() as pool:
        list(pool.map(simulate_day, [folder] * len(days), *zip(*days), chunksize=20))


def console_of(page, *options):
    """What a page says on the console of Chromium, and its elements once its scripts have run."""
    chromium = os.environ.get("CHROMIUM", "chromium")
    quiet = ["--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars", "--enable-logging=stderr", "--v=0"]
    done = subprocess.run([chromium, *quiet, *options, page.resolve().as_uri()], capture_output=True, text=True, timeout=120)
    return [line for line in done.stderr.splitlines() if "CONSOLE" in line], done.stdout


def look(folder):
    """Opens every page. @return whether all are as they should be"""
    folder = pathlib.Path(folder)
    pages = [folder / "index.html", *sorted((folder / "stations").glob("*.html"))]
    problems = []
    for page in pages:
        messages, elements = console_of(page, "--dump-dom")
        problems += [f"{page.name}: {message}" for message in messages]
        wanted = "Stations by days" if page.name == "index.html" else "Code residuals"
        if wanted not in elements.partition('id="main"')[2].partition("<footer")[0]:
            problems.append(f"{page.name}: nothing is drawn")
    for width in (390, 1400):
        console_of(pages[0], f"--window-size={width},1500", f"--screenshot={folder.parent / f'network-{width}.png'}")
    print(f"{len(pages)} pages in Chromium: " + ("\n".join(problems) or "no error on the console"))
    return not problems


if __name__ == "__main__":
    if sys.argv[1:2] == ["simulate"]:
        simulate(sys.argv[2])
    elif sys.argv[1:2] == ["look"]:
        sys.exit(0 if look(sys.argv[2]) else 1)
    else:
        sys.exit(__doc__)
