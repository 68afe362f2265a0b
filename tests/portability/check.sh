#!/usr/bin/env bash
# Builds for another machine in build-<machine>/ and runs what was built under an emulator.
#
# usage: tests/portability/check.sh aarch64|mingw [short|library|analysis|command]
#   short    the library; its binary interface and the reference cases, on aarch64 bit by bit (the default)
#   library  every test of the library
#   analysis the analysis of the command: its events and figures are, bit by bit, those of build/bin (not mingw)
#   command  the command: a simulated day and its reports are those of build/bin/orsolva
set -euo pipefail
cd "$(dirname "$0")/../.."
. scripts/packages.sh
machine=${1:?aarch64 or mingw}
extent=${2:-short}

headers=(nlohmann-json3-dev libfmt-dev libcli11-dev libtomlplusplus-dev)
case $machine in
  aarch64)
    require_packages "${aarch64_packages[@]}"
    scripts/sysroot.sh arm64 build-aarch64/sysroot zlib1g-dev libarchive-dev "${headers[@]}"
    emulator=(qemu-aarch64 -L build-aarch64/sysroot)
    ending=
    short_test=golden_test
    formats=(text json csv)
    ;;
  mingw)
    require_packages "${mingw_packages[@]}"
    scripts/sysroot.sh amd64 build-mingw/sysroot "${headers[@]}"
    emulator=(env WINEDEBUG=-all "WINEPREFIX=$PWD/build-mingw/wine" /usr/lib/wine/wine64)
    ending=.exe
    # The first start makes the prefix, which takes longer than ctest waits for a list of tests.
    mkdir -p build-mingw
    "${emulator[@]}" wineboot --init >/dev/null 2>&1 || { echo "wine does not start" >&2; exit 1; }
    # Its mathematical functions are others: golden digests and the last digits of JSON and CSV do not hold.
    short_test=reference_test
    formats=(text)
    ;;
  *) echo "no such machine: $machine" >&2; exit 2 ;;
esac

# Runs a program that was built for the machine.
there() { "${emulator[@]}" "build-$machine/bin/$1$ending" "${@:2}"; }

# The same files and the same reports, byte by byte.
compare_command() {
  local here=build/bin/orsolva folder=build-$machine/day
  [ -x "$here" ] || { echo "build the command of this machine first: scripts/demo" >&2; exit 1; }
  rm -rf "$folder"
  mkdir "$folder"
  there orsolva simulate --preset station-day --output "$folder/there" >/dev/null
  "$here" simulate --preset station-day --output "$folder/here" >/dev/null
  diff -r "$folder/here" "$folder/there"
  local format
  for format in "${formats[@]}"; do
    "$here" qc --$format=- "$folder"/here/*_MO.rnx "$folder"/here/*_MN.rnx >"$folder/here.$format"
    there orsolva qc --$format=- "$folder"/here/*_MO.rnx "$folder"/here/*_MN.rnx >"$folder/there.$format"
    diff "$folder/here.$format" "$folder/there.$format"
  done
  echo "$machine: the simulated day and its reports are those of this machine"
}

configure() { cmake --preset "$machine" "$@" ${ORSOLVA_CMAKE_OPTIONS:-}; }
build() { cmake --build --preset "$machine" "$@"; }
case $extent in
  short)
    configure -DORSOLVA_BUILD_HOST=OFF
    build --target Orsolva_cbb old_host $short_test
    ctest --preset "$machine" -R '^abi'
    there $short_test
    ;;
  library)
    configure -DORSOLVA_BUILD_HOST=OFF
    build
    ctest --preset "$machine"
    ;;
  analysis)
    [ -x build/bin/analysis_digest ] || { echo "build analysis_digest of this machine first" >&2; exit 1; }
    configure -DORSOLVA_BUILD_HOST=ON
    build --target analysis_digest
    diff <(build/bin/analysis_digest) <(there analysis_digest)
    echo "$machine: the events and figures of the analysis are those of this machine"
    ;;
  command)
    configure -DORSOLVA_BUILD_HOST=ON
    build --target orsolva
    compare_command
    ;;
  *) echo "no such extent: $extent" >&2; exit 2 ;;
esac
