#!/usr/bin/env bash
# Runs the command over many files on several threads; for a build with the thread sanitizer.
#
# usage: tests/host/threads.sh BUILD_FOLDER    (the program is built there already)
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
program=$(cd "$root" && cd "$1" && pwd)/bin/orsolva
data=${ORSOLVA_SHARED:-$root/../shared}/data
if [ ! -e "$data/SEPT078M.21O" ]; then
  echo "the shared data folder is missing next to the checkout: no observations" >&2
  exit 1
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Five files: good, shortened, damaged in the middle, and one that is none.
mkdir "$work/in"
cp "$data/SEPT078M.21O" "$work/in/SEPA078M.21O"
head -c 400000 "$data/SEPT078M.21O" >"$work/in/SEPB078M.21O"
head -c 300000 "$data/SEPT078M.21O" >"$work/in/SEPC078M.21O"
{ head -c 300000 "$data/SEPT078M.21O" && echo '> 2021 13 99 nonsense'; } >"$work/in/SEPD078M.21O"
echo nothing >"$work/in/SEPE078M.21O"
cp "$data/SEPT078M.21P" "$work/in"

# run NAME CODE ARGUMENT...  the run ends with the code, and the sanitizer (66) has nothing to say
run() {
  local name=$1 code=$2 got=0
  shift 2
  TSAN_OPTIONS="exitcode=66 ${TSAN_OPTIONS:-}" "$program" qc --no-config --jobs 3 "$@" \
    >"$work/$name.out" 2>"$work/$name.err" || got=$?
  if [ "$got" -ne "$code" ] || grep -q ThreadSanitizer "$work/$name.err"; then
    echo "$name: exit code $got, expected $code" >&2
    cat "$work/$name.err" >&2
    exit 1
  fi
  echo "$name: good"
}

run "shared navigation, every output" 1 "$work/in" --nav "$work/in/SEPT078M.21P" --verbose --profile network \
  --output "$work/reports" --formats text,json,csv,sum,html,detail
run "navigation next to each file" 1 "$work"/in/SEP[BCE]078M.21O --json
run "navigation that cannot be read" 1 "$work"/in/SEP[BC]078M.21O --nav "$work/none.21P" --sum
[ "$(find "$work/reports" -name '*.html' | wc -l)" -eq 5 ]
