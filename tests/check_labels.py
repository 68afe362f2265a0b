#!/usr/bin/env python3
"""Checks that every test has one of the five labels, and one only.

usage: check_labels.py CTEST BUILD_FOLDER
"""
import json
import subprocess
import sys

LABELS = {"unit", "property", "truth", "host", "slow"}


def labels_of(test):
    values = [p["value"] for p in test.get("properties", []) if p["name"] == "LABELS"]
    return values[0] if values else []


listing = subprocess.run([sys.argv[1], "--test-dir", sys.argv[2], "--show-only=json-v1"], check=True,
                         stdout=subprocess.PIPE)
tests = json.loads(listing.stdout)["tests"]
wrong = [(t["name"], labels_of(t)) for t in tests if len(labels_of(t)) != 1 or not LABELS.issuperset(labels_of(t))]
for name, labels in wrong:
    print(f"{name}: labels {labels}, expected one of {sorted(LABELS)}")
print(f"{len(tests)} tests")
sys.exit(1 if wrong or not tests else 0)
