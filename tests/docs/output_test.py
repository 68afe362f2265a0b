#!/usr/bin/env python3
"""The output that the pages quote is what the program prints.

usage: output_test.py ROOT PROGRAM DATA_FOLDER [--write]

A quotation is a fenced block after the line <!-- output of NAME -->, with NAME out of RUNS. Its lines, except those that
begin with "$" and "...", have to appear in the output in the same order. --write replaces each line by the line of the
output that begins alike. Exits 77 (skipped) when a quotation needs files of DATA_FOLDER that are absent, and 1 where
ORSOLVA_NO_SKIPS is set.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

QUOTATION = re.compile(r"(<!-- output of ([\w-]+) -->\n```\n)(.*?)(?=^```$)", re.M | re.S)
DAY = ("ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz", "ESBC00DNK_R_20201770000_01D_MN.rnx.gz")
ALIKE = 11  # characters at the beginning of a line that name its row


def run(program, *arguments):
    done = subprocess.run([program, *map(str, arguments)], stdout=subprocess.PIPE, check=True, text=True)
    return done.stdout


def simulated(program, folder):
    """Observations, navigation and truth of the demo's day."""
    if not (folder / "truth.json").exists():
        run(program, "simulate", "--preset", "station-day", "--output", folder)
    return next(folder.glob("*_MO.rnx")), next(folder.glob("*_MN.rnx")), folder / "truth.json"


def demo_report(program, folder, _):
    observations, navigation, _ = simulated(program, folder)
    return run(program, "qc", "--no-config", "--width", 80, observations, navigation)


def demo_compare(program, folder, _):
    observations, navigation, truth = simulated(program, folder)
    detail, report = folder / "detail.csv.gz", folder / "report.json"
    report.write_text(run(program, "qc", "--no-config", "--quiet", "--json", "--detail", detail, observations, navigation))
    return run(program, "compare", report, truth, "--detail", detail)


def day_report(program, _, data):
    files = [data / name for name in DAY]
    if not all(file.exists() for file in files):
        return None
    return run(program, "qc", "--no-config", "--width", 80, *files)


RUNS = {"demo-report": demo_report, "demo-compare": demo_compare, "day-report": day_report}


def is_quoted(line):
    return bool(line.strip()) and not line.startswith(("$", "..."))


def missing_lines(block, output):
    """Quoted lines that do not follow the one before in the output."""
    lines, at = [line.rstrip() for line in output.splitlines()], 0
    for quoted in filter(is_quoted, block.splitlines()):
        try:
            at = lines.index(quoted.rstrip(), at) + 1
        except ValueError:
            yield quoted


def rewritten(block, output):
    lines, at, result = [line.rstrip() for line in output.splitlines()], 0, []
    for quoted in block.splitlines():
        if is_quoted(quoted):
            found = next((i for i in range(at, len(lines)) if lines[i][:ALIKE] == quoted[:ALIKE]), None)
            if found is not None:
                quoted, at = lines[found], found + 1
        result.append(quoted)
    return "\n".join(result) + "\n"


def main():
    root, program, data = pathlib.Path(sys.argv[1]), sys.argv[2], pathlib.Path(sys.argv[3])
    failed, skipped, count = False, False, 0
    with tempfile.TemporaryDirectory() as work:
        outputs = {}
        for page in [root / "README.md", *sorted((root / "docs").rglob("*.md"))]:
            text = page.read_text(encoding="utf-8")
            for head, name, block in QUOTATION.findall(text):
                if name not in outputs:
                    outputs[name] = RUNS[name](program, pathlib.Path(work), data)
                count += 1
                if outputs[name] is None:
                    skipped = True
                elif "--write" in sys.argv:
                    text = text.replace(head + block, head + rewritten(block, outputs[name]))
                    page.write_text(text, encoding="utf-8")
                for line in missing_lines(block, outputs[name]) if outputs[name] and "--write" not in sys.argv else ():
                    failed = True
                    print(f"{page.relative_to(root)}: {name} does not print, or not here: {line}")
    print(f"{count} quotations")
    if failed or not count or (skipped and os.environ.get("ORSOLVA_NO_SKIPS")):
        sys.exit(1)
    sys.exit(77 if skipped else 0)


if __name__ == "__main__":
    main()
