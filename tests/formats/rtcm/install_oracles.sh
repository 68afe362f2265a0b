#!/usr/bin/env bash
# Installs the independent decoders of RTCM 3 that oracles.py compares with: pyrtcm (PyPI) and rtcm-rs (crates.io).
#
# usage: install_oracles.sh FOLDER     needs python3 with venv; rtcm-rs only where there is cargo, with Rust 1.66 or later
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
folder=$1
mkdir -p "$folder"
[ -x "$folder/python/bin/pip" ] || python3 -m venv "$folder/python"
"$folder/python/bin/pip" -q install pyrtcm==1.2.1
if ! command -v cargo >/dev/null; then
  echo "there is no cargo: rtcm-rs is not installed" >&2
  exit 0
fi
CARGO_TARGET_DIR="$folder/target" cargo build --quiet --release --locked --manifest-path "$here/oracle/Cargo.toml"
