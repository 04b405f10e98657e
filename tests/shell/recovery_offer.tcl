# recovery_offer.tcl --
#   The start after a session that did not end well: the question comes, Return opens the copy, and
#   what it holds is one of the steps, whole.

source [file join [file dirname [info script]] support.tcl]

# answer --
#   Waits for the question and presses Return as a person does, again when it was not heard. By
#   timers: while the question is open nothing else goes on.
proc answer {} {
    if {![winfo exists .question]} {
        if {$::asked eq ""} {after 50 answer}
        return
    }
    if {[front .question]} {
        if {$::asked eq ""} {shot recovery-offer}
        set ::asked [.question.in.text cget -text]
        point_at .question 30 30
        key Return
    }
    after 700 answer
}
set asked ""
answer

run {
    check "the offer was there" {[string match "*a model without a name*" $::asked]}
    wait_until {![winfo exists .question] && [llength [top_objects]] > 0}
    set names {}
    foreach id [top_objects] {
        lappend names [vesk object_get_name $id]
        check "a whole box" {[info_of $id vertices] == 8 && [info_of $id surfaces] == 6}
    }
    set count [llength $names]
    check "a model of $count boxes" {$count > 0}
    set step [expr {$count > 0 ? [lindex [lindex $names 0] 1] : 0}]
    # Written between adding and naming, the newest box is still called "cube".
    set odd [lsearch -all -inline -not -exact $names "step $step"]
    check "as it was at one step" {$step in [list $count [expr {$count - 1}]] && $odd in {{} cube}}
    check "which is unsaved work" {$::unsaved_changes}
    vesk recovery_drop [lindex [vesk recovery_list] 0 0]
    foreach copy [vesk recovery_list] {vesk recovery_drop [lindex $copy 0]}
    set ::unsaved_changes 0
}
