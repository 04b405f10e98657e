# chaos_recovered.tcl --
#   The start after chaos_window.tcl: the copy is offered, and stays as long as no copy of its own can be
#   written by this session.

source [file join [file dirname [info script]] support.tcl]

set ::env(CHAOS_AT) 0
set asked ""
set messages {}
trace add variable ::vesk::status::message write {apply {args {
    lappend ::messages $::vesk::status::message
}}}
when {[front .question]} {
    set asked [.question.in.text cget -text]
    array set ::env {CHAOS_FOLDER .autosave.vesk CHAOS_ONLY write CHAOS_HOW ENOSPC CHAOS_AT 1
        CHAOS_ROUND 1}
    point_at .question 30 30
    key Return
}
run {
    wait_until {$asked ne "" && ![winfo exists .question]}
    check "the offer names the file" {[string match "*model.vesk*" $asked]}
    check "the copy is open" {[llength [top_objects]] == 6}
    check "the new copy fails" {[vesk autosave_result] eq "0"}
    check "the user is told" {[lsearch $messages "no copy of this work*"] >= 0}
    check "and the old one stays" {[llength [vesk recovery_list]] == 1}
    set ::env(CHAOS_AT) 0
    vesk recovery_drop [lindex [vesk recovery_list] 0 0]
    set ::unsaved_changes 0
}
