#!/usr/bin/env bash
# Feeds every reader: first each input that was a fault once (cases/), then new ones for some time.
#   run.sh PROGRAM SECONDS [TARGET ...]     SECONDS: of all targets together
# A finding ends the run with the sanitizer's report; its input lies in cases/TARGET then, and once the
# fault is mended it stays there. Another seed each day; VESK_FUZZ_SEED repeats one. What is learnt is
# kept below VESK_FUZZ_CORPUS where that is set. The last lines tell how many inputs each reader had, in
# all runs that have the same VESK_FUZZ_COUNTS (a file).
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
program=$1
seconds=$2
shift 2
targets=("$@")
[ ${#targets[@]} -gt 0 ] || mapfile -t targets < <("$program")
seed=${VESK_FUZZ_SEED:-$(($(date +%s) / 86400))}
scratch=$(mktemp -d -p "$([ -w /dev/shm ] && echo /dev/shm || echo "${TMPDIR:-/tmp}")")
trap 'rm -rf "$scratch"' EXIT
export TMPDIR=$scratch
# What a reader may take for a file below 1 MB: 2 GB, and a second; the checks make it ten times slower.
limits=(-rss_limit_mb=2048 -malloc_limit_mb=2048 -timeout=10 -max_len=65536)
# Short stacks of allocations and plain turns through the corpus: 2.6 times the inputs in the same time.
export ASAN_OPTIONS=detect_leaks=0:allocator_may_return_null=0:malloc_context_size=3
export UBSAN_OPTIONS=print_stacktrace=1

run_target() {
    local target=$1 share=$2 log=$scratch/$1.log
    local corpus=${VESK_FUZZ_CORPUS:-$scratch/corpus}/$target
    local dictionary=$here/dictionaries/${target%%_old}.dict cases=$here/cases/$target
    mkdir -p "$scratch/seeds/$target" "$corpus"
    export VESK_FUZZ_TARGET=$target
    VESK_FUZZ_SEEDS=$scratch/seeds/$target "$program" >"$log" 2>&1
    if compgen -G "$cases/*" >/dev/null; then
        "$program" "${limits[@]}" "$cases"/* >>"$log" 2>&1 || { cat "$log"; return 1; }
    fi
    local options=("${limits[@]}" -seed="$seed" -max_total_time="$share" -print_final_stats=1
        -print_funcs=0 -entropic=0 -artifact_prefix="$scratch/found-$target-")
    [ -f "$dictionary" ] && options+=(-dict="$dictionary")
    if ! "$program" "${options[@]}" "$corpus" "$scratch/seeds/$target" >>"$log" 2>&1; then
        tail -c 6000 "$log"
        mkdir -p "$cases"
        mv "$scratch/found-$target-"* "$cases"
        echo "run.sh: $target: see $cases (seed $seed)"
        return 1
    fi
    echo "$target $(awk '/number_of_executed_units/ { print $2 }' "$log")" >>"$counts"
}
counts=${VESK_FUZZ_COUNTS:-$scratch/counts}

# Two at a time.
share=$(((seconds * 2 + ${#targets[@]} - 1) / ${#targets[@]}))
[ "$share" -gt 0 ] || share=1
failed=0
pids=()
for target in "${targets[@]}"; do
    if [ ${#pids[@]} -ge 2 ]; then
        wait "${pids[0]}" || failed=1
        pids=("${pids[@]:1}")
    fi
    run_target "$target" "$share" &
    pids+=($!)
done
for pid in "${pids[@]}"; do
    wait "$pid" || failed=1
done
[ ! -f "$counts" ] || awk '{ inputs[$1] += $2; all += $2 }
    END { for (name in inputs) printf "%-14s %10d inputs\n", name, inputs[name]
          printf "%-14s %10d inputs\n", "~all", all }' "$counts" | sort
exit $failed
