#!/usr/bin/env bash
# Saving where it cannot be saved: a full disk, a folder that is read-only. The old file stays whole,
# what is lost is told, and the work is still there to be saved elsewhere.
#   disk_test.sh PROGRAM
set -u
program=$1
if [ "${2:-}" != inside ]; then
    # A name space of its own, in which everybody may mount.
    unshare -rm true 2>/dev/null || { echo "skipped: no name spaces here"; exit 77; }
    exec unshare -rm "$0" "$program" inside
fi
work=$(mktemp -d)
trap 'umount "$work/disk" 2>/dev/null; rm -rf "$work"' EXIT
unset DISPLAY VESK_HOME
export USERPROFILE=$work LANG=C.UTF-8 XDG_STATE_HOME=$work/state
mkdir "$work/disk"
mount -t tmpfs -o size=256k tmpfs "$work/disk" || { echo "skipped: no tmpfs here"; exit 77; }
cd "$work" || exit 1
failures=0

check() { # WHAT COMMAND...
    local what=$1
    shift
    if "$@"; then
        echo "ok   $what"
    else
        echo "FAIL $what"
        cat out.txt
        failures=$((failures + 1))
    fi
}
told() { grep -qE -- "$1" out.txt; }

cat >work.tcl <<'END'
lassign $argv target elsewhere
for {set i 0} {$i < 40} {incr i} {vesk create sphere 0 $i 0 0 [expr {$i + 1}] 1 1}
puts "saved [vesk file_save $target]"
puts "objects [llength [vesk object_tree]]"
puts "elsewhere [vesk file_save $elsewhere]"
END
echo 'vesk create box 0 0 0 0 1 1 1; vesk file_save disk/model.vesk' >small.tcl
"$program" -noplugins -batch small.tcl >out.txt 2>&1
check "a small model fits" test -s disk/model.vesk
cp disk/model.vesk before.vesk

for state in full read-only; do
    [ $state = read-only ] && mount -o remount,ro "$work/disk"
    "$program" -noplugins -batch work.tcl disk/model.vesk elsewhere.vesk >out.txt 2>&1
    check "$state: the save fails" told '^saved 0'
    check "$state: and says why, with the file's name" told '^disk/model\.vesk was not written: (No space|Read-only)'
    check "$state: the old file is whole" cmp -s before.vesk disk/model.vesk
    check "$state: nothing else is left beside it" test "$(ls -A disk)" = model.vesk
    check "$state: the work can be saved elsewhere" told '^elsewhere 1'
    check "$state: whole" test "$(grep -c '^OBJECT poly' elsewhere.vesk)" = 40
done
exit $((failures != 0))
