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
work=$(mktemp -d)
server=
trap '[ -z "$server" ] || kill $server 2>/dev/null; rm -rf "$work"' EXIT
if [ -z "${DISPLAY:-}" ]; then
    Xvfb -displayfd 5 -screen 0 1280x1024x24 -nolisten tcp 5>"$work/display" >/dev/null 2>&1 &
    server=$!
    while [ ! -s "$work/display" ]; do sleep 0.1; done
    DISPLAY=":$(cat "$work/display")"
fi
printf 'VESKPR 12\nshow_startup_tips FALSE\ncpwin_width 800\ncpwin_height 600\n' \
    >"$work/veskprefs.txt"
export DISPLAY USERPROFILE=$work HOME=$work LANG=C.UTF-8
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
