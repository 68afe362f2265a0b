# Sourced by run: steps in chains that run at the same time, and a table of what they took.
# $logs is the folder of what each step said, $scratch that of temporary files.

file_of() { printf '%s/%s' "$logs" "${1//[^A-Za-z0-9+]/-}"; }

# step NAME COMMAND...  runs a command that has to succeed. What it says goes to a file, which is shown where it fails
step() {
  local name=$1 file code=0 began
  file=$(file_of "$name")
  began=$(date +%s)
  shift
  local TIMEFORMAT='%R %U %S'
  { time "$@" >"$file.log" 2>&1 </dev/null; } 2>"$file.times" || code=$?
  printf '%s\t%d\t%s\t%s\n' "$began" "$code" "$(tail -n 1 "$file.times")" "$name" >"$file.ending"
  report_of "$name" "$file.log" "$code"
  mv "$file.ending" "$file.ended"
}

# What tests were skipped is worth a line where all is well; of the tests of a failed step those that passed are not.
report_of() {
  local name=$1 log=$2 code=$3
  if [ "$code" -eq 0 ]; then
    printf '=== passed: %s\n' "$name"
    grep -E '^SKIPPED|\(Skipped\)|is skipped|are skipped|not installed' "$log" || true
  else
    printf '=== FAILED with exit code %d: %s\n%s\n=== end of what failed: %s\n' "$code" "$name" \
      "$(grep -vE '^ *(Start +[0-9]+:|[0-9]+/[0-9]+ Test .* Passed )' "$log")" "$name"
  fi
}

# after NAME  waits for the end of a step of another chain; false when it failed
after() {
  local file
  file=$(file_of "$1")
  until [ -e "$file.ended" ]; do sleep 1; done
  [ "$(cut -f 2 "$file.ended")" -eq 0 ]
}

# chain FUNCTION  starts a chain of steps next to the others, with a folder of its own for temporary files
chains=()
chain() {
  mkdir -p "$scratch/$1"
  set -m  # a process group each, in which signals have their ordinary effect
  (
    set +m
    export TMPDIR=$scratch/$1
    "$1"
  ) &
  chains+=("$!")
  set +m
}

stop_chains() {
  local pid
  for pid in "${chains[@]}"; do kill -- "-$pid" 2>/dev/null || true; done
}

# Waits for all chains, prints the table, and is false when a step failed.
end_of_chains() {
  local pid failed=0
  for pid in "${chains[@]}"; do wait "$pid" || failed=1; done
  chains=()
  sort -n "$logs"/*.ended | awk -F '\t' -v whole="$(($(date +%s) - started))" '
    BEGIN { printf "\n%-46s %8s %8s\n", "step", "wall, s", "CPU, s" }
    {
      split($3, t, " ")
      printf "%-46s %8.0f %8.0f%s\n", $4, t[1], t[2] + t[3], $2 == 0 ? "" : "  FAILED"
      sum += t[2] + t[3]
      failed += $2 != 0
    }
    END { printf "%-46s %8.0f %8.0f\n", "all", whole, sum; exit failed != 0 }' || failed=1
  return "$failed"
}
