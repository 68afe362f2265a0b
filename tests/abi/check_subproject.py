"""A project outside the tree adds the library by add_subdirectory: no other target comes along, no package is looked
for, its settings stay its own, nothing of the library is installed, and its programs link and run.

usage: check_subproject.py CMAKE COMPILER SOURCE_FOLDER PARENT_FOLDER
"""
import os
import re
import subprocess
import sys
import tempfile

TARGETS = {"Orsolva_cbb", "orsolva_c", "orsolva_core", "orsolva_flags", "orsolva_static"}
FLOOR = re.compile(r"orsolva_(toolkit|matrix|navigation|qc|measures|results|interface)")


def run(*command, **options):
    print("+", " ".join(command), flush=True)
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE, **options).stdout


def check_targets(configured):
    targets = set(re.search(r"targets: (\S*)", configured).group(1).split(";"))
    strangers = {target for target in targets - TARGETS if not FLOOR.fullmatch(target)}
    if strangers or not TARGETS <= targets:
        raise SystemExit(f"unexpected targets: {sorted(targets)}")


def main(cmake, compiler, sources, parent):
    with tempfile.TemporaryDirectory() as scratch:
        build = os.path.join(scratch, "build")
        configured = run(cmake, "-S", parent, "-B", build, f"-DCMAKE_CXX_COMPILER={compiler}",
                         f"-DORSOLVA_SOURCES={sources}")
        check_targets(configured)
        run(cmake, "--build", build, "--parallel", "2")
        for target in ("Orsolva_cbb", "static"):
            printed = run(os.path.join(build, "host_" + target))
            if "library version: V1.2.9" not in printed:
                raise SystemExit(f"unexpected output: {printed!r}")
        prefix = os.path.join(scratch, "installed")
        run(cmake, "--install", build, "--prefix", prefix)
        if os.path.exists(prefix):
            raise SystemExit("installing the parent installs the library")


if __name__ == "__main__":
    main(*sys.argv[1:])
