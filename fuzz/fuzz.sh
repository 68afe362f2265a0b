#!/usr/bin/env bash
# Builds the fuzz targets with clang++ and runs each for a while, as many at a time as there are cores.
#
# usage: fuzz/fuzz.sh [SECONDS_EACH [TARGET...]]     (default 12 seconds, every target)
# Corpora grow in build-fuzz/corpus/<target>; a finding is left in build-fuzz/findings/<target>/. ORSOLVA_FUZZ_PRESET
# and ORSOLVA_FUZZ_BUILD name another preset with fuzz targets and its folder, as asan-ubsan and build-asan.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-12}
shift || true
targets=("$@")
[ ${#targets[@]} -gt 0 ] ||
  targets=(boundary_records analysis observation_reader crinex_decoder navigation_reader compressed_input
    config_file profile rtcm_stream sbf_recording scenario sp3_reader ubx_recording caster_text live_station stations_file
    http_request)
build=${ORSOLVA_FUZZ_BUILD:-build-fuzz}

cmake --preset "${ORSOLVA_FUZZ_PRESET:-fuzz}" -B "$build" >/dev/null
cmake --build "$build" --target "${targets[@]/#/fuzz_}"
shared=${ORSOLVA_SHARED:-../shared}/data
[ ! -d "$shared" ] || python3 fuzz/make_seeds.py "$shared" "$build/seeds"

dictionary_of() {
  case $1 in
    config_file | profile | scenario | stations_file) echo settings.dict ;;
    *) echo rinex.dict ;;
  esac
}

# fuzz TARGET  leaves its log in findings/<target>.log
fuzz() {
  local target=$1
  mkdir -p "$build/corpus/$target" "$build/seeds/$target" "$build/findings/$target"
  local folders=("$build/corpus/$target" "$build/seeds/$target" "fuzz/seeds/$target")
  local more
  for more in "fuzz/regressions/$target" "$build/fuzz/corpora/$target"; do
    [ ! -d "$more" ] || folders+=("$more")
  done
  # Weighing rare features takes a sixth of the time where a run is as short as here; no run uses more bytes.
  local options=(-max_len=20000)
  case $target in boundary_records | analysis) options=(-max_len=4096 -entropic=0) ;; esac
  "$build/bin/fuzz_$target" "${options[@]}" -max_total_time="$seconds" -timeout=60 -rss_limit_mb=2048 \
    -dict="fuzz/$(dictionary_of "$target")" -print_final_stats=1 -artifact_prefix="$build/findings/$target/" \
    "${folders[@]}" 2>"$build/findings/$target.log"
}

failed=0
at_a_time=$(nproc)
for ((first = 0; first < ${#targets[@]}; first += at_a_time)); do
  running=()
  for target in "${targets[@]:first:at_a_time}"; do
    fuzz "$target" &
    running+=("$!")
  done
  for pid in "${running[@]}"; do wait "$pid" || failed=1; done
  for target in "${targets[@]:first:at_a_time}"; do
    echo "== $target, $seconds s"
    grep -E 'stat::number_of_executed_units|DONE|ERROR|SUMMARY|does not hold|runtime error' \
      "$build/findings/$target.log" || true
  done
done
exit $failed
