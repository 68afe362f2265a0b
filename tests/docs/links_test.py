#!/usr/bin/env python3
"""Every link and every path that the documentation names leads somewhere.

usage: links_test.py ROOT

Checks the pages (Markdown at the top and below docs/): the target and the heading of a relative link, and each path of
the sources, in text and in code. Checks in all other sources that a page they refer to exists. A pattern such as
tests/real/*_test.cpp has to match a file. No entry of the changelog may be repeated. The README stays short.
"""
import pathlib
import re
import sys

TOPS = ("library", "host", "tests", "docs", "scripts", "bench", "fuzz", "examples", "cmake", "packaging")
SUFFIXES = {".h", ".hpp", ".c", ".cpp", ".py", ".sh", ".ts", ".md", ".txt", ".cmake", ".json", ".in", ".toml"}
# What someone reads before the first command; details have pages of their own.
README_MAX_LINES = 150
# Headers of the first release, kept as they were.
KEPT = "tests/abi/reference/"

LINK = re.compile(r"\]\(([^)\s]+)\)")
PATH = re.compile(r"(?<![\w/.~$}-])((?:" + "|".join(TOPS) + r")/[\w./*-]*)")
PAGE = re.compile(r"(?<![\w/.-])(docs/[\w./-]*\w)")
FENCE = re.compile(r"^```.*?^```", re.M | re.S)
HEADING = re.compile(r"^#+ +(.*?) *#*$", re.M)


def anchors_of(text):
    """Names under which the headings of a page are linked to."""
    plain = (re.sub(r"[^\w\- ]", "", heading.lower()) for heading in HEADING.findall(FENCE.sub("", text)))
    return {heading.replace(" ", "-") for heading in plain}


def check_link(page, target, problems):
    if re.match(r"[a-z]+:", target):
        return
    path, _, anchor = target.partition("#")
    file = page.parent / path if path else page
    if not file.exists():
        problems.append(f"links to {target}, which does not exist")
    elif anchor and anchor not in anchors_of(file.read_text(encoding="utf-8")):
        problems.append(f"links to {target}, but no heading there has this name")


def exists(root, path):
    return any(root.glob(path)) if "*" in path else (root / path).exists()


def problems_of_page(root, page):
    text = page.read_text(encoding="utf-8")
    problems = []
    for target in LINK.findall(FENCE.sub("", text)):
        check_link(page, target, problems)
    for path in PATH.findall(LINK.sub("]", text)):
        if not exists(root, path.rstrip(".")):
            problems.append(f"names {path}, which does not exist")
    return problems


def problems_of_source(root, source):
    text = source.read_text(encoding="utf-8", errors="replace")
    return [f"refers to {path}, which does not exist" for path in PAGE.findall(text) if not (root / path).exists()]


def problems_of_changelog(page):
    """The changelog merges by union, which may repeat entries."""
    entries = [line for line in page.read_text(encoding="utf-8").splitlines() if line.startswith("- ")]
    return [f"repeats the entry {entry[:60]}" for entry in sorted(set(entries)) if entries.count(entry) > 1]


def problems_of_readme(page):
    lines = len(page.read_text(encoding="utf-8").splitlines())
    return [f"has {lines} lines, at most {README_MAX_LINES}"] if lines > README_MAX_LINES else []


def sources_of(root):
    for top in TOPS:
        for file in sorted((root / top).rglob("*")):
            name = file.relative_to(root).as_posix()
            hidden = "node_modules/" in name or "/dist/" in name or name.startswith((KEPT, "docs/"))
            if not hidden and file.suffix in SUFFIXES and file.is_file():
                yield file


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    pages = sorted(root.glob("*.md")) + sorted((root / "docs").rglob("*.md"))
    found = [(page, problem) for page in pages for problem in problems_of_page(root, page)]
    found += [(root / "CHANGELOG.md", problem) for problem in problems_of_changelog(root / "CHANGELOG.md")]
    found += [(root / "README.md", problem) for problem in problems_of_readme(root / "README.md")]
    found += [(source, problem) for source in sources_of(root) for problem in problems_of_source(root, source)]
    for file, problem in found:
        print(f"{file.relative_to(root)}: {problem}")
    if len(pages) < 10:
        found.append(None)
        print(f"only {len(pages)} pages found below {root}")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
