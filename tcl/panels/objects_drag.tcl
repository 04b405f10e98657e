# objects_drag.tcl --
#   Dragging rows of the objects panel: to another place in the list, or into a group.

# drag_press --
#   A press on a name may become a drag of the selected rows, unless it adds or takes out (`picks`).
proc ::vesk::objects::drag_press {x y {picks 0}} {
    variable tree
    variable filter
    variable drag ""
    variable pointed
    set row [$tree identify row $x $y]
    if {[string match *indicator [$tree identify element $x $y]]} {
        # The arrow opens and closes; it selects nothing.
        focus $tree
        ttk::treeview::Toggle $tree $row
        return -code break
    }
    set pointed $row
    if {$picks || $row eq "" || $filter ne ""} {return}
    set drag [list $row $x $y 0 ""]
    # Several selected rows go together: the press must not choose one of them.
    if {$row in [$tree selection] && [llength [$tree selection]] > 1} {
        focus $tree
        return -code break
    }
}

# drag_motion --
#   Shows the target of the rows: a line between two rows, or a bar beside the group.
proc ::vesk::objects::drag_motion {x y} {
    variable tree
    variable drag
    if {$drag eq ""} {return}
    lassign $drag row x0 y0 started
    if {!$started && abs($y - $y0) < [::vesk::theme::px 6]} {return}
    set target [drop_place $x $y]
    set drag [list $row $x0 $y0 1 $target]
    show_drop $target
    if {$y < [::vesk::theme::px 8]} {$tree yview scroll -1 units}
    if {$y > [winfo height $tree] - [::vesk::theme::px 8]} {$tree yview scroll 1 units}
}

# drop_place --
#   The target at a place of the list: {parent before row how}; how is line, below, into or end.
proc ::vesk::objects::drop_place {x y} {
    variable tree
    variable rows
    set row [$tree identify row $x $y]
    if {$row eq ""} {return [list [vesk get_world] 0 "" end]}
    lassign [$tree bbox $row] bx by width height
    lassign [dict get $rows $row] parent type
    set part [expr {double($y - $by) / max(1, $height)}]
    if {$type eq "group" && $part > 0.25 && ($part < 0.75 || [$tree item $row -open])} {
        return [list $row [expr {$part < 0.75 ? 0 : [lindex [concat [$tree children $row] 0] 0]}] \
            $row into]
    }
    if {$part < 0.5} {return [list $parent $row $row line]}
    set next [$tree next $row]
    return [list $parent [expr {$next eq "" ? 0 : $next}] $row below]
}

proc ::vesk::objects::show_drop {target} {
    variable tree
    lassign $target parent before row how
    destroy $tree.drop
    $tree configure -cursor [expr {$row eq "" ? "bottom_side" : "sb_v_double_arrow"}]
    if {$row eq ""} {return}
    lassign [$tree bbox $row #0] x y width height
    if {$y eq ""} {return}
    ::vesk::theme::on [frame $tree.drop] ring
    set thick [::vesk::theme::px 2]
    switch -- $how {
        line  {place $tree.drop -x $x -y [expr {$y - 1}] -relwidth 1 -height $thick}
        below {place $tree.drop -x $x -y [expr {$y + $height - 1}] -relwidth 1 -height $thick}
        into  {place $tree.drop -x $x -y $y -width [::vesk::theme::px 3] -height $height}
    }
}

proc ::vesk::objects::drag_release {} {
    variable tree
    variable drag
    variable rows
    if {$drag eq ""} {return}
    lassign $drag row x y started target
    drag_end
    if {!$started && $row in [$tree selection] && [llength [$tree selection]] > 1} {
        variable asked {} ;# no group is taken out: one row is chosen
        $tree selection set [list $row]
    }
    if {!$started || $target eq ""} {return}
    lassign $target parent before
    set ids [$tree selection]
    if {$row ni $ids} {set ids [list $row]}
    # In the order of the list, without the rows whose group moves too.
    set kept {}
    foreach id [dict keys $rows] {
        if {$id ni $ids} {continue}
        set above [lindex [dict get $rows $id] 0]
        while {[dict exists $rows $above] && $above ni $ids} {
            set above [lindex [dict get $rows $above] 0]
        }
        if {![dict exists $rows $above]} {lappend kept $id}
    }
    ::vesk::ops::run objects_place $kept $parent $before
    if {[$tree exists $parent]} {$tree item $parent -open 1}
}

proc ::vesk::objects::drag_end {} {
    variable tree
    variable drag ""
    destroy $tree.drop
    $tree configure -cursor ""
}
