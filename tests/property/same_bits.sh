#!/usr/bin/env bash
# Compares the digests of the library's results and of the analysis' events and figures of optimised builds with
# those of unoptimised ones made here by the same compilers.
#
# usage: tests/property/same_bits.sh BUILD...
set -euo pipefail
cd "$(dirname "$0")/../.."
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

expected=""
compare() {  # NAME FOLDER_OF_PROGRAMS
  local got
  got=$("$2/result_digest" && "$2/analysis_digest")
  echo "$1"
  echo "$got"
  if [ -z "$expected" ]; then expected=$got; fi
  if [ "$got" != "$expected" ]; then
    echo "same_bits: $1 gives other bits" >&2
    exit 1
  fi
}

for build in "$@"; do
  compare "$build" "$build/bin"
  compiler=$(sed -n 's/^CMAKE_CXX_COMPILER:[^=]*=//p' "$build/CMakeCache.txt")
  unoptimised=$scratch/$(basename "$build")
  cmake -S . -B "$unoptimised" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0 \
    -DORSOLVA_UNITY=all -DORSOLVA_PRECOMPILE=ON -DCMAKE_CXX_COMPILER="$compiler" >/dev/null
  cmake --build "$unoptimised" --target result_digest analysis_digest >/dev/null
  compare "$build -O0" "$unoptimised/bin"
done
echo "same bits in all builds"
