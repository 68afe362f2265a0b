#!/usr/bin/env bash
# Reduces the corpus of fuzz targets to the smallest inputs that reach as much, and keeps it as
# fuzz/seeds/<target>.tar.xz, without those that repeat values of the real files. Build the targets first:
# fuzz/fuzz.sh.
#
# usage: fuzz/minimise.sh [TARGET...]      (default: every target with a corpus)
# ORSOLVA_FUZZ_CORPORA names the folder of corpora, by default build-fuzz/corpus; ORSOLVA_SHARED the folder above
# that of the real files, by default ../shared.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${ORSOLVA_FUZZ_BUILD:-build-fuzz}
corpora=${ORSOLVA_FUZZ_CORPORA:-$build/corpus}
real=${ORSOLVA_SHARED:-../shared}/data
[ -d "$real" ] || { echo "$real is not there: inputs cannot be compared with the real files" >&2; exit 1; }
targets=("$@")
[ ${#targets[@]} -gt 0 ] || mapfile -t targets < <(cd "$corpora" && ls)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

for target in "${targets[@]}"; do
  kept=$scratch/$target
  mkdir "$kept"
  folders=("fuzz/seeds/$target" "$corpora/$target")
  [ ! -d "$build/fuzz/corpora/$target" ] || folders+=("$build/fuzz/corpora/$target")
  "$build/bin/fuzz_$target" -merge=1 -max_len=4096 "$kept" "${folders[@]}" >"$scratch/log" 2>&1 ||
    { cat "$scratch/log" >&2; exit 1; }
  python3 fuzz/drop_real_values.py "$real" "$kept"
  tar c --sort=name --mtime=@0 --owner=0 --group=0 --numeric-owner --mode=644 -C "$kept" . |
    xz -9e >"fuzz/seeds/$target.tar.xz"
  echo "$target: $(find "$kept" -type f | wc -l) inputs, $(stat -c %s "fuzz/seeds/$target.tar.xz") bytes"
done
