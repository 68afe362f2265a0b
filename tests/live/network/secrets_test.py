"""No user and no password is in anything that `orsolva live` writes or serves, wherever they were given.

usage: secrets_test.py PROGRAM
"""
import base64
import pathlib
import subprocess
import sys
import tempfile
import urllib.parse
import urllib.request

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import rtcm_stream  # noqa: E402
from caster import Caster, Connection, Mount  # noqa: E402
from service import Service, simulate  # noqa: E402

SECONDS = 20
# (user, password) by where they are given; characters that are coded in an address.
LOGINS = {"URL": ("url-User-31", "url/Secret:77"), "FILE": ("file-User-32", "file-Secret-78"),
          "ENVIRONMENT": ("env-User-33", "env-Secret-79"), "NAV": ("nav-User-34", "nav-Secret-80"),
          "COMMON": ("common-User-35", "common-Secret-81")}
PATHS = ("", "state.json", "metrics", "events.json?after=0&wait=0", *(f"state.json?station={name}" for name in LOGINS),
         "state.json?station=REFUSED", "none")


def spellings():
    """How the secrets could appear."""
    for user, password in LOGINS.values():
        yield from (user, password, urllib.parse.quote(password, safe=""),
                    base64.b64encode(f"{user}:{password}".encode()).decode())


def check(place, text):
    for secret in spellings():
        assert secret not in text, f"{place} has {secret}"


def mounts_of(epochs):
    """A mount with each login; the stream of the address stalls, for an alarm, and one refuses what it is given."""
    def stall(_):
        return Connection(end_after=sum(len(f) for e in epochs[:5] for f in e), end="stall")
    mounts = [Mount(name, epochs, user=":".join(login), plan=stall if name == "URL" else None)
              for name, login in LOGINS.items()]
    return [*mounts, Mount("REFUSED", epochs, user="some:other")]


def stations_of(port, folder):
    def address(name, login=None):
        coded = ":".join(urllib.parse.quote(part, safe="") for part in login) + "@" if login else ""
        return f"ntrip://{coded}127.0.0.1:{port}/{name}"
    password_file = pathlib.Path(folder, "password")
    password_file.write_text(LOGINS["FILE"][1] + "\n", encoding="utf-8")
    return {
        "URL": address("URL", LOGINS["URL"]),
        "FILE": {"source": address("FILE"), "user": LOGINS["FILE"][0], "password_file": password_file},
        "ENVIRONMENT": {"source": address("ENVIRONMENT"), "user": LOGINS["ENVIRONMENT"][0], "password_env": "CASTER_WORD"},
        "NAV": {"source": address("NAV", LOGINS["NAV"]), "nav": address("NONE", LOGINS["NAV"])},
        # The login of the environment goes to the one that has no other; NAV and the rest keep theirs.
        "COMMON": address("COMMON"),
        "REFUSED": address("REFUSED", LOGINS["URL"]),
    }


def check_service(program, folder, epochs):
    said = pathlib.Path(folder, "environment.txt")
    with Caster(mounts_of(epochs)) as caster:
        service = Service(program, stations_of(caster.port, folder), "--state", f"{folder}/state", "--reports",
                          f"{folder}/reports", "--on-alarm", f"env >> {said}", environment={
                              "CASTER_WORD": LOGINS["ENVIRONMENT"][1], "ORSOLVA_NTRIP_USER": LOGINS["COMMON"][0],
                              "ORSOLVA_NTRIP_PASSWORD": LOGINS["COMMON"][1]})
        with service:
            for name in ("FILE", "ENVIRONMENT", "NAV", "COMMON"):
                service.until(lambda: service.stations()[name]["epochs"] >= SECONDS, 60)
            service.until(lambda: "401" in (service.stations()["REFUSED"]["problem"] or ""), 30)
            service.until(lambda: said.exists() and "ORSOLVA_ALARM=data_gap" in said.read_text(encoding="utf-8"), 60)
            for path in PATHS:
                for accept in ("text/plain", "application/openmetrics-text;version=1.0.0"):
                    request = urllib.request.Request(service.url + path, headers={"Accept": accept})
                    try:
                        with urllib.request.urlopen(request, timeout=10) as reply:
                            check(path, str(reply.headers) + reply.read().decode())
                    except urllib.error.HTTPError as error:
                        assert path == "none", path
                        check(path, error.read().decode())
            check("the events file", service.events_file.read_text(encoding="utf-8"))
            check("standard error", service.said())
            # The list of processes shows what was given on the command line, which was no secret here.
            check("the arguments", pathlib.Path(f"/proc/{service.process.pid}/cmdline").read_text(encoding="utf-8"))
        check("the environment of the alarm command", said.read_text(encoding="utf-8"))
    for file in [*pathlib.Path(folder, "state").rglob("*"), *pathlib.Path(folder, "reports").rglob("*")]:
        check(file, file.read_bytes().decode("latin-1"))


def check_errors(program, folder):
    """What is wrong with a source is said without it."""
    user, password = LOGINS["URL"]
    login = f"{user}:{urllib.parse.quote(password, safe='')}@"
    tables = (f'source = "ntrip://{login}host"', f'source = "ntrip://{login}host/M', f'source = ntrip://{login}host/M',
              f'source = "ntrip://{login}host:99999/M"', f'pasword = "{password}"', f'user = "{user}"',
              f'source = "tcp://{login}host:0"', f'source = "ntrip://{login}h/M"\nnav = "ntrip://{login}h"',
              f'source = "x"\npassword_env = ["{password}"]')
    for table in tables:
        file = pathlib.Path(folder, "bad.toml")
        file.write_text("[[station]]\n" + table + "\n", encoding="utf-8")
        done = subprocess.run([program, "live", "--stations", file], capture_output=True, text=True, timeout=30)
        assert done.returncode != 0 and done.stderr, table
        check(table, done.stdout + done.stderr)
    done = subprocess.run([program, "live", f"ntrip://{login}host"], capture_output=True, text=True, timeout=30)
    assert done.returncode != 0
    check("an argument", done.stdout + done.stderr)


def main():
    program = sys.argv[1]
    with tempfile.TemporaryDirectory() as folder:
        epochs = list(rtcm_stream.epochs(simulate(program, folder, SECONDS).read_bytes()))
        check_errors(program, folder)
        check_service(program, folder, epochs)
    # The test can fail: a secret is found.
    try:
        check("a text", "x" + LOGINS["FILE"][1])
    except AssertionError:
        return
    raise AssertionError("a secret is not found")


if __name__ == "__main__":
    main()
