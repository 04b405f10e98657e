#!/usr/bin/env bash
# Plug-ins from the start to the end of the program, without a display.
#   plugin_test.sh PROGRAM FOLDER   FOLDER holds the plug-ins of the tests
set -u
program=$1
folder=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset DISPLAY VESK_HOME
export USERPROFILE=$work LANG=C.UTF-8 VESK_TEST_EXITS=$work/exits
failures=0
cd "$work" || exit 1

holds() { # WHAT COMMAND...
    local what=$1
    shift
    if "$@" >/dev/null 2>&1; then
        echo "ok   $what"
    else
        echo "FAIL $what: $*"
        cat out.txt
        failures=$((failures + 1))
    fi
}
exits() { paste -sd ' ' exits 2>/dev/null; }

cat >load.tcl <<END
vesk plugin_load $folder/plugin_exit_first.p
vesk plugin_load $folder/plugin_exit_faulting.p
vesk plugin_load $folder/plugin_exit_last.p
END
{ cat load.tcl; echo 'puts whole'; } >to_the_end.tcl
{ cat load.tcl; echo 'exit 3'; } >by_exit.tcl
{ cat load.tcl; echo 'error broken'; } >by_error.tcl
for way in to_the_end:0 by_exit:3 by_error:1; do
    rm -f exits
    timeout 60 "$program" -noplugins -batch "${way%:*}.tcl" >out.txt 2>&1
    holds "${way%:*}: the status stays" test $? = "${way#*:}"
    holds "${way%:*}: every plug-in is told, the last one first, a fault notwithstanding" \
        test "$(exits)" = "last faulting first"
done

# A home folder whose plug-ins fault while they start.
here=$(dirname "$(readlink -f "$program")")
mkdir -p home/plugins
for part in lib tcl; do ln -s "$here/$part" home/$part; done
for n in 1 2 3 4; do cp "$folder/plugin_faulting.p" home/plugins/$n.p; done
cp "$folder/sample_plugin.p" home/plugins/5.p
echo 'puts "plugins [vesk get_plugin_list]"' >list.tcl
VESK_HOME=home timeout 60 "$program" -batch list.tcl >out.txt 2>&1
holds "faults of plug-ins do not end the start, nor does a relative home folder" \
    grep -q '^plugins "/.*/home/plugins/5.p" $' out.txt
holds "which plug-in it was is told" grep -q 'the fault was in the plug-in 4.p' out.txt
exit $((failures != 0))
