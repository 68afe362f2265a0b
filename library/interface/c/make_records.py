#!/usr/bin/env python3
"""Writes the boundary records for C, orsolva/records_c.h, from those for C++, orsolva/records.h.

usage: make_records.py HEADER_FOLDER [--check]

The header of C has the same structs, fields and values without comments, as C89 with stdint.h. --check compares
instead of writing.
"""
import pathlib
import re
import sys

HEAD = """/* The boundary records for C: those of records.h, which says what the fields mean. Written by
 * library/interface/c/make_records.py; do not edit. */
#ifndef ORSOLVA_INTERFACE_RECORDS_C_H
#define ORSOLVA_INTERFACE_RECORDS_C_H

#include <stdint.h>

/* clang-format off */
"""
TAIL = """
/* clang-format on */

#endif /* ORSOLVA_INTERFACE_RECORDS_C_H */
"""
BLOCK = re.compile(r"^(struct|enum) (\w+)(?: : std::(\w+))? \{\n(.*?)^\};", re.M | re.S)


def struct_of_c(name, body):
    return f"\ntypedef struct {name} {{\n{body}}} {name};\n"


def enum_of_c(name, underlying, body):
    """An enumeration of C has a size of the compiler's choice: the record type is the integer below it."""
    values = body.rstrip().rstrip(",")
    return f"\ntypedef {underlying} {name};\nenum {{\n{values}\n}};\n"


def header_of_c(text):
    text = re.sub(r" *//[^\n]*", "", text)
    text = re.sub(r"\n\n+", "\n", text)
    parts = [HEAD]
    for kind, name, underlying, body in BLOCK.findall(text):
        body = body.replace("std::", "")
        parts.append(struct_of_c(name, body) if kind == "struct" else enum_of_c(name, underlying, body))
    return "".join(parts) + TAIL


def main(folder, *flags):
    folder = pathlib.Path(folder)
    target = folder / "records_c.h"
    made = header_of_c((folder / "records.h").read_text(encoding="utf-8"))
    if "--check" not in flags:
        target.write_text(made, encoding="utf-8")
    elif target.read_text(encoding="utf-8") != made:
        print(f"{target} is not what {pathlib.Path(__file__).name} makes of records.h: run it")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
