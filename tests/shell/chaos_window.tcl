# chaos_window.tcl --
#   Saving, copies of unsaved work and settings in a window while calls of the system fail (chaos.c,
#   preloaded): the old file or the new one is whole, the user is told, and the program goes on. The
#   last save is killed after its rename; chaos_recovered.tcl is the next start.

source [file join [file dirname [info script]] support.tcl]

# arm --
#   From now on the first call of that name, on a file whose name contains `files`, fails.
proc arm {files call how} {
    array set ::env [list CHAOS_FOLDER $files CHAOS_ONLY $call CHAOS_HOW $how CHAOS_AT 1 \
        CHAOS_ROUND [incr ::round]]
}
proc disarm {} {set ::env(CHAOS_AT) 0}
set round 0
set reasons {ENOSPC "No space left" EIO "Input/output error" EROFS "Read-only"}

# dismiss --
#   Notes what a message box says and closes it, whenever one opens.
proc dismiss {} {
    when {[front .__tk__messagebox]} {
        lappend messages [.__tk__messagebox.msg cget -text]
        shot chaos-[incr boxes_shown]
        key Return
        when {![winfo exists .__tk__messagebox]} dismiss
    }
}

# told --
#   Whether a box or the status line said why.
proc told {how} {
    return [expr {[lsearch $::messages "*[dict get $::reasons $how]*"] >= 0}]
}
set messages {}
trace add variable ::vesk::status::message write {apply {args {
    lappend ::messages $::vesk::status::message
}}}

# edit --
#   A box more, by the interface.
proc edit {} {
    disarm
    vesk create box 0 [incr ::boxes] 0 0 [expr {$::boxes + 1}] 1 1
    ::vesk::ops::request
    wait_until {$::unsaved_changes && [llength [top_objects]] == $::boxes}
}
set boxes 0
dismiss

run {
    set model [work model.vesk]
    edit
    ::vesk::files::write $model
    # The folder takes no new file: written in place.
    edit
    set before [contents $model]
    arm model.vesk mkostemp EROFS
    point_at .
    key ctrl+s
    check "saved in place" {!$::unsaved_changes && [contents $model] ne $before}
    foreach {call how} {write ENOSPC fsync EIO rename EIO} {
        edit
        set before [contents $model]
        set messages {}
        arm model.vesk $call $how
        key ctrl+s
        check "$call, $how: the user is told" {[told $how]}
        disarm
        check "$call, $how: the old file is whole" {[contents $model] eq $before}
        check "$call, $how: nothing is left beside it" {[glob -nocomplain [work *~vesk*]] eq {}}
        check "$call, $how: the work counts as unsaved" {$::unsaved_changes}
        key ctrl+s
        check "$call, $how: the next save works" {!$::unsaved_changes && [contents $model] ne $before}
    }

    edit
    foreach {call how} {mkostemp ENOSPC write ENOSPC fsync EIO} {
        set messages {}
        arm .autosave.vesk $call $how
        check "a copy is begun" {[vesk autosave ""] eq "1"}
        check "copies: $call, $how: it fails" {[vesk autosave_result] eq "0"}
        disarm
        vesk get_world
        check "copies: $call, $how: the user is told" {[lsearch $messages "can't write the copy*"] >= 0}
        check "the next copy is begun" {[vesk autosave ""] eq "1"}
        check "and whole" {[vesk autosave_result] eq "1"}
    }

    set messages {}
    set before [contents [work veskprefs.txt]]
    arm veskprefs.txt write ENOSPC
    vesk save_settings
    check "settings: the user is told" {$messages ne {}}
    check "settings: the old ones are whole" {[contents [work veskprefs.txt]] eq $before}
    disarm
    check "the program goes on" {[vesk get_world] ne "" && [front .]}

    # The interface dies with the save: the file is the new one already.
    write [work before.vesk] [contents $model]
    arm model.vesk rename kill
    vesk file_save $model
    check "the process was killed" 0
}
