#!/usr/bin/env bash
# Loads damaged model files, pictures and files of other formats under AddressSanitizer and
# UndefinedBehaviorSanitizer, model files being saved again; two processes beside each other.
#   bench/fuzz.sh [files] [seed]    default: 100000 files, a seed from the clock
# A finding ends the run with the sanitizer's report; the seed printed repeats it.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${VESK_FUZZ_BUILD:-$here/build-sanitize}
files=${1:-100000}
seed=${2:-$(date +%s)}

cmake -G Ninja -S "$here" -B "$build" -DVESK_SANITIZE=ON -DVESK_BENCH=OFF
ninja -C "$build" vesk_tests

pids=()
for half in 0 1; do
    VESK_DAMAGE_SEED=$((seed + half)) VESK_DAMAGE_FILES=$((files / 2)) \
        "$build/tests/vesk_tests" --gtest_brief=1 \
        --gtest_filter='*Damaged*' &
    pids+=($!)
done
for pid in "${pids[@]}"; do
    wait "$pid"
done
