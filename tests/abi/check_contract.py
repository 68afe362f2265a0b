"""The binary contract: layouts and symbols are those of the committed reference.

usage: check_contract.py COMPILER LIBRARY HEADER_FOLDER REFERENCE_FOLDER [--write]

Every field of every record of records.h is asked of the compiler: offset and size. The symbols are those a host
can bind to. --write rewrites the reference: only for a release that breaks every host on purpose.
"""
import os
import re
import subprocess
import sys
import tempfile

STANDARD_HEADERS = {"<cstdint>", '"records.h"'}


def text_of(*path):
    with open(os.path.join(*path), encoding="utf-8") as file:
        return file.read()


def without_comments(text):
    return re.sub(r"//[^\n]*", "", text)


def records_of(header):
    """Names of the records, each with the names of its fields."""
    for name, body in re.findall(r"^struct (\w+) \{(.*?)^\};", without_comments(header), re.M | re.S):
        yield name, re.findall(r"(\w+)(?:\[\w+\])*;", body)


def probe_of(header):
    """A program that prints the layout of every record and the value of every state."""
    lines = ['#include "records.h"', "#include <cstddef>", "#include <cstdio>", "int main() {"]
    for name, fields in records_of(header):
        lines.append(f'  std::printf("{name} size %zu align %zu\\n", sizeof({name}), alignof({name}));')
        for field in fields:
            lines.append(f'  std::printf("{name}.{field} at %zu size %zu\\n", offsetof({name}, {field}), '
                         f"sizeof({name}::{field}));")
    lines.append('  std::printf("GNSSQC_STATE size %zu\\n", sizeof(GNSSQC_STATE));')
    for state in re.findall(r"^\s+(GNSSQC_\w+) =", header, re.M):
        lines.append(f'  std::printf("{state} = %d\\n", static_cast<int>({state}));')
    return "\n".join(lines + ["}", ""])


def layout(compiler, folder):
    with tempfile.TemporaryDirectory() as scratch:
        source, program = os.path.join(scratch, "probe.cpp"), os.path.join(scratch, "probe")
        with open(source, "w", encoding="utf-8") as file:
            file.write(probe_of(text_of(folder, "records.h")))
        subprocess.run([compiler, "-std=c++17", "-I", folder, source, "-o", program], check=True)
        return subprocess.run([program], check=True, capture_output=True, text=True).stdout


def symbols(library):
    listed = subprocess.run(["nm", "-D", "--defined-only", library], check=True, capture_output=True, text=True)
    return "".join(sorted(" ".join(line.split()[1:]) + "\n" for line in listed.stdout.splitlines()))


def foreign_includes(folder):
    found = set()
    for header in ("records.h", "gnssqc.h"):
        found |= set(re.findall(r"^\s*#\s*include\s*(\S+)", text_of(folder, header), re.M))
    return sorted(found - STANDARD_HEADERS)


def differences(name, now, reference):
    now, reference = set(now.splitlines()), set(reference.splitlines())
    for line in sorted(reference - now):
        yield f"{name}: gone or changed: {line}"
    for line in sorted(now - reference):
        yield f"{name}: new or changed: {line}"


def main(compiler, library, headers, reference, *flags):
    dumps = {"layout.txt": layout(compiler, headers), "symbols.txt": symbols(library)}
    errors = [f"the public headers include {name}" for name in foreign_includes(headers)]
    for name, dump in dumps.items():
        if "--write" in flags:
            with open(os.path.join(reference, name), "w", encoding="utf-8") as file:
                file.write(dump)
        errors += differences(name, dump, text_of(reference, name))
    print("\n".join(errors))
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
