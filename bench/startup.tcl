# startup.tcl --
#   How long the program takes to start, against the interpreters it is built on, in one run.
#     tclsh8.6 bench/startup.tcl [build folder]
#   With a display (or under xvfb-run) also the time to the first drawn window.

set here [file dirname [file normalize [info script]]]
set program [file join [expr {$argc ? [lindex $argv 0] : "$here/../build"}] home vesk]
set work /tmp/vesk-startup-[pid]
file mkdir $work
set ::env(USERPROFILE) $work
set ::env(LANG) C.UTF-8

proc write {name text} {
    set stream [open [file join $::work $name] w]
    puts -nonewline $stream $text
    close $stream
    return [file join $::work $name]
}

# best --
#   The shortest of several runs, in milliseconds: until the script says that its window is drawn, else
#   until the end.
proc best {runs args} {
    set shortest 1e9
    for {set i 0} {$i < $runs} {incr i} {
        set from [clock microseconds]
        set said [exec {*}$args 2>/dev/null]
        set until [clock microseconds]
        regexp {drawn at (\d+)} $said -> until
        set shortest [expr {min($shortest, ($until - $from) / 1000.0)}]
    }
    return $shortest
}

proc report {what msecs peer peer_msecs goal} {
    puts [format "startup  %-28s %7.1f ms   %-6s %6.1f ms   ratio %4.1f   goal %s ms" \
        $what $msecs $peer $peer_msecs [expr {$msecs / $peer_msecs}] $goal]
}

write veskprefs.txt "VESKPR 12\nshow_startup_tips FALSE\nwindows_show_console FALSE\n"
set empty [write empty.tcl ""]
report "batch, empty script" [best 20 $program -batch $empty] tclsh [best 20 tclsh8.6 $empty] 30
if {[info exists ::env(DISPLAY)]} {
    set leave [write leave.tcl "update\nputs \"drawn at \[clock microseconds\]\"\nexit\n"]
    report "window, four views drawn" [best 5 $program -script $leave] \
        wish [best 5 wish8.6 $leave] 250
}
file delete -force $work
