#!/usr/bin/env bash
# Every system call of saving made to fail in turn, and the process killed after each: the old file or
# the new one is whole, what failed is told, and what is beside the file is no rubbish.
#   chaos_test.sh PROGRAM LIBRARY
set -u
program=$1
library=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset DISPLAY VESK_HOME
export LANG=C.UTF-8
cd "$work" || exit 1
failures=0
runs=0

fail() {
    echo "FAIL $*"
    head -5 out.txt
    failures=$((failures + 1))
}

# What each job writes, from a folder with the files before it.
cat >save.tcl <<'END'
vesk set_backup_versions [lindex $argv 1]
vesk file_load [lindex $argv 0]/model.vesk
vesk create box 0 0 0 0 1 1 1
puts "saved [vesk file_save [lindex $argv 0]/model.vesk]"
END
cat >autosave.tcl <<'END'
vesk file_load [lindex $argv 0]/before.vesk
vesk create box 0 0 0 0 1 1 1
vesk autosave [lindex $argv 0]/model.vesk
while {[set result [vesk autosave_result]] eq ""} {after 2}
puts "saved $result"
END
cat >settings.tcl <<'END'
set prefs_num_surface_div 9
vesk save_settings
puts "saved unknown"
END

run_job() { # JOB WORDS...
    local job=$1
    shift
    runs=$((runs + 1))
    env LD_PRELOAD="$library" CHAOS_FOLDER=chaos-place CHAOS_LOG="$work/calls" USERPROFILE="$place" XDG_STATE_HOME="$work/state" \
        "$program" -noplugins -batch "$job.tcl" "$place" "$@" >out.txt 2>&1
}

prepare() { # FILE
    rm -rf "$place" "$work/state"
    mkdir "$place"
    cp before.vesk "$place/before.vesk"
    [ -f "before.$1" ] && cp "before.$1" "$place/$1"
    return 0
}

# Runs a job with each of its calls failing in each way.
try_job() { # NAME JOB FILE WORDS...
    local name=$1 job=$2 file=$3 calls how at
    shift 3
    place=$work/chaos-place
    prepare "$file"
    CHAOS_AT=0 run_job "$job" "$@"
    cp "$place/$file" "after.$file"
    cmp -s "before.$file" "after.$file" && fail "$name: nothing was written"
    calls=$(cut -d" " -f1 calls)
    [ "$calls" -ge 4 ] || fail "$name: only $calls calls are seen"
    for how in ENOSPC EIO EROFS EINTR short kill; do
        for ((at = 1; at <= calls; ++at)); do
            prepare "$file"
            export CHAOS_AT=$at CHAOS_HOW=$how
            run_job "$job" "$@"
            check_result "$name: call $at of $calls, $how" "$file"
        done
    done
    unset CHAOS_AT CHAOS_HOW
    echo "     $name: $calls calls"
}

check_result() { # WHAT FILE
    local state=other call
    call=$(cut -d' ' -f2 calls)
    cmp -s "$place/$2" "after.$2" && state=new
    cmp -s "$place/$2" "before.$2" && state=old
    if [ $state = other ]; then
        # Written in place and torn: the old bytes are offered by the next start.
        local copy
        copy=$(echo "$work"/state/vesk/write-*.rescue.vesk)
        cmp -s "$copy" "before.$2" && [ "$(cat "${copy%.rescue.vesk}.session")" = "$place/$2" ] ||
            fail "$1: neither the old file nor the new one"
    fi
    if [ "$CHAOS_HOW" = kill ]; then
        return
    fi
    if grep -q '^saved 1' out.txt; then
        [ $state = new ] || fail "$1: said to be saved"
    elif grep -q '^saved 0' out.txt; then
        grep -qE "was not written|can.t|error|cannot" out.txt || fail "$1: nobody is told"
    elif ! grep -q '^saved unknown' out.txt; then
        fail "$1: the program did not go on"
    elif [ $state = old ]; then
        grep -qE "was not written|can.t|error|cannot" out.txt || fail "$1: nobody is told"
    fi
    # Temporary files go, backups stay.
    local rubbish
    rubbish=$(find "$place" -type f ! -name "$2" ! -name before.vesk ! -name '*.bak[1-9]')
    [ -z "$rubbish" ] || [ "$call" = unlink ] || fail "$1 ($call): $rubbish stays"
}

echo 'vesk create sphere 0 0 0 0 1 1 1; vesk file_save before.vesk' >make.tcl
USERPROFILE=$work "$program" -noplugins -batch make.tcl >out.txt 2>&1
cp before.vesk before.model.vesk
mv before.vesk keep.vesk && cp keep.vesk before.vesk
printf 'VESKPR 12\n' >before.veskprefs.txt

try_job "save" save model.vesk 0
try_job "save with backups" save model.vesk 2
CHAOS_NO_NEW=1 try_job "save in place" save model.vesk 0
try_job "copy of unsaved work" autosave model.vesk
try_job "settings" settings veskprefs.txt
echo "$runs runs, $failures failures"
exit $((failures != 0))
