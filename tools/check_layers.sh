#!/usr/bin/env bash
# Each folder is a floor: a file may include its own floor and those below. Folders joined by a
# comma lie side by side and do not see each other. The core does not see draw/.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
floors="base model/textures,model edit/mesh edit/document edit/uv edit edit/check view draw,fileio plugin program shell"

git ls-files '*.h' '*.cpp' '*.inc' | grep -vE '^(tests|bench|tools|plugins|modules|examples)/' |
    xargs awk -v floors="$floors" '
    BEGIN {
        n = split(floors, floor, " ")
        for (i = 1; i <= n; ++i) {
            m = split(floor[i], beside, ",")
            for (j = 1; j <= m; ++j) level[beside[j]] = i
        }
        level["model/textures"] = level["model"] # one floor, two rooms
        # What only some floors may see beyond the standard library.
        split("tcl tk togl X11/ GL/", foreign, " ")
    }
    function folder(path) { sub(/\/[^\/]*$/, "", path); return path }
    function told(text) { printf "%s:%d %s\n", FILENAME, FNR, text; bad = 1 }
    /^#include "/ {
        split($0, part, "\"")
        from = folder(FILENAME); to = folder(part[2])
        if (!(from in level)) told("lies on no floor")
        else if (!(to in level)) { if (part[2] ~ /\//) told("includes " part[2] ", which lies on no floor") }
        else if (level[to] > level[from]) told("includes " part[2] ": upwards")
        else if (level[to] == level[from] && to != from && floors ~ to "," from "|" from "," to && from !~ /^model/)
            told("includes " part[2] ": they lie side by side")
        else if (to == "draw" && (from == "plugin" || from == "program")) told("includes " part[2] ": only shell/ may")
    }
    /^#include <GL\// {
        if (folder(FILENAME) != "draw" && FILENAME != "edit/mesh/tessellator.cpp") told("includes " $2 ": only draw/ may")
    }
    /^#include <(tcl|tk|togl|X11\/)/ {
        if (folder(FILENAME) != "shell") told("includes " $2 ": only shell/ may")
    }
    END { exit bad }'
echo "layers: all includes point downwards"
