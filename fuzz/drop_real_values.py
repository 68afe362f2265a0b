#!/usr/bin/env python3
"""Removes the inputs of a corpus that repeat values of the real files, which must not be committed, not even in pieces.

usage: drop_real_values.py DATA_FOLDER CORPUS_FOLDER     (prints how many were removed)

An input repeats a real file when it has 20 bytes in a row, at least 8 of them digits and 6 different, that occur in a file
of DATA_FOLDER. Files and inputs are compared as they are and decompressed.
"""
import pathlib
import sys
import zlib

import make_seeds

LENGTH = 20
DIGITS = 8
DIFFERENT = 6
IS_DIGIT = bytes(0x30 <= byte <= 0x39 for byte in range(256))
GZIP_MAGIC = b"\x1f\x8b\x08"


def windows_of(data):
    """The runs of LENGTH bytes that are values: many digits, and not the same few again and again."""
    flags = data.translate(IS_DIGIT)
    digits = sum(flags[:LENGTH])
    for at in range(len(data) - LENGTH + 1):
        if at > 0:
            digits += flags[at + LENGTH - 1] - flags[at - 1]
        if digits >= DIGITS:
            window = data[at : at + LENGTH]
            if len(set(window)) >= DIFFERENT:
                yield window


def texts_of(data):
    """The bytes themselves and what is compressed in them, as far as it can be decompressed."""
    yield data
    at = data.find(GZIP_MAGIC)
    while at >= 0:
        try:
            yield zlib.decompressobj(wbits=31).decompress(data[at:], 1 << 20)
        except zlib.error:
            pass
        at = data.find(GZIP_MAGIC, at + 1)


def inputs_of_windows(corpus):
    inputs = {}
    for path in sorted(path for path in corpus.rglob("*") if path.is_file()):
        for text in texts_of(path.read_bytes()):
            for window in windows_of(text):
                inputs.setdefault(window, set()).add(path)
    return inputs


def repeating(data_folder, corpus):
    inputs = inputs_of_windows(corpus)
    found = set()
    files = sorted(path for path in data_folder.iterdir() if path.is_file())
    if not files:
        sys.exit(f"{data_folder} has no files")
    for path in files:
        data = make_seeds.text_of(path)
        for at in range(len(data) - LENGTH + 1):
            found |= inputs.get(data[at : at + LENGTH], frozenset())
    return found


def main(data_folder, corpus_folder):
    dropped = repeating(pathlib.Path(data_folder), pathlib.Path(corpus_folder))
    for path in dropped:
        path.unlink()
    print(f"{len(dropped)} inputs repeat values of real files")


if __name__ == "__main__":
    main(*sys.argv[1:])
