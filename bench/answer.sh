#!/usr/bin/env bash
# How long the window takes no event: for each thing that is done to a large model its own time, and the
# longest pause after it until everything that follows from it (pictures, panels, the check) is done.
#   bench/answer.sh [build folder [MODEL.vesk ...]]    else terrains of 0.5 and 1 million vertices, such
#                                                      of glass, 10,000 and 100,000 cubes; then the window
#                                                      of texture coordinates of 1 and 4 million corners
# Uses the display there is, else an Xvfb of its own (software OpenGL, which draws on the same cores).
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
program=${1:-$here/../build}/home/vesk
shift || true
. "$here/own_display.sh"
measure() { # name, model, script
    echo "-- $1"
    VESK_ANSWER_MODEL=$2 "$program" -noplugins -script "$here/$3" 2>&1 | grep '^answer'
}
measure_made() { # script that makes the model, with its arguments; script that measures
    # shellcheck disable=SC2086
    (cd "$here" && tclsh8.6 $1) >"$work/model.vesk"
    measure "${1/.tcl/}" "$work/model.vesk" "$2"
}
for model in "$@"; do
    measure "$(basename "$model")" "$model" answer.tcl
done
[ $# = 0 ] || exit 0
for model in 'terrain.tcl 707' 'terrain.tcl 1000' 'terrain.tcl 1000 0.5' 'terrain.tcl 1000 1' \
    'cubes.tcl 10000' 'cubes.tcl 100000'; do
    measure_made "$model" answer.tcl
done
for side in 500 1000; do
    measure_made "terrain.tcl $side" answer_textures.tcl
done
