#!/usr/bin/env bash
# Commands through a pipe, and from Python as the page about it shows.
#   pipe_test.sh PROGRAM SOURCE
set -u
program=$1
source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset DISPLAY VESK_HOME
export USERPROFILE=$work LANG=C.UTF-8
failures=0
cd "$work" || exit 1

holds() { # WHAT COMMAND...
    local what=$1
    shift
    if "$@" >/dev/null 2>&1; then
        echo "ok   $what"
    else
        echo "FAIL $what: $*"
        failures=$((failures + 1))
    fi
}
# The answer to a line, after a cube was made.
answer() { printf 'new_cube\nselect_all\n%s\n' "$1" | "$program" -noplugins -pipe 2>/dev/null | tail -n 1; }
answers() { # WHAT LINE PATTERN
    local got
    got=$(answer "$2")
    printf '%s' "$got" >answer.json
    holds "$1" test "${got##*"$3"*}" = "" -a -n "$got"
    holds "$1, as JSON" tclsh8.6 "$source/tests/shell/json_check.tcl" answer.json
}

answers "a result" get_selection_size '"result": "1 1 1", "words": ["1", "1", "1"], "message": "", "error": null'
answers "an array" '["get_selection_size"]' '"1 1 1"'
answers "a message" select_all 'select all...\nselect all done'
answers "an unknown command" nonsense '"error": "command not found"'
answers "too few words" 'move 1' '"error": "incorrect number of args'
answers "a file that is not there" 'file_load none.dxf' '"error": "can'"'"'t read none.dxf\nNo such file'
answers "an array without end" '["move"' '"error": "the array has no end"'
answers "a quote without end" 'object_set_name 2 "x' '"error": "what is this:'
answers "words that stick together" 'object_set_name 2 "x"y' '"error": "words are not parted: y"'
printf '%s\n' new_cube 'object_set_name 2 "a \"b\" \u00e4\t[exit] $x {"' '["object_info", 2]' |
    "$program" -noplugins -pipe 2>/dev/null >out
holds "nothing is evaluated" grep -qF '"a \"b\" ä\t[exit] $x {"' out
holds "the end of the input ends it" test "$(wc -l <out)" = 3
printf 'v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n' >a.obj
echo get_counts | "$program" -pipe a.obj 2>/dev/null >out
holds "files are loaded first" grep -q '"result"' out
echo get_counts | "$program" -pipe none.obj >out 2>&1
holds "or it ends" test $? = 1

if command -v python3 >/dev/null; then
    sed -n '/^```python/,/^```/p' "$source/docs/batch.md" | grep -v '^```' >stairs.py
    sed -i 's/vesk = Vesk()/import sys; vesk = Vesk(program=sys.argv[1])/' stairs.py
    holds "from Python" python3 stairs.py "$program"
    holds "which made a file" grep -q '"step 9"' stairs.glb
fi
exit $((failures > 0))
