# recovery_work.tcl --
#   A session that builds and never saves, until it is ended from outside: each step adds a box and
#   gives all of them a common name, so that a torn copy would be seen.

proc step {number} {
    vesk create box 0 $number 0 0 [expr {$number + 1}] 1 1
    vesk objects_set [vesk object_get_children [vesk get_world]] name "step $number"
    vesk select_all
    vesk move_with_undo 0 0.25 0
    set stream [open [file join $::env(VESK_TEST_WORK) steps] a]
    set written [vesk autosave ""]
    puts $stream "$number [expr {$written eq "1" ? "written" : "busy"}]"
    close $stream
    after 40 [list step [expr {$number + 1}]]
}
if {[info exists env(VESK_TEST_LEAVE)]} {
    after 1500 {vesk plugin_load $env(VESK_TEST_LEAVE)}
}
after 300 {step 1}
