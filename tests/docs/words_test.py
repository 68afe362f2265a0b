#!/usr/bin/env python3
"""Words that a native speaker of the field would not use do not come back.

usage: words_test.py ROOT [--list WORD]

Counts the words below in the pages, in comments and in messages. A count may fall, never rise: lower its limit with it.
A limit above 0 allows for ordinary uses of the word. --list prints the places of one word.
"""
import pathlib
import re
import sys

# word: (what to say instead, pattern, limit)
WORDS = {
    "told": ("detected, notified, given", r"told", 1),
    "tells": ("says, shows, reports", r"tells?", 1),
    "stands": ("is, appears, is listed in", r"stands?(?! (?:for|alone)\b)", 2),
    "beside": ("next to, besides, with", r"beside", 6),
    "anew": ("again, restarted", r"anew", 0),
    "met": ("found, seen", r"(?<!\| )met", 1),
    "lays": ("compares with", r"lays", 3),
    "packed": ("compressed", r"(?:un)?pack(?:ed|ing|s)?", 6),
    "compact form": ("CRINEX, Hatanaka-compressed", r"compact (?:forms?|files?|RINEX files?)", 0),
    "floors": ("layers", r"floors", 0),
    "mended": ("fixed", r"mend(?:ed|s)?", 0),
    "road": ("path", r"road", 1),
    "roof": ("top layer", r"roof", 0),
    "seat": ("interface", r"seat", 0),
    "answers": ("returns", r"answer(?:s|ed)", 5),
    "there whole": ("written atomically", r"whole or not at all", 0),
    "runs backwards": ("goes backwards", r"(?:run|runs|running) backwards", 0),
    "complaint": ("error, message", r"complaints?", 0),
    "as ever": ("as usual", r"as ever", 0),
}
TOPS = ("library", "host", "tests", "docs", "scripts", "bench", "fuzz", "examples", "cmake", "packaging", "python",
        ".ci")
# Kept as they were: headers of the first release, generated pages, licences of others.
SKIPPED = re.compile(r"^tests/abi/reference/|/dist/|node_modules/|THIRD_PARTY|^tests/docs/words_test\.py$")

FENCE = re.compile(r"^```.*?^```", re.M | re.S)
C_TEXT = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"', re.S)
SCRIPT_TEXT = re.compile(r'"""(?:.*?)"""|#[^\n]*|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'', re.S)
TOML_TEXT = re.compile(r"'''(?:.*?)'''|" + SCRIPT_TEXT.pattern, re.S)
KINDS = {".md": None, ".h": C_TEXT, ".hpp": C_TEXT, ".c": C_TEXT, ".cpp": C_TEXT, ".ts": C_TEXT, ".py": SCRIPT_TEXT,
         ".sh": SCRIPT_TEXT, ".cmake": SCRIPT_TEXT, ".txt": SCRIPT_TEXT, ".toml": TOML_TEXT, ".in": None}
# Without an ending, as commands are named.
SCRIPTS = re.compile(r"^(?:scripts|\.ci)/[^.]+$")


def files_of(root):
    yield from sorted(root.glob("*.md"))
    for top in TOPS:
        for file in sorted((root / top).rglob("*")):
            name = file.relative_to(root).as_posix()
            known = file.suffix in KINDS or SCRIPTS.search(name)
            if known and not SKIPPED.search(name) and file.is_file():
                yield file


def texts_of(file):
    """Pieces of prose with their offsets in the file."""
    text = file.read_text(encoding="utf-8", errors="replace")
    pattern = KINDS.get(file.suffix, SCRIPT_TEXT)
    if pattern is None:
        yield 0, FENCE.sub(lambda fence: re.sub(r"[^\n]", " ", fence.group()), text), text
        return
    for piece in pattern.finditer(text):
        yield piece.start(), piece.group(), text


def places_of(root):
    """word -> list of 'file:line: text'."""
    patterns = {word: re.compile(r"\b" + pattern + r"\b", re.I) for word, (_, pattern, _) in WORDS.items()}
    places = {word: [] for word in WORDS}
    for file in files_of(root):
        name = file.relative_to(root).as_posix()
        for start, piece, text in texts_of(file):
            for word, pattern in patterns.items():
                for found in pattern.finditer(piece):
                    at = start + found.start()
                    line = text[text.rfind("\n", 0, at) + 1:].split("\n", 1)[0].strip()
                    places[word].append(f"{name}:{text.count(chr(10), 0, at) + 1}: {line}")
    return places


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    places = places_of(root)
    if len(sys.argv) > 3 and sys.argv[2] == "--list":
        print("\n".join(places[sys.argv[3]]))
        return
    failed = False
    for word, (better, _, limit) in WORDS.items():
        count = len(places[word])
        if count > limit:
            failed = True
            print(f'"{word}" {count} times, at most {limit} allowed: say {better}')
            print("\n".join("  " + place for place in places[word][-5:]))
        elif count < limit:
            print(f'"{word}" {count} times: lower its limit from {limit}')
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
