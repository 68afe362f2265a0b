"""The library refuses to compile for machines with another byte order or another word size, and says why.

usage: check_refusal.py COMPILER LIBRARY_FOLDER

Two cases pretend to be such a machine. The others compile the exported functions for a real one, whose headers
need not be installed: the reason has to be the first error.
"""
import os
import subprocess
import sys
import tempfile

PRETENDED = {
    "byte order": ["-U__BYTE_ORDER__", "-D__BYTE_ORDER__=__ORDER_BIG_ENDIAN__"],
    "word size": ["-U__SIZEOF_POINTER__", "-D__SIZEOF_POINTER__=4"],
}
OTHER_TARGETS = [
    ("word size", "--target=i386-linux-gnu"),
    ("word size", "--target=arm-linux-gnueabihf"),
    ("byte order", "--target=s390x-linux-gnu"),
    ("byte order", "--target=powerpc64-linux-gnu"),
]


def compiled(compiler, folder, source, flags):
    command = [compiler, "-std=c++20", "-w", "-fsyntax-only", "-I", folder,
               "-I", os.path.join(folder, "interface"), *flags, source]
    return subprocess.run(command, check=False, capture_output=True, text=True)


def real_machines(compiler):
    """What this compiler can compile for and the library refuses: reason and flag."""
    version = subprocess.run([compiler, "--version"], check=True, capture_output=True, text=True).stdout
    if "clang" in version:
        return OTHER_TARGETS
    machine = subprocess.run([compiler, "-dumpmachine"], check=True, capture_output=True, text=True).stdout
    return [("word size", "-m32")] if machine.startswith("x86_64") else []


def main(compiler, folder):
    cases = []
    with tempfile.TemporaryDirectory() as scratch:
        layout = os.path.join(scratch, "layout.cpp")
        with open(layout, "w", encoding="utf-8") as file:
            file.write('#include "interface/record_layout.h"\n')
        plain = compiled(compiler, folder, layout, [])
        if plain.returncode != 0:
            print(plain.stderr)
            return 1
        cases += [(reason, layout, flags) for reason, flags in PRETENDED.items()]
        exports = os.path.join(folder, "interface", "exports.cpp")
        cases += [(reason, exports, [flag]) for reason, flag in real_machines(compiler)]
        failed = False
        for reason, source, flags in cases:
            refused = compiled(compiler, folder, source, flags)
            errors = [line for line in refused.stderr.splitlines() if "error:" in line]
            if refused.returncode == 0 or not errors or reason not in errors[0]:
                print(f"{reason} ({' '.join(flags)}): not refused with the reason first\n{refused.stderr}")
                failed = True
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
