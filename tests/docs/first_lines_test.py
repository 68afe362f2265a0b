#!/usr/bin/env python3
"""The first lines of every output name what is wrong with a file, and docs/user/first-lines.md is the table of it.

usage: first_lines_test.py ROOT PROGRAM DATA_FOLDER [--write]

Judges the real files of DATA_FOLDER, copies of them with a fault put in, and the presets of the simulator, in text, JSON,
CSV, lines for grep, page, network table and index. The words of the fault have to be in the first five lines of each (of
a table, of its row and what is below it), and a file without a fault has to be called good. --write writes the table. Exits 77 (skipped) without the data, and 1 where ORSOLVA_NO_SKIPS is set.
"""
import concurrent.futures
import csv
import html
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

LINES = 5
NO_NAVIGATION = r"No broadcast records"
# The real files: what is known of them, and the words that have to be said of it.
REAL = {
    "ACOR00ESP_R_20213550000_01D_30S_MO.crx": ("no navigation; ends after 12 minutes of its day",
                                               [NO_NAVIGATION, r"[Ll]ast epoch.* 00:12:00"]),
    "ACOR00ESP_R_20213550000_01D_30S_MO.rnx": ("the same, plain", [NO_NAVIGATION, r"[Ll]ast epoch.* 00:12:00"]),
    "AJAC3550.21D": ("no navigation; two epochs", [NO_NAVIGATION]),
    "AJAC3550.21O": ("the same, plain", [NO_NAVIGATION]),
    "ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz": ("a third of E6 missing", [r"^Verdict: good", r"most on E 6C"]),
    "GRAS00FRA_R_20223151700_15M_01S_MO.crx.gz": ("no navigation", [NO_NAVIGATION]),
    "KMS300DNK_R_20221591000_01H_30S_MO.crx": ("ends after nine minutes of its hour", [r"[Ll]ast epoch.* 10:09:00"]),
    "SEPT078M.21O": ("none", [r"^Verdict: good"]),
    "pdel0010.21d": ("no navigation; ends after 33 minutes of its day", [NO_NAVIGATION, r"[Ll]ast epoch.* 00:33:00"]),
    "pdel0010.21o": ("the same, plain", [NO_NAVIGATION, r"[Ll]ast epoch.* 00:33:00"]),
    "zegv0010.21d": ("no navigation; ends after nine minutes of its day", [NO_NAVIGATION, r"[Ll]ast epoch.* 00:09:00"]),
    "zegv0010.21o": ("the same, plain", [NO_NAVIGATION, r"[Ll]ast epoch.* 00:09:00"]),
}
# Presets of the simulator.
PRESETS = {
    "quiet": ("none", [r"^Verdict: good", r"no cycle slip"]),
    "galileo-bands": ("none", [r"^Verdict: good", r"no cycle slip"]),
    "thermal": ("none; noise by signal strength", [r"^Verdict: good", r"no cycle slip"]),
    "steered-clock": ("none; a steered clock", [r"^Verdict: good", r"no cycle slip"]),
    "station-day": ("8 slips, 12 epochs and 4 minutes missing, outages, 3 code jumps, header 25 m off",
                    [r"21 of 2880 epochs missing", r"8 cycle slips|25 m from the header"]),
    "slips": ("80 slips", [r"80 cycle slips", r"20 of the cycle slips by half cycles"]),
    "storm": ("an ionospheric storm", [r"Ionosphere disturbed"]),
    "scintillation": ("a disturbed ionosphere", [r"Ionosphere disturbed"]),
    "polar": ("a disturbed ionosphere, slips", [r"Ionosphere disturbed", r"cycle slips"]),
    "gaps": ("missing epochs, outages of single satellites and signals",
             [r"89 of 2880 epochs missing", r"further observations missing"]),
    "clock": ("a receiver clock reset by milliseconds", [r"9 receiver clock resets"]),
    "clock-jumps": ("clock jumps, two of the codes alone, a power failure",
                    [r"1 power failure", r"2 jumps of the codes' clock"]),
    "half-cycles": ("half-cycle slips", [r"of the cycle slips by half cycles"]),
    "satellite-clocks": ("none of the station; glitches of satellite clocks, which the findings count", [r"^Verdict: good"]),
    "kinematic": ("a moving antenna, 10 slips", [r"[Aa]ntenna moves", r"10 cycle slips"]),
}
QUARTER = ("SEPT078M.21O", "SEPT078M.21P")


def changed(label, old, new):
    """A change of the header line of a label."""
    return lambda text: re.sub(rf"(?m)^.*{label} *$", lambda m: m.group().replace(old, new, 1), text, count=1)


def only_galileo(text):
    """The header and the records of Galileo of navigation of version 3."""
    head, end, body = text.partition("END OF HEADER")
    first, _, records = body.partition("\n")
    return head + end + first + "\n" + "".join(r for r in re.split(r"(?m)^(?=[A-Z]\d\d )", records) if r[:1] == "E")


