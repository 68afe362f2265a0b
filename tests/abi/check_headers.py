"""Each public header compiles alone as strict C++17, without a warning, and twice in one file.

usage: check_headers.py COMPILER FOLDER
"""
import os
import subprocess
import sys
import tempfile

FLAGS = ["-std=c++17", "-pedantic-errors", "-Wall", "-Wextra", "-Werror", "-fsyntax-only"]


def headers_in(folder):
    """Those of C++: records_c.h stands for records.h in C."""
    names = sorted(os.listdir(os.path.join(folder, "orsolva")))
    return [name for name in names if name != "records_c.h"]


def main(compiler, folder):
    failed = False
    with tempfile.TemporaryDirectory() as scratch:
        for header in headers_in(folder):
            path = os.path.join(scratch, "alone.cpp")
            with open(path, "w", encoding="utf-8") as file:
                file.write(f'#include <orsolva/{header}>\n#include <orsolva/{header}>\nint main() {{ return 0; }}\n')
            failed |= subprocess.run([compiler, *FLAGS, "-I", folder, path], check=False).returncode != 0
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
