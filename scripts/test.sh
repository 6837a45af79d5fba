#!/usr/bin/env bash
# Sets the machine up, builds, and runs the whole test suite twice: a plain build, and a build
# under AddressSanitizer and UndefinedBehaviorSanitizer, after running each fuzz target for a minute.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh release
scripts/build.sh sanitize

export QT_QPA_PLATFORM=offscreen
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export LSAN_OPTIONS=suppressions=$PWD/tests/lsan.supp:print_suppressions=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

# The fuzz targets first, so that the test runner's summary closes the output.
echo "== fuzz targets =="
scripts/fuzz.sh 60
echo "== tests, sanitizer build =="
ctest --test-dir build-sanitize --output-on-failure
echo "== tests, release build =="
ctest --test-dir build --output-on-failure
