#!/usr/bin/env bash
# Sessions with a window that do not end well: killed at random moments, or ended by a signal. The next
# start offers what they left, and what it opens is a whole model.
#   recovery_test.sh PROGRAM SCRIPTS ARTEFACTS
set -euo pipefail
program=$1 scripts=$2 artefacts=$3
. "$scripts/own_display.sh" "$artefacts"
failures=0

check() { # WHAT STATUS
    if [ "$2" = 0 ]; then echo "ok   $1"; else echo "FAIL $1"; failures=$((failures + 1)); fi
}

# The session that is ended: it says on which step it is, and builds on.
session() {
    rm -f "$work/steps"
    "$program" -noplugins -script "$scripts/recovery_work.tcl" >"$work/out.txt" 2>&1 &
    running=$!
    for _ in $(seq 200); do
        [ -s "$work/steps" ] && break
        sleep 0.1
    done
    [ -s "$work/steps" ] || { cat "$work/out.txt"; exit 1; }
}

# The next start, where a person answers the question; what it checks is its status.
next() {
    timeout 40 "$program" -noplugins -script "$scripts/recovery_offer.tcl" || return 1
}

for round in 1 2 3; do
    session
    # Not before a copy is there, then at a moment that nobody chose.
    for _ in $(seq 100); do
        compgen -G "$work/state/vesk/*" >/dev/null && grep -q written "$work/steps" && break
        sleep 0.1
    done
    sleep "0.$((RANDOM % 900 + 100))"
    kill -9 $running
    wait $running 2>/dev/null || true
    next && status=0 || status=1
    check "killed, started again, recovered ($round)" $status
done

session
sleep 0.5
kill -TERM $running
for _ in $(seq 100); do
    kill -0 $running 2>/dev/null || break
    sleep 0.1
done
kill -9 $running 2>/dev/null && check "a signal ends a session with a window" 1
wait $running && status=0 || status=$?
check "and its status is 0" $status
next && status=0 || status=1
check "the copy that the signal had written is offered" $status

export VESK_TEST_LEAVE=$(dirname "$program")/../tests/plugin_leaving.p
session
unset VESK_TEST_LEAVE
wait $running && status=0 || status=$?
check "a plug-in may end the process" $((status != 5))
next && status=0 || status=1
check "but does not take the work along" $status

# A display of its own, which goes away.
Xvfb -displayfd 8 -screen 0 1024x768x24 -nolisten tcp 8>"$work/number" 2>/dev/null &
lost=$!
for _ in $(seq 100); do [ -s "$work/number" ] && break; sleep 0.1; done
outer=$DISPLAY
export DISPLAY=:$(cat "$work/number")
session
sleep 0.5
kill -9 $lost
wait $lost 2>/dev/null || true
wait $running && status=0 || status=$?
check "the session ends with its display" $((status == 0))
export DISPLAY=$outer
next && status=0 || status=1
check "and its work is offered" $status
exit $((failures != 0))
