#!/usr/bin/env bash
# Builds the fuzz targets with clang under AddressSanitizer and UndefinedBehaviorSanitizer in
# build-fuzz/, and runs each for a bounded time, starting from a copy of its seed corpus in
# fuzz/corpus/<name>/. A crash leaves its input in build-fuzz/artifacts/ and fails the script.
# Usage: scripts/fuzz.sh [SECONDS_EACH]   (default 60)
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
dir=build-fuzz
targets=(loader classifier extrainfo)

cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_CXX_COMPILER=clang++ \
  -DZENTREL_FUZZ=ON -DZENTREL_QT=OFF -DZENTREL_BENCH=OFF >/dev/null
ninja -C "$dir" "${targets[@]/#/fuzz_}"

mkdir -p "$dir/artifacts"
for t in "${targets[@]}"; do
  work="$dir/corpus/$t"
  rm -rf "$work"
  mkdir -p "$work"
  cp fuzz/corpus/"$t"/* "$work"/
  echo "== fuzz_$t, ${seconds}s =="
  log="$dir/fuzz_$t.log"
  status=0
  "$dir/fuzz/fuzz_$t" -max_total_time="$seconds" -max_len=4096 -timeout=20 -rss_limit_mb=2048 \
    -print_final_stats=1 -artifact_prefix="$dir/artifacts/$t-" "$work" >"$log" 2>&1 || status=$?
  if [ "$status" -ne 0 ]; then
    tail -n 100 "$log"
    echo "fuzz_$t found a failure; the input is in $dir/artifacts/" >&2
    exit 1
  fi
  grep -E '^(INFO: Seed|Done |stat::number_of_executed_units|stat::new_units_added)' "$log"
done
