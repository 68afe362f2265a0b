"""The C interface: what C compilers make of its headers, and what its library exports.

usage: check_c_interface.py headers C_COMPILER CXX_COMPILER INTERFACE_FOLDER LAYOUT
       check_c_interface.py exports LIBRARY OBJDUMP INTERFACE_FOLDER

headers: every header of C compiles alone and twice as C89, C99 and C++17 without a warning; records_c.h is what is
made of records.h, and a C compiler lays it out as the contract says.
exports: the library exports the functions that the header declares and nothing else.
"""
import os
import re
import subprocess
import sys
import tempfile

import check_contract
import check_exports

HEADERS = ("orsolva_c.h", "records_c.h", "signals.h", "version.h")
FLAGS = ["-pedantic-errors", "-Wall", "-Wextra", "-Werror"]


def compile_alone(command, folder, header, scratch):
    source = os.path.join(scratch, "alone.c")
    with open(source, "w", encoding="utf-8") as file:
        file.write(f"#include <orsolva/{header}>\n#include <orsolva/{header}>\nint main(void) {{ return 0; }}\n")
    return subprocess.run([*command, *FLAGS, "-fsyntax-only", "-I", folder, source], check=False).returncode != 0


def layout_in_c(compiler, folder, scratch):
    source, program = os.path.join(scratch, "probe.c"), os.path.join(scratch, "probe")
    probe = check_contract.probe_of(check_contract.text_of(folder, "orsolva", "records.h"))
    probe = probe.replace('"records.h"', "<orsolva/records_c.h>").replace("<cstddef>", "<stddef.h>")
    probe = probe.replace("<cstdio>", "<stdio.h>").replace("std::", "").replace("alignof(", "_Alignof(")
    probe = re.sub(r"sizeof\((\w+)::(\w+)\)", r"sizeof(((\1*)0)->\2)", probe)
    probe = re.sub(r"static_cast<int>\((\w+)\)", r"(int)\1", probe)
    with open(source, "w", encoding="utf-8") as file:
        file.write(probe)
    subprocess.run([compiler, "-std=c11", "-I", folder, source, "-o", program], check=True)
    return subprocess.run([program], check=True, capture_output=True, text=True).stdout


def check_headers(c_compiler, cxx_compiler, folder, layout):
    ways = [[c_compiler, "-std=c89"], [c_compiler, "-std=c99"], [cxx_compiler, "-std=c++17", "-x", "c++"]]
    maker = os.path.join(folder, "c", "make_records.py")
    with tempfile.TemporaryDirectory() as scratch:
        failed = any([compile_alone(way, folder, header, scratch) for header in HEADERS for way in ways
                      if way[0] == c_compiler or header != "records_c.h"])
        made = subprocess.run([sys.executable, maker, os.path.join(folder, "orsolva"), "--check"], check=False)
        reference = check_contract.text_of(layout)
        errors = list(check_contract.differences("records_c.h", layout_in_c(c_compiler, folder, scratch), reference))
    print("\n".join(errors))
    return failed or made.returncode != 0 or bool(errors)


def check_symbols(library, objdump, folder):
    header = check_contract.text_of(folder, "orsolva", "orsolva_c.h")
    declared = set(re.findall(r"ORSOLVA_C_EXPORT [\w* ]+?\b(orsolva_\w+)\(", header))
    windows = library.endswith(".dll")
    found = (check_exports.names_of_dll if windows else check_exports.names_of_elf)(library, objdump)
    print(f"missing {sorted(declared - found)}, surplus {sorted(found - declared)}")
    soname = "" if windows else check_exports.output(objdump, "-p", library)
    return len(declared) < 10 or declared != found or not (windows or "liborsolva_c.so.1\n" in soname)


def main(way, *arguments):
    failed = check_headers(*arguments) if way == "headers" else check_symbols(*arguments)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
