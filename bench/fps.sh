#!/usr/bin/env bash
# Milliseconds a picture of each view with 100,000 and 1,000,000 triangles in one object, then with
# 10,000 cubes, moving (as in a drag) and at rest, with the layers that were drawn.
#   bench/fps.sh [build folder [800x600 [TRIANGLES]]]    with a size of the 3D view alone
# Uses the display there is, else an Xvfb of its own (software OpenGL).
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
program=${1:-$here/../build}/home/vesk
[ -z "${2:-}" ] || export VESK_FPS_SIZE=$2
models=('terrain.tcl 224' 'terrain.tcl 707' 'cubes.tcl 10000')
[ -z "${3:-}" ] || models=("terrain.tcl $(awk "BEGIN {print int(sqrt($3 / 2))}")")
. "$here/own_display.sh"
for model in "${models[@]}"; do
    # shellcheck disable=SC2086 # a script and its argument
    (cd "$here" && tclsh8.6 $model) >"$work/model.vesk"
    echo "fps $model"
    "$program" -noplugins -script "$here/fps.tcl" "$work/model.vesk" 2>&1 | grep '^fps'
    rm "$work/model.vesk"
done
