#!/usr/bin/env bash
# Sets the machine up, installs the peer component the view's benchmark compares with
# (QScintilla), builds, and runs every benchmark. Each prints "name value unit" lines.
# Usage: scripts/bench.sh [MEGABYTES...]   (default 1 10 100)
# With ZENTREL_BENCH_RUNS=N (N above 1) every program runs N times, and each figure's median is
# given beside its single runs (scripts/bench-runs.sh).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
if ! dpkg-query -W -f='${Status}' libqscintilla2-qt6-dev 2>/dev/null | grep -q "install ok installed"; then
  SUDO=""
  [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends libqscintilla2-qt6-dev
fi
scripts/build.sh release
sizes=("$@")
[ ${#sizes[@]} -eq 0 ] && sizes=(1 10 100)
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}
run() {
  if [ "${ZENTREL_BENCH_RUNS:-1}" = 1 ]; then "$@"; else scripts/bench-runs.sh "$@"; fi
}
for program in lineindex htmldoc encodings syntax qtdc extrainfo automation paint print; do
  echo "== bench_$program =="
  run build/bench/bench_$program
done
for program in view editing folding picker accessibility; do
  echo "== bench_$program ${sizes[*]} =="
  run build/bench/bench_$program "${sizes[@]}"
done
