# Sourced: a folder for the run in $work, settings of its own there, and the display there is, else an
# Xvfb with software OpenGL, which draws on the same cores.
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
