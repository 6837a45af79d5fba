#!/usr/bin/env bash
# Configures and builds one build tree: scripts/build.sh [release|sanitize]
set -euo pipefail
cd "$(dirname "$0")/.."
kind=${1:-release}
case "$kind" in
  release)  dir=build;          flags=(-DCMAKE_BUILD_TYPE=RelWithDebInfo -DZENTREL_BENCH=ON) ;;
  sanitize) dir=build-sanitize; flags=(-DCMAKE_BUILD_TYPE=Debug -DZENTREL_SANITIZE=ON -DZENTREL_BENCH=OFF) ;;
  *) echo "usage: $0 [release|sanitize]" >&2; exit 2 ;;
esac
cmake -S . -B "$dir" -G Ninja "${flags[@]}" >/dev/null
ninja -C "$dir"
