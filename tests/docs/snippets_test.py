#!/usr/bin/env python3
"""The pages quote the examples as they are.

usage: snippets_test.py ROOT [--write]

A quotation is a fenced block after the line <!-- from FILE [NAME] -->. It shows the text between two comments
[NAME] of that file, without the indentation that its lines share. --write puts the present text there.
"""
import pathlib
import re
import sys
import textwrap

QUOTATION = re.compile(r"(<!-- from (\S+) \[(\w+)\] -->\n```\w*\n)(.*?)(?=^```$)", re.M | re.S)


def snippet(root, path, name):
    mark = re.compile(r"^ *(?://|/\*) \[" + name + r"\](?: \*/)?\n", re.M)
    parts = mark.split((root / path).read_text(encoding="utf-8"))
    if len(parts) != 3:
        raise SystemExit(f"{path}: {len(parts) - 1} comments [{name}] in place of 2")
    return textwrap.dedent(parts[1])


def check_page(root, page, write):
    text = page.read_text(encoding="utf-8")
    now = QUOTATION.sub(lambda found: found[1] + snippet(root, found[2], found[3]), text)
    if write:
        page.write_text(now, encoding="utf-8")
    elif now != text:
        print(f"{page.relative_to(root)}: a quotation differs from its source; snippets_test.py . --write updates it")
    return len(QUOTATION.findall(text)), now != text and not write


def main(root, *flags):
    root = pathlib.Path(root)
    pages = [root / "README.md", *sorted((root / "docs").rglob("*.md"))]
    outcomes = [check_page(root, page, "--write" in flags) for page in pages]
    quoted = sum(count for count, _ in outcomes)
    print(f"{quoted} quotations")
    return 1 if quoted == 0 or any(differs for _, differs in outcomes) else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
