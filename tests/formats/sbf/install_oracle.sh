#!/usr/bin/env bash
# Installs the independent parser of SBF that oracle.py compares with: pysbf2 (PyPI).
#
# usage: install_oracle.sh FOLDER     needs python3 with venv
set -euo pipefail
folder=$1
mkdir -p "$folder"
[ -x "$folder/python/bin/pip" ] || python3 -m venv "$folder/python"
"$folder/python/bin/pip" -q install pysbf2==1.0.7
