#!/usr/bin/env bash
# How long the window takes no event: for each thing that is done to a large model its own time, and the
# longest pause after it until everything that follows from it (pictures, panels, the check) is done.
#   bench/answer.sh [build folder [MODEL.vesk ...]]    else terrains of 0.5 and 1 million vertices,
#                                                      10,000 and 100,000 cubes
# Uses the display there is, else an Xvfb of its own (software OpenGL, which draws on the same cores).
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
program=${1:-$here/../build}/home/vesk
shift || true
. "$here/own_display.sh"
measure() {
    echo "-- $1"
    VESK_ANSWER_MODEL=$2 "$program" -noplugins -script "$here/answer.tcl" 2>&1 | grep '^answer'
}
for model in "$@"; do
    measure "$(basename "$model")" "$model"
done
[ $# = 0 ] || exit 0
for model in 'terrain.tcl 707' 'terrain.tcl 1000' 'cubes.tcl 10000' 'cubes.tcl 100000'; do
    # shellcheck disable=SC2086 # a script and its argument
    (cd "$here" && tclsh8.6 $model) >"$work/model.vesk"
    measure "${model/.tcl/}" "$work/model.vesk"
done
