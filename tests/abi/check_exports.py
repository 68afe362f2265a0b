"""The shared library exports exactly the eight functions, under its file and object names.

usage: check_exports.py LIBRARY VERSION OBJDUMP
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


def names_of_elf(library, objdump):
    """Symbols that a host can bind to: those of the dynamic table that are neither local nor undefined."""
    lines = [line for line in output(objdump, "-T", library).splitlines() if re.match("[0-9a-f]+ [^l]", line)]
    return {line.split()[-1] for line in lines if "*UND*" not in line}


def names_of_dll(library, objdump):
    table = output(objdump, "-p", library).partition("[Ordinal/Name Pointer] Table")[2]
    return set(re.findall(r"\[ *\d+\] (\S+)", table.partition("\n\n")[0]))


def naming_errors(library, version, objdump):
    soname = re.search(r"SONAME\s+(\S+)", output(objdump, "-p", library))
    if soname is None or soname.group(1) != "libOrsolva_cbb.so.1":
        yield f"object name is {soname and soname.group(1)}"
    real = os.path.basename(os.path.realpath(library))
    if real != f"libOrsolva_cbb.so.{version}" or version != "1.2.9":
        yield f"file name is {real}"
    for link in ("libOrsolva_cbb.so", "libOrsolva_cbb.so.1"):
        if not os.path.islink(os.path.join(os.path.dirname(library), link)):
            yield f"no link {link}"


def main(library, version, objdump):
    windows = library.endswith(".dll")
    found = (names_of_dll if windows else names_of_elf)(library, objdump)
    errors = [] if windows else list(naming_errors(library, version, objdump))
    if found != EXPORTS:
        errors.append(f"missing {sorted(EXPORTS - found)}, surplus {sorted(found - EXPORTS)}")
    print("\n".join(errors))
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
