"""The Grafana board asks for metrics and labels that are served, in expressions that Prometheus reads.

usage: board_test.py SAMPLE_SERVER BOARD
"""
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import urllib.request

SKIPPED = 77
NAME = re.compile(r"\borsolva_\w+")
SELECTOR = re.compile(r"\b(orsolva_\w+)\{([^}]*)\}")


def served(server):
    """Names of the samples, each with the labels that it has."""
    serving = subprocess.Popen([server], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    try:
        with urllib.request.urlopen(serving.stdout.readline().strip() + "metrics", timeout=10) as answer:
            text = answer.read().decode()
    finally:
        serving.stdin.close()
        serving.wait(timeout=20)
    labels = {}
    for name, pairs in re.findall(r"^(orsolva_\w+)(?:\{(.*)\})? ", text, re.M):
        labels.setdefault(name, set()).update(re.findall(r'(\w+)="', pairs))
    return labels


def main():
    server, board_file = sys.argv[1:]
    board = json.loads(pathlib.Path(board_file).read_text(encoding="utf-8"))
    expressions = [target["expr"] for panel in board["panels"] for target in panel["targets"]]
    labels = served(server)
    assert len(expressions) >= 12
    for expression in expressions + [variable["definition"] for variable in board["templating"]["list"][1:]]:
        for name in NAME.findall(expression):
            assert name in labels, f"{name} is not served: {expression}"
        for name, selectors in SELECTOR.findall(expression):
            wanted = set(re.findall(r"(\w+)=", selectors))
            assert wanted <= labels[name], f"{name} has no {wanted - labels[name]}"
    # Rectangles of the board do not overlap.
    taken = set()
    for place in (panel["gridPos"] for panel in board["panels"]):
        cells = {(x, y) for x in range(place["x"], place["x"] + place["w"]) for y in range(place["y"], place["y"] + place["h"])}
        assert place["x"] + place["w"] <= 24 and not cells & taken
        taken |= cells
    if shutil.which("promtool") is None:
        print("skipped: there is no promtool (Debian package prometheus)")
        sys.exit(1 if os.environ.get("ORSOLVA_NO_SKIPS") else SKIPPED)
    rules = [{"record": f"board:{i}", "expr": e.replace("$station", ".*").replace("$system", ".*")} for i, e in enumerate(expressions)]
    with tempfile.NamedTemporaryFile("w", suffix=".yml") as file:
        json.dump({"groups": [{"name": "board", "rules": rules}]}, file)  # JSON is YAML
        file.flush()
        done = subprocess.run(["promtool", "check", "rules", file.name], capture_output=True, text=True)
    assert done.returncode == 0, done.stdout + done.stderr
    print(f"{len(expressions)} expressions, {len(labels)} metrics served")


if __name__ == "__main__":
    main()
