#!/usr/bin/env bash
# Two sessions under a window manager: the second one begins as the first one was left.
#   session_test.sh PROGRAM SCRIPTS ARTEFACTS
set -euo pipefail
program=$1 scripts=$2 artefacts=$3
command -v openbox >/dev/null || { echo "no window manager: skipped"; exit 77; }
. "$scripts/own_display.sh" "$artefacts"
openbox >/dev/null 2>&1 &
manager=$!
trap 'kill $manager $server 2>/dev/null || true; wait 2>/dev/null || true; rm -rf "$work"' EXIT

for session in leave find find-again; do
    VESK_TEST_SESSION=$session timeout 60 "$program" -noplugins -script "$scripts/session.tcl" ||
        { echo "FAIL session: $session"; exit 1; }
done
