"""The library refuses to compile for machines with another byte order or another word size.

usage: check_refusal.py COMPILER LIBRARY_FOLDER
"""
import os
import subprocess
import sys
import tempfile

CASES = {
    "byte order": ["-U__BYTE_ORDER__", "-D__BYTE_ORDER__=__ORDER_BIG_ENDIAN__"],
    "word size": ["-U__SIZEOF_POINTER__", "-D__SIZEOF_POINTER__=4"],
}


def compiled(compiler, folder, source, flags):
    command = [compiler, "-std=c++20", "-w", "-fsyntax-only", "-I", folder, *flags, source]
    return subprocess.run(command, check=False, capture_output=True, text=True)


def main(compiler, folder):
    failed = False
    with tempfile.TemporaryDirectory() as scratch:
        source = os.path.join(scratch, "layout.cpp")
        with open(source, "w", encoding="utf-8") as file:
            file.write('#include "interface/record_layout.h"\n')
        plain = compiled(compiler, folder, source, [])
        if plain.returncode != 0:
            print(plain.stderr)
            return 1
        for name, flags in CASES.items():
            refused = compiled(compiler, folder, source, flags)
            if refused.returncode == 0 or name not in refused.stderr:
                print(f"{name}: not refused\n{refused.stderr}")
                failed = True
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
