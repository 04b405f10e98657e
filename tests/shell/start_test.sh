#!/usr/bin/env bash
# What the program prints and answers without a display.
#   start_test.sh PROGRAM
set -u
program=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset DISPLAY VESK_HOME
export USERPROFILE=$work LANG=C.UTF-8
failures=0

# check WHAT EXPECTED_STATUS PATTERN -- arguments: the status, and a line of the whole output.
check() {
    local what=$1 status=$2 pattern=$3
    shift 4
    output=$("$program" "$@" 2>&1)
    local got=$?
    if [ "$got" = "$status" ] && grep -qE -- "$pattern" <<<"$output"; then
        echo "ok   $what"
    else
        echo "FAIL $what: status $got, output:"
        echo "$output"
        failures=$((failures + 1))
    fi
}

cd "$work" || exit 1
here=$(dirname "$(readlink -f "$program")")
cat >good.tcl <<'END'
puts [list $argv [file tail [pwd]] [vesk get_version_string] $prefs_grid]
END
echo 'proc inner {} {error boom}; inner' >bad.tcl
cat >two.tcl <<'END'
puts "count [llength [vesk object_get_children [vesk get_world]]]"
foreach id [vesk object_get_children [vesk get_world]] {puts "name [vesk object_get_name $id]"}
END
for n in one two; do
    printf 'VESKb\nOBJECT poly\nname "%s"\nnumvert 1\n0 0 0\nkids 0\n' $n >$n.vesk
done

check "help names the options" 0 '^usage: .*\[-debug\] \[-dynamic\] \[file \.\.\.\] $' -- -help
check "help tells the build" 0 '^Build ' -- -help
check "the version" 0 '^VESK v3\.6$' -- -version
check "an unknown option is told" 0 "^unknown argument '-x'$" -- -x -batch good.tcl
check "a batch script that is not named is told" 1 '^-batch needs a file$' -- -batch
check "so are the words of a conversion" 1 '^usage: vesk -convert' -- -convert
check "debug mode is told" 0 '^DEBUG mode enabled$' -- -debug -batch good.tcl
check "dynamic mode is told" 0 '^DYNAMIC TCL enabled$' -- -dynamic -batch good.tcl
check "a batch script has its arguments and the start directory" 0 \
    "^\{a \{b c\}\} $(basename "$work") \{VESK v3.6\} 0\.1$" -- -batch good.tcl a 'b c'
check "an error of a batch script is its status" 1 'while executing' -- -batch bad.tcl
check "a missing batch script too" 1 "couldn't read file" -- -batch nowhere.tcl
check "two files load into one world, relative to the start directory" 0 '^count 2$' -- \
    one.vesk two.vesk -batch two.tcl
check "the second one stands last" 0 '^name two$' -- one.vesk two.vesk -batch two.tcl
check "importing tells the absolute name" 0 "^importing $work/one.vesk$" -- one.vesk -batch two.tcl
check "a broken file does not stop the start" 0 '^count 1$' -- good.tcl one.vesk -batch two.tcl
check "without a display the start fails" 1 '^failed to start TCL/TK - exiting$' --
check "and says why" 1 'no display name' --
check "the executable's folder is the home directory" 0 "^VESK_HOME is $here$" -- -batch good.tcl

mkdir empty
export VESK_HOME=$work/empty
check "a home directory without scripts is told" 1 "^Can't find lib/tcl8.3\." -- -batch good.tcl
mkdir -p empty/lib
ln -s "$here/lib/tcl8.3" empty/lib/tcl8.3
ln -s "$here/lib/tk8.3" empty/lib/tk8.3
check "a missing start script is told" 1 "^can't eval TCL file 'tcl/batch.tcl', tried " -- \
    -batch good.tcl
unset VESK_HOME

cat >red.tcl <<'END'
vesk create sphere 0 0 0 0 1 1 1
vesk file_save red.vesk
END
"$program" -batch red.tcl >/dev/null 2>&1
check "a picture of a model needs no display" 0 "" -- -thumbnail 64 red.png red.vesk
[ "$(identify -format '%m %w %h' red.png)" = "PNG 64 64" ] && [ "$(identify -format %k red.png)" -gt 20 ] ||
    { echo "FAIL the picture shows something round"; failures=1; }
case $(identify -format %@ red.png) in
5[6-9]x5[6-9]+[234]+[234]) ;;
*)
    echo "FAIL it fills nine tenths of the picture: $(identify -format %@ red.png)"
    failures=1
    ;;
esac
check "a size that is none is told" 1 "^usage: vesk -thumbnail" -- -thumbnail big red.png red.vesk
check "so is a file that is not there" 1 "can't read none.vesk" -- -thumbnail 64 x.png none.vesk

"$program" -batch good.tcl >out.txt 2>err.txt
[ "$(wc -l <out.txt)" = 1 ] || { echo "FAIL standard output is the script's alone"; failures=1; }

# Names of files are UTF-8 where no locale is set.
cat >umlaut.tcl <<'END'
vesk create box 0 0 0 0 1 1 1
vesk save_vesk "vesk gr\u00fc\u00df.vesk"
vesk clear_all
puts "loaded [vesk load_file "vesk gr\u00fc\u00df.vesk"] [llength [vesk object_tree]] [lindex $argv 0]"
END
(
    unset LANG LC_ALL LC_CTYPE
    "$program" -batch umlaut.tcl grüß >out.txt 2>err.txt
    "$program" -convert "vesk grüß.vesk" "nach grüß.obj" >/dev/null 2>&1
)
if [ ! -s "vesk grüß.vesk" ] || [ ! -s "nach grüß.obj" ] || ! grep -q '^loaded .*grüß$' out.txt; then
    echo "FAIL names with other letters where no locale is set"
    ls
    cat out.txt err.txt
    failures=1
fi

deep=$work/$(printf 'd%.0s' {1..200})/$(printf 'e%.0s' {1..200})
mkdir -p "$deep"
cp one.vesk "$deep"
(cd "$deep" && "$program" -convert one.vesk two.obj >/dev/null 2>&1)
[ -s "$deep/two.obj" ] || { echo "FAIL a start folder with a long name"; failures=1; }

echo 'vwait forever' >wait.tcl
"$program" -batch wait.tcl >/dev/null 2>&1 &
waiting=$!
sleep 0.5
kill -TERM $waiting
for _ in $(seq 50); do
    kill -0 $waiting 2>/dev/null || break
    sleep 0.1
done
if kill -9 $waiting 2>/dev/null; then
    echo "FAIL a signal ends the session"
    failures=1
fi
exit $((failures != 0))
