#!/usr/bin/env bash
# Runs the built program under valgrind's memcheck: no invalid access, no use of unset memory, nothing left over.
#
# usage: tests/host/memcheck.sh [BUILD FOLDER [day]]   (default: build; ten minutes of data, with "day" 24 hours)
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$(cd "$root" && cd "${1:-build}" && pwd)
data=${ORSOLVA_SHARED:-$root/../shared}/data
files=("$data/KMS300DNK_R_20221591000_01H_30S_MO.crx" "$data/KMS300DNK_R_20221591000_01H_MN.rnx.gz")
[ "${2:-}" != day ] ||
  files=("$data/ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz" "$data/ESBC00DNK_R_20201770000_01D_MN.rnx.gz")
if [ ! -e "${files[0]}" ]; then
  echo "the shared data folder is missing next to the checkout: no data" >&2
  exit 1
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

valgrind --quiet --error-exitcode=9 --leak-check=full --show-leak-kinds=all --errors-for-leak-kinds=all \
  "$build/bin/orsolva" qc --no-config --quiet --sats --text="$work/r.txt" --json="$work/r.json" \
  --detail="$work/d.csv.gz" --html="$work/r.html" --profile station "${files[@]}" || code=$?
# 3: a figure of the station is beyond the profile's limit, which is no error.
[ "${code:-0}" -eq 0 ] || [ "${code:-0}" -eq 3 ]
echo "memcheck: no error and nothing left over, $(basename "${files[0]}")"
