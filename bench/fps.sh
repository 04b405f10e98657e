#!/usr/bin/env bash
# Milliseconds a picture of each view with 100,000 and 1,000,000 triangles, moving (as in a drag) and
# at rest, with the layers that were drawn.
#   bench/fps.sh [build folder]
# Uses the display there is, else an Xvfb of its own (software OpenGL).
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
program=${1:-$here/../build}/home/vesk
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
export DISPLAY USERPROFILE=$work LANG=C.UTF-8
for quads in 224 707; do
    tclsh8.6 "$here/terrain.tcl" $quads >"$work/terrain.vesk"
    "$program" -noplugins -script "$here/fps.tcl" "$work/terrain.vesk" 2>&1 | grep '^fps'
    rm "$work/terrain.vesk"
done
