#!/usr/bin/env bash
# Runs one benchmark program several times and gives each figure's median beside its single runs.
# Usage: scripts/bench-runs.sh PROGRAM [ARGUMENTS...]
#   ZENTREL_BENCH_RUNS: how many runs (default 3).
# Each run's lines are shown as they come. Then, for every "name value unit" line, in the order
# of the first run, comes "name median unit runs: v1 v2 ..." with the value of each run that
# printed it; a line whose second word is no number (a note, a skipped peer) is shown once.
set -euo pipefail
if [ $# -eq 0 ]; then
  echo "usage: $0 PROGRAM [ARGUMENTS...]" >&2
  exit 2
fi
runs=${ZENTREL_BENCH_RUNS:-3}
if ! [[ "$runs" =~ ^[1-9][0-9]*$ ]]; then
  echo "ZENTREL_BENCH_RUNS must be a whole number above 0, not \"$runs\"" >&2
  exit 2
fi
outputs=$(mktemp -d)
trap 'rm -rf "$outputs"' EXIT
for ((run = 1; run <= runs; run++)); do
  echo "-- run $run of $runs: $* --"
  "$@" | tee "$outputs/$(printf %04d "$run")"
done
echo "-- median of $runs runs: $* --"
awk '
  function median(list,    v, n, i, j, t) {
    n = split(list, v, " ")
    for (i = 2; i <= n; i++)
      for (j = i; j > 1 && v[j - 1] + 0 > v[j] + 0; j--) { t = v[j]; v[j] = v[j - 1]; v[j - 1] = t }
    return n % 2 ? v[(n + 1) / 2] : (v[n / 2] + v[n / 2 + 1]) / 2
  }
  $2 ~ /^-?[0-9]+(\.[0-9]+)?([eE][-+]?[0-9]+)?$/ && NF == 3 {
    if (!($1 in values)) { order[++count] = $1; unit[$1] = $3 }
    values[$1] = values[$1] " " $2
    next
  }
  !($0 in notes) { notes[$0] = 1; order[++count] = "\n" $0 }
  END {
    for (i = 1; i <= count; i++) {
      name = order[i]
      if (substr(name, 1, 1) == "\n") { print substr(name, 2); continue }
      printf "%s %.3f %s runs:%s\n", name, median(values[name]), unit[name], values[name]
    }
  }
' "$outputs"/*
