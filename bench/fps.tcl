# fps.tcl --
#   Evaluated by the program: the speed of its views; with a size in VESK_FPS_SIZE that of the 3D view
#   alone, which gets it.

source [file join [file dirname [info script]] at_rest.tcl]

proc show_alone {name size} {
    set ::viewsetting $name
    update
    lassign [split $size x] width height
    set widget $::ToglWinName($name)
    wm geometry . [expr {[winfo width .] + $width - [winfo width $widget]}]x[expr {
        [winfo height .] + $height - [winfo height $widget]}]
    update
}

proc measure {} {
    vesk clear_selection
    set views {0 front 1 side 2 plan 3 3D}
    if {[info exists ::env(VESK_FPS_SIZE)]} {
        set views {3 3D}
        show_alone xyz $::env(VESK_FPS_SIZE)
    }
    at_rest
    foreach {view name} $views {
        foreach how {moving rest} {
            rest 300 ;# a motion ends only after a while
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
