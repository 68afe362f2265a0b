#!/usr/bin/env python3
"""Writes the API reference of the package as HTML, with the types of its stubs.

usage: make_reference.py PACKAGE_FOLDER OUTPUT_FOLDER

PACKAGE_FOLDER is the built package; OUTPUT_FOLDER gets index.html and a page per module. The members of records, such
as `Report.run`, are known to the stub _records.pyi only: it takes the place of the module here.
"""
import pathlib
import shutil
import sys
import tempfile
import warnings

import pdoc
import pdoc.render


def copy_with_stubs(package, folder):
    """The package with records as their stub says. Returns its folder."""
    copy = folder / package.name
    shutil.copytree(package, copy, ignore=shutil.ignore_patterns("__pycache__"))
    text = (copy / "_records.pyi").read_text(encoding="utf-8")
    (copy / "_records.py").write_text("from __future__ import annotations\n" + text, encoding="utf-8")
    (copy / "_records.pyi").unlink()
    return copy


def main():
    package, output = (pathlib.Path(word).resolve() for word in sys.argv[1:3])
    with tempfile.TemporaryDirectory() as folder:
        copy = copy_with_stubs(package, pathlib.Path(folder))
        sys.path.insert(0, folder)
        pdoc.render.configure(docformat="google", show_source=False)
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            pdoc.pdoc(str(copy), output_directory=output)


if __name__ == "__main__":
    main()
