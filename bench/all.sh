#!/usr/bin/env bash
# Runs every benchmark of the core, and the one of the window's answers, and writes one table: what was measured, its time, and how it stands
# to the last run that was kept (bench/kept.tsv). Ratios to a peer or to the bare limit stand in the lines of
# the programs themselves, which are printed first.
#   bench/all.sh [-keep] [PROGRAM ...]     -keep: this run is the one that later ones are compared with
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${VESK_BENCH_BUILD:-$here/build}
kept=$here/bench/kept.tsv
keep=0
if [ "${1:-}" = -keep ]; then
    keep=1
    shift
fi
programs=("$@")
[ ${#programs[@]} -gt 0 ] || programs=(files_bench pick_bench undo_bench objects_bench geometry_bench
    edges_bench solids_bench large_bench uv_bench answer)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake -G Ninja -S "$here" -B "$build" >/dev/null
ninja -C "$build" "${programs[@]/#answer/home/vesk}" vesk_icons >/dev/null
for program in "${programs[@]}"; do
    echo "== $program"
    arguments=()
    [ "$program" = files_bench ] && arguments=("$work")
    [ "$program" = large_bench ] && arguments=(1000 "$work")
    if [ "$program" = answer ]; then
        "$here/bench/answer.sh" "$build" | tee "$work/$program.txt"
    else
        "$build/bench/$program" "${arguments[@]}" | tee "$work/$program.txt"
    fi
done

# One line a figure: program, what it is of (the heading above it), name, seconds on the clock.
for program in "${programs[@]}"; do
    awk -v program="$program" '
        /^(--|[0-9])/ { heading = $0; gsub(/  +.*|^-- /, "", heading); next }
        match($0, /[0-9]+\.[0-9]+ m?s/) {
            name = substr($0, 1, RSTART - 1)
            split(substr($0, RSTART, RLENGTH), figure, " ")
            gsub(/ +/, " ", name); gsub(/^ | $/, "", name)
            if (name != "")
                printf "%s\t%s\t%s\t%.6f\n", program, heading, name,
                    figure[1] / (figure[2] == "ms" ? 1000 : 1)
        }' "$work/$program.txt"
done >"$work/now.tsv"

awk -F '\t' -v keptfile="$kept" '
    BEGIN {
        while ((getline line <keptfile) > 0) {
            split(line, part, "\t")
            before[part[1] FS part[2] FS part[3]] = part[4]
        }
        print "| program | of | what | time | to the kept run |\n|---|---|---|---|---|"
    }
    {
        key = $1 FS $2 FS $3
        ratio = before[key] > 0 ? sprintf("%.2f", $4 / before[key]) : ""
        printf "| %s | %s | %s | %s | %s |\n", $1, $2, $3,
            $4 < 0.1 ? sprintf("%.2f ms", $4 * 1000) : sprintf("%.3f s", $4), ratio
    }' "$work/now.tsv"
[ $keep = 0 ] || cp "$work/now.tsv" "$kept"
