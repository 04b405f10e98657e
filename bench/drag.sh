#!/usr/bin/env bash
# A drag of 961 vertices of a terrain of a million: what each motion takes until the picture shows it, and
# how much processor time of the main thread; the press and the release beside it.
#   bench/drag.sh [build folder [MODEL.vesk]]
# Uses the display there is, else an Xvfb of its own (software OpenGL, which draws on the same cores).
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
program=${1:-$here/../build}/home/vesk
model=${2:-}
. "$here/own_display.sh"
if [ -z "$model" ]; then
    model=$work/model.vesk
    (cd "$here" && tclsh8.6 terrain.tcl 1000) >"$model"
fi
VESK_ANSWER_MODEL=$model "$program" -noplugins -script "$here/drag.tcl" 2>&1 | grep '^drag'
