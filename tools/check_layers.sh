#!/usr/bin/env bash
# Includes point only downwards: a file may include files of its own level and of lower ones. The
# first pattern that fits a path gives its level; only shell files include Tcl, Tk, Togl, X or GL.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

git ls-files 'app/*' 'model/*' 'edit/*' 'view/*' 'fileio/*' 'plugin/*' | grep -E '\.(h|cpp|inc)$' |
    xargs awk '
    function level(path) {
        if (path ~ /_(tk|gl)(_[a-z]+)?\.(h|cpp)$/ || path ~ /^app\/main\.cpp$/) return 8
        if (path ~ /^app\/(command_(table|handlers|watch)|added_|startup)/) return 7
        if (path ~ /^fileio\/atomic_file/) return 1
        if (path ~ /^app\//) return 1
        if (path ~ /^model\//) return 2
        if (path ~ /^view\/(views|projection|camera|texture|redraw|background|image_)/) return 3
        if (path ~ /^edit\/(current_object|text_object|clipboard)/) return 5
        if (path ~ /^edit\//) return 4
        if (path ~ /^(fileio|view)\//) return 5
        if (path ~ /^plugin\//) return 6
        return 0
    }
    /^#include "/ {
        split($0, part, "\"")
        if (part[2] ~ /_rows\.inc$/) next
        to = level(part[2]); from = level(FILENAME)
        if (to > from) { printf "%s (level %d) includes %s (level %d)\n", FILENAME, from, part[2], to; bad = 1 }
    }
    /^#include <(tcl|tk|togl|X11\/|GL\/)/ {
        if (level(FILENAME) < 8 && !(FILENAME == "edit/tessellator.cpp" && /GL\/glu/)) {
            printf "%s includes %s: only shell files may\n", FILENAME, $2; bad = 1
        }
    }
    END { exit bad }'
echo "layers: all includes point downwards"
