#!/usr/bin/env bash
# Builds the fuzzers of all readers and lets them run (tests/fuzz/run.sh).
#   bench/fuzz.sh [SECONDS [TARGET ...]]     default: 600 seconds, of all targets together
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${VESK_FUZZ_BUILD:-$here/build-test-fuzz}
seconds=${1:-600}
[ $# -gt 0 ] && shift

CC=clang CXX=clang++ cmake -G Ninja -S "$here" -B "$build" -DVESK_FUZZ=ON -DVESK_BENCH=OFF
ASAN_OPTIONS=detect_leaks=0 ninja -C "$build" vesk_fuzz
export VESK_FUZZ_CORPUS=${VESK_FUZZ_CORPUS:-$build/corpus}
export VESK_FUZZ_COUNTS=${VESK_FUZZ_COUNTS:-$build/fuzz-counts}
"$here/tests/fuzz/run.sh" "$build/tests/fuzz/vesk_fuzz" "$seconds" "$@"
