#!/usr/bin/env bash
# Failing disks with a window: chaos_window.tcl, then the start after it.
#   chaos_window_test.sh PROGRAM LIBRARY SCRIPTS ARTEFACTS
set -euo pipefail
program=$1 library=$2 scripts=$3 artefacts=$4
. "$scripts/own_display.sh" "$artefacts"
export VESK_TEST_LIMIT=${VESK_TEST_LIMIT:-100}

session() { # SCRIPT
    LD_PRELOAD=$library CHAOS_AT=0 timeout "$VESK_TEST_LIMIT" "$program" -noplugins -script "$scripts/$1" || status=$?
}
status=0
session chaos_window.tcl
[ $status = 137 ] || { echo "FAIL chaos_window.tcl: status $status"; exit 1; }
objects=$(grep -c '^OBJECT poly' "$work/model.vesk")
[ "$objects" = 6 ] || { echo "FAIL the file of a killed save: $objects objects"; exit 1; }
echo "ok   killed after the rename: the new file"
status=0
session chaos_recovered.tcl
exit $status
