#!/usr/bin/env bash
# Builds for another machine in build-<machine>/ and runs tests there under an emulator.
#
# usage: tests/portability/check.sh aarch64|mingw [short|library|all]
#   short    the library; its binary interface and the reference cases, on aarch64 bit by bit (the default)
#   library  every test of the library
#   all      the command and its tests too
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
    short_tests=(golden_test)
    ;;
  mingw)
    require_packages "${mingw_packages[@]}"
    scripts/sysroot.sh amd64 build-mingw/sysroot "${headers[@]}"
    emulator=(env WINEDEBUG=-all "WINEPREFIX=$PWD/build-mingw/wine" /usr/lib/wine/wine64)
    # Its mathematical functions are others, so that the golden digests do not hold.
    short_tests=(reference_test)
    ;;
  *) echo "no such machine: $machine" >&2; exit 2 ;;
esac

host=OFF
[ "$extent" != all ] || host=ON
cmake --preset "$machine" -DORSOLVA_BUILD_HOST=$host ${ORSOLVA_CMAKE_OPTIONS:-}
if [ "$extent" = short ]; then
  cmake --build --preset "$machine" --target Orsolva_cbb old_host "${short_tests[@]}"
  ctest --preset "$machine" -R '^abi'
  for test in "${short_tests[@]}"; do "${emulator[@]}" "build-$machine/bin/$test"; done
  exit
fi
cmake --build --preset "$machine"
ctest --preset "$machine" -E "${ORSOLVA_LEAVE_OUT:-^$}"
