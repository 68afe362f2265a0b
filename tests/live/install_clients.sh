#!/usr/bin/env bash
# Installs what the tests of live streams compare with: Prometheus' own client library, which reads the metrics, and
# pygnssutils, whose caster serves a stream (both from PyPI).
#
# usage: install_clients.sh FOLDER     needs python3 with venv
set -euo pipefail
folder=$1
[ -x "$folder/bin/pip" ] || python3 -m venv "$folder"
"$folder/bin/pip" -q --disable-pip-version-check install prometheus-client==0.26.0 pygnssutils==1.3.1
