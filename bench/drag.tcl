# drag.tcl --
#   Evaluated by the program: drags a square of vertices in the middle of a terrain across the plan view,
#   and tells what a motion takes until the picture shows it.

set side 31 ;# vertices
set steps 60

source [file join [file dirname [info script]] at_rest.tcl]

proc middle_vertices {} {
    set row [expr {round(sqrt([lindex [vesk get_counts] 5]))}]
    set first [expr {($row - $::side) / 2}]
    set numbers {}
    for {set i 0} {$i < $::side} {incr i} {
        set from [expr {($first + $i) * $row + $first}]
        lappend numbers $from-[expr {$from + $::side - 1}]
    }
    return [join $numbers ,]
}

# shown --
#   Lets events in until the vertices that moved were handed to the graphics device, and drawn.
proc shown {uploaded} {
    set end [expr {[clock milliseconds] + 10000}]
    while {[vesk view_uploaded_bytes] == $uploaded && [clock milliseconds] < $end} {
        after 1 {set ::looked 1}
        vwait ::looked
    }
    update idletasks
}

proc timed {name script} {
    set from [clock microseconds]
    set uploaded [vesk view_uploaded_bytes]
    uplevel 1 $script
    shown $uploaded
    set msecs [expr {([clock microseconds] - $from) / 1000.0}]
    if {$name ne ""} {puts [format "drag %-24s %8.1f ms" $name $msecs]}
    return $msecs
}

proc measure {} {
    vesk load_file $::env(VESK_ANSWER_MODEL)
    vesk set_select_mode vertex
    vesk clear_selection
    vesk select_elements set [lindex [vesk object_get_children [vesk get_world]] 0]:[middle_vertices]
    at_rest
    set view $::ToglWinName(xz)
    set x [expr {[winfo width $view] / 2}]
    set y [expr {[winfo height $view] / 2}]
    timed "press, first motion" {
        event generate $view <ButtonPress-1> -x $x -y $y
        event generate $view <B1-Motion> -x [expr {$x + 6}] -y $y
    }
    set times {}
    set before [processor_time /task/[pid]]
    for {set i 1} {$i <= $::steps} {incr i} {
        lappend times [timed "" {
            event generate $view <B1-Motion> -x [expr {$x + 6 + $i % 20}] -y [expr {$y + $i % 7}]
        }]
    }
    set times [lsort -real $times]
    puts [format "drag motion: least %.1f, median %.1f, most %.1f ms, processor %.1f ms  %s" \
        [lindex $times 0] [lindex $times [expr {$::steps / 2}]] [lindex $times end] \
        [expr {([processor_time /task/[pid]] - $before) / double($::steps)}] [vesk view_layers 2]]
    timed "release" {event generate $view <ButtonRelease-1> -x $x -y $y}
    exit 0
}
after 1000 measure
