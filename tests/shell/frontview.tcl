# frontview.tcl --
#   The mouse in the flat views, in units of the model: after reset_views 100 pixels are one unit.

# spot --
#   Place of a point in a view's pixels.
proc spot {x y {view xy}} {
    set w [widget $view]
    return [list [expr {[winfo width $w] / 2 + round(100 * $x)}] \
        [expr {[winfo height $w] / 2 - round(100 * $y)}]]
}

# from_to --
#   Drags from one point of a view to another, with a modifier key held.
proc from_to {x0 y0 x1 y1 {modifier ""} {view xy}} {
    begin $x0 $y0 $x1 $y1 $modifier $view
    release 1 $modifier
}
proc begin {x0 y0 x1 y1 {modifier ""} {view xy}} {
    hold [widget $view] {*}[spot $x0 $y0 $view] {*}[spot $x1 $y1 $view] 1 $modifier
}
proc click_at {x y {modifier ""} {count 1}} {
    press [widget xy] {*}[spot $x $y] 1 $count $modifier
}
