#!/usr/bin/env bash
# Starts the program on an X server of its own, with settings of its own, and has it evaluate a
# script.
#   run_window_test.sh PROGRAM SCRIPT ARTEFACTS [model file ...]
set -euo pipefail
program=$1 script=$2 artefacts=$3
shift 3
. "$(dirname "${BASH_SOURCE[0]}")/own_display.sh" "$artefacts"
timeout "${VESK_TEST_LIMIT:-240}" "$program" -noplugins -script "$script" "$@"
