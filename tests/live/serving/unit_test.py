"""systemd reads the unit of the service without a message and finds it well confined.

usage: unit_test.py UNIT PROGRAM
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77
INSTALLED = "/usr/bin/orsolva"
MOST_EXPOSED = 20  # of 100, as systemd-analyze rates it


def run(*arguments):
    done = subprocess.run(["systemd-analyze", *arguments], capture_output=True, text=True)
    return done.returncode, done.stdout + done.stderr


def main():
    unit, program = sys.argv[1:]
    if shutil.which("systemd-analyze") is None:
        print("skipped: there is no systemd-analyze")
        sys.exit(SKIPPED)
    text = pathlib.Path(unit).read_text(encoding="utf-8")
    assert INSTALLED in text
    with tempfile.TemporaryDirectory() as folder:
        tried = pathlib.Path(folder, "orsolva-live.service")
        tried.write_text(text.replace(INSTALLED, os.path.abspath(program)), encoding="utf-8")
        code, said = run("verify", "--man=no", str(tried))
        assert code == 0 and not said, said
        code, said = run("security", "--offline=true", f"--threshold={MOST_EXPOSED}", str(tried))
        assert code == 0, said
        # The test can fail: an unknown setting is reported.
        tried.write_text(tried.read_text().replace("LockPersonality", "LockPersonalty"), encoding="utf-8")
        assert run("verify", "--man=no", str(tried))[1]
    print(said.strip().splitlines()[-1])


if __name__ == "__main__":
    main()
