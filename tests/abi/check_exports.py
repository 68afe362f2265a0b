"""The shared library exports exactly the eight functions, under its file and object names.

usage: check_exports.py LIBRARY VERSION
"""
import os
import re
import subprocess
import sys

EXPORTS = {
    "_Z14CreatQcProcessv",
    "_Z13DiposeProcessPy",
    "_Z9InitialQcRK18NavBodyData_QC_gbtPK10config_qctPy",
    "_Z10GNSSQCPlusRK18ObsBodyData_QC_gbtPy",
    "_Z18GetAllPeriodResultPyP10result_qct",
    "_Z17GetEachCodeResultPyR20total_code_qc_result",
    "_Z6GNSSQCRK18ObsBodyData_QC_gbtRK18NavBodyData_QC_gbtRK10config_qctR10result_qct",
    "_Z19GetGNSSQCLibVersionPc",
}


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def main(library, version):
    errors = []
    found = {line.split()[-1] for line in output("nm", "-D", "--defined-only", library).splitlines()}
    if found != EXPORTS:
        errors.append(f"missing {sorted(EXPORTS - found)}, surplus {sorted(found - EXPORTS)}")
    soname = re.search(r"SONAME.*\[(.*)\]", output("readelf", "-d", library))
    if soname is None or soname.group(1) != "libOrsolva_cbb.so.1":
        errors.append(f"object name is {soname and soname.group(1)}")
    real = os.path.basename(os.path.realpath(library))
    if real != f"libOrsolva_cbb.so.{version}" or version != "1.2.9":
        errors.append(f"file name is {real}")
    for link in ("libOrsolva_cbb.so", "libOrsolva_cbb.so.1"):
        if not os.path.islink(os.path.join(os.path.dirname(library), link)):
            errors.append(f"no link {link}")
    print("\n".join(errors))
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
