# Sourced: an X server of the test's own, settings of its own in $work, and a folder for pictures.
#   . own_display.sh ARTEFACTS
# VESK_TEST_SCREEN and VESK_TEST_DPI give it another size and resolution.
work=$(mktemp -d)
mkdir -p "$1"
Xvfb -displayfd 5 -screen 0 "${VESK_TEST_SCREEN:-1280x1024}x24" -dpi "${VESK_TEST_DPI:-96}" \
    -nolisten tcp 5>"$work/display" >"$work/xvfb.log" 2>&1 &
server=$!
trap 'kill $server 2>/dev/null || true; wait $server 2>/dev/null || true; rm -rf "$work"' EXIT
for _ in $(seq 100); do
    [ -s "$work/display" ] && break
    sleep 0.1
done
[ -s "$work/display" ] || { cat "$work/xvfb.log" >&2; exit 1; }
printf 'VESKPR 12\nshow_startup_tips FALSE\ncpwin_width 1280\ncpwin_height 800\n' \
    >"$work/veskprefs.txt"
export DISPLAY=":$(cat "$work/display")" USERPROFILE=$work LANG=C.UTF-8
export XDG_STATE_HOME=$work/state VESK_TEST_ARTEFACTS=$1 VESK_TEST_WORK=$work
