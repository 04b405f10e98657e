# fps.tcl --
#   Evaluated by the program: the speed of its views.

proc measure {} {
    vesk clear_selection
    foreach {view name} {0 front 1 side 2 plan 3 3D} {
        foreach how {moving rest} {
            after 300 {set ::still 1} ;# a motion ends only after a while
            vwait ::still
            lassign [vesk view_benchmark $view $how 20] msecs layers
            puts [format "fps %8d triangles  %-5s %4dx%-4d %-6s %7.1f ms %6.1f frames/s  %s" \
                [expr {2 * [lindex [vesk get_counts] 3]}] $name \
                [winfo width $::ToglWinName([lindex {xy zy xz xyz} $view])] \
                [winfo height $::ToglWinName([lindex {xy zy xz xyz} $view])] \
                $how $msecs [expr {1000.0 / $msecs}] $layers]
        }
    }
    exit 0
}
after 1000 measure
