"""Reading costs what it did: instructions are counted, which other work on the machine does not change."""
import os
import re
import shutil
import subprocess
import sys

import pytest

import orsolva

# Of the reader and of the columns, per byte of a plain RINEX 3 file. bench/python.py measures the rate of a
# machine.
BUDGET = 23.5
# As in bench/check_instructions.py: the plain variants of the C library, whatever the processor.
PLAIN = {"GLIBC_TUNABLES": "glibc.cpu.hwcaps=-AVX,-AVX2,-AVX512F,-FMA,-FMA4,-ERMS"}
READ = "import sys, orsolva; print(len(orsolva.read_obs(sys.argv[1], flags=True)))"


def test_reading_keeps_to_its_budget_of_instructions(tmp_path):
    if shutil.which("valgrind") is None:
        pytest.skip("valgrind is missing")
    observations, _, _ = orsolva.simulate("quiet", seed=1, hours=1).write(tmp_path)
    command = ["valgrind", "--tool=callgrind", "--toggle-collect=*RinexSource::Next*", "--toggle-collect=*ObservationColumns::Add(*"]
    command += [f"--callgrind-out-file={tmp_path / 'out'}", sys.executable, "-c", READ, str(observations)]
    done = subprocess.run(command, capture_output=True, text=True, env={**os.environ, **PLAIN})
    assert done.returncode == 0, done.stderr
    assert int(done.stdout) == len(orsolva.read_obs(observations))
    counted = int(re.search(r"Collected : (\d+)", done.stderr).group(1))
    per_byte = counted / observations.stat().st_size
    assert BUDGET / 2 < per_byte < BUDGET, f"{per_byte:.1f} instructions per byte"