# The quarter of an hour at 1 s, with a fault put into its observations or navigation.
MADE = {
    "interval of the header 15 s": (changed("INTERVAL", " 1.000", "15.000"), None, [r"Interval 1 s, header says 15 s"]),
    "position of the header 2,109 m off": (changed("APPROX POSITION XYZ", "3668678.1749", "3670787.1749"), None,
                                           [r"Position 2\d\d\d m from the header's"]),
    "marker of another station": (changed("MARKER NAME", "SEPT", "ABCD"), None, [r"[Mm]arker: stated ABCD, found SEPT"]),
    "records of Galileo only": (None, only_galileo, [r"17 of 26 satellites not judged"]),
    "cut off within a line": (lambda text: text[: len(text) // 2 - 20], None, [r"Damaged file|[Ll]ast epoch.* 12:07:38"]),
}


def outputs(program, work, files):
    """What the program writes as text, JSON, CSV, lines for grep, page, network table and index."""
    names = {name: work / f"out.{name}" for name in ("text", "json", "csv", "sum", "html")}
    tables = {"table": work / "table.txt", "index": work / "index.html"}
    single = [f"--{name}={path}" for name, path in names.items()]
    for options in ([*single, f"--network={tables['table']}"], [f"--network={tables['index']}"]):
        subprocess.run([program, "qc", "--no-config", "--quiet", *options, *map(str, files)],
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
    return {name: path.read_text(encoding="utf-8") for name, path in (names | tables).items()}


def description(lines):
    """That of a page, which has to be in its first lines; what is drawn is tested in tests/web."""
    return html.unescape(re.search(r'<meta name="description" content="([^"]*)">', "\n".join(lines)).group(1))


def row(lines):
    """The row of the only file in a table: its state, its counts in words, and what is said below it."""
    assert lines[1].split()[:2] == ["File", "State"], lines
    state, _, missing, slips, _, _ = re.fullmatch(r".{30}(.+?)" + 5 * r" +(\S+)", lines[2]).groups()
    below = " ".join(line.strip() for line in lines[3:])
    counted = f"{'no' if slips == '0' else slips} cycle slip{'' if slips == '0' else 's'}"
    return f"Verdict: {state} - {missing} epochs missing, {counted}; {below}"


def first_lines(name, text):
    """The first lines as they are read: those of wrapped text in one, and without the marks of CSV and JSON."""
    lines = text.splitlines()[:LINES]
    if name == "text":
        assert lines[1].startswith("Verdict: "), lines
        end = lines.index("") if "" in lines else len(lines)
        return " ".join(line.strip() for line in lines[1:end])
    if name == "csv":
        return "Verdict: " + next(csv.DictReader(lines))["value"]
    if name == "json":
        verdict = json.loads(text)["verdict"]
        assert json.dumps(verdict["text"], ensure_ascii=False) in lines[4], lines
        return f"Verdict: {verdict['grade']} - {verdict['text']}"
    if name == "html":
        return "Verdict: " + description(lines).split(": ", 1)[1]
    if name == "index":
        return "Verdict: " + description(lines).split("; ", 1)[1].split(": ", 1)[1]
    if name == "table":
        return row(text.splitlines()[: 2 + LINES])
    return "Verdict: " + lines[0].split(" ", 2)[2]


def judged(program, work, case, files, words):
    """The verdict of a case, after a look at every output."""
    with tempfile.TemporaryDirectory(dir=work) as folder:
        texts = outputs(program, pathlib.Path(folder), files)
    for name, text in texts.items():
        said = first_lines(name, text)
        if name in ("table", "index"):
            said = said.replace("Verdict: ERROR", "Verdict: poor")
        for pattern in words:
            assert re.search(pattern, said), f"{case}: {name} does not say '{pattern}': {said}"
    return first_lines("csv", texts["csv"])


def real_case(program, data, work, name):
    fault, words = REAL[name]
    return name, fault, judged(program, work, name, [data / name], words)


def made_case(program, data, work, fault):
    observations, navigation, words = MADE[fault]
    folder = work / fault.replace(" ", "_").replace(",", "")
    folder.mkdir()
    for name, change in zip(QUARTER, (observations, navigation)):
        text = (data / name).read_text(encoding="latin-1")
        new = change(text) if change else text
        assert change is None or new != text, fault
        (folder / name).write_text(new, encoding="latin-1")
    return QUARTER[0], fault, judged(program, work, fault, [folder / name for name in QUARTER], words)


def preset_case(program, work, name):
    fault, words = PRESETS[name]
    folder = work / name
    subprocess.run([program, "simulate", "--preset", name, "--output", str(folder)], check=True, stdout=subprocess.DEVNULL)
    files = [next(folder.glob("*_MO.rnx")), next(folder.glob("*_MN.rnx"))]
    return f"`simulate --preset {name}`", fault, judged(program, work, name, files, words)


def table(rows):
    lines = ["| file | known fault | the verdict |", "|---|---|---|"]
    return "\n".join(lines + [f"| {file} | {fault} | {said.removeprefix('Verdict: ')} |" for file, fault, said in rows]) + "\n"


def main():
    root, program, data = pathlib.Path(sys.argv[1]), sys.argv[2], pathlib.Path(sys.argv[3])
    if not all((data / name).exists() for name in (*REAL, *QUARTER)):
        print("no data in", data)
        sys.exit(1 if os.environ.get("ORSOLVA_NO_SKIPS") else 77)
    with tempfile.TemporaryDirectory() as name, concurrent.futures.ThreadPoolExecutor(2) as pool:
        work = pathlib.Path(name)
        cases = [pool.submit(real_case, program, data, work, name) for name in REAL]
        cases += [pool.submit(made_case, program, data, work, fault) for fault in MADE]
        cases += [pool.submit(preset_case, program, work, name) for name in PRESETS]
        failed, rows = [], []
        for case in cases:
            try:
                rows.append(case.result())
            except AssertionError as error:
                failed.append(str(error))
    print(*failed, sep="\n")
    page = root / "docs" / "user" / "first-lines.md"
    text = page.read_text(encoding="utf-8")
    head, _, kept = text.partition("| file | known fault")
    if "--write" in sys.argv and not failed:
        page.write_text(head + table(rows), encoding="utf-8")
    elif not failed and "| file | known fault" + kept != table(rows):
        failed.append("docs/user/first-lines.md is not what the program says: run this test with --write")
        print(failed[-1])
    print(f"{len(rows)} cases said right, {len(failed)} not")
    sys.exit(bool(failed))


main()
