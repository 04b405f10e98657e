# frontview.tcl --
#   The mouse and the keys in the flat views, in units of the model.

# key --
#   Keys go to the view below the pointer.
proc key {args} {
    exec xdotool key --delay 30 {*}$args
    ::test::pause 200
}

# spot --
#   Window place of a point of the front view after reset_views: 100 pixels a unit.
proc spot {x y {view xy}} {
    set w [::test::widget $view]
    return [list [expr {[winfo width $w] / 2 + round(100 * $x)}] \
        [expr {[winfo height $w] / 2 - round(100 * $y)}]]
}

# from_to --
#   Drags in a view from one point of it to another, with a modifier key held.
proc from_to {x0 y0 x1 y1 {modifier ""} {view xy}} {
    begin $x0 $y0 $x1 $y1 $modifier $view
    finish $modifier
}
proc begin {x0 y0 x1 y1 {modifier ""} {view xy}} {
    lassign [spot $x0 $y0 $view] px py
    lassign [spot $x1 $y1 $view] qx qy
    ::test::at $view $px $py
    if {$modifier ne ""} {exec xdotool keydown $modifier}
    exec xdotool mousedown 1
    ::test::pause 60
    for {set i 1} {$i <= 4} {incr i} {
        ::test::at $view [expr {$px + ($qx - $px) * $i / 4}] [expr {$py + ($qy - $py) * $i / 4}]
    }
    ::test::pause 120
}
proc finish {{modifier ""}} {
    exec xdotool mouseup 1
    if {$modifier ne ""} {exec xdotool keyup $modifier}
    ::test::pause 250
}
proc click_at {x y {modifier ""} {view xy}} {
    lassign [spot $x $y $view] px py
    ::test::at $view $px $py
    if {$modifier ne ""} {exec xdotool keydown $modifier}
    exec xdotool click 1
    if {$modifier ne ""} {exec xdotool keyup $modifier}
    ::test::pause 550
}
proc near {list wanted {tolerance 0.021}} {
    foreach a $list b $wanted {
        if {abs($a - $b) > $tolerance} {return 0}
    }
    return [expr {[llength $list] == [llength $wanted]}]
}
