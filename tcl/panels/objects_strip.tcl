# objects_strip.tcl --
#   The eyes and locks beside the list of the objects panel: drawn for the visible rows on a canvas,
#   because a treeview shows pictures only in its first column.

proc ::vesk::objects::scroll {lines} {
    variable tree
    $tree yview scroll $lines units
    return -code break
}

proc ::vesk::objects::scrolled {first last} {
    variable path
    $path.bar set $first $last
    # Without the scrollbar the band of selected rows reaches the edge.
    if {$first <= 0 && $last >= 1} {
        grid remove $path.bar
        grid configure $path.strip -columnspan 2
    } else {
        grid $path.bar
        grid configure $path.strip -columnspan 1
    }
    strip_later
}

# strip_later --
#   Redraws the icons once, in the idle loop.
proc ::vesk::objects::strip_later {} {
    variable strip_pending
    if {!$strip_pending} {
        set strip_pending 1
        after idle ::vesk::objects::draw_strip
    }
}

# visible_rows --
#   The rows that can be seen as a whole: id -> {top bottom}.
proc ::vesk::objects::visible_rows {} {
    variable tree
    variable rows
    set height [winfo height $tree]
    set found {}
    variable first_box
    set id [$tree identify row 5 2]
    if {$id eq ""} {return {}}
    # The tree counts from its first row to that of a box, so one is asked for, while rows are as high.
    set row_height [ttk::style lookup Treeview -rowheight]
    if {![dict exists $first_box $row_height]} {
        set box [$tree bbox $id]
        if {$box eq ""} {return {}}
        set first_box [dict create $row_height $box]
    }
    lassign [dict get $first_box $row_height] x0 y0 w0 h0
    # The list does not draw a row that is not wholly visible.
    while {$id ne "" && $y0 + $h0 <= $height} {
        if {[dict exists $rows $id]} {dict set found $id [list $y0 [expr {$y0 + $h0}]]}
        incr y0 $h0
        set id [row_below $id [expr {$y0 + 1}]]
    }
    return $found
}

# row_below --
#   The row under one, at this height.
proc ::vesk::objects::row_below {id y} {
    variable tree
    variable above
    if {[dict exists $above $id] && [$tree item $id -open]} {return [$tree identify row 5 $y]}
    while {$id ne ""} {
        set next [$tree next $id]
        if {$next ne ""} {return $next}
        set id [$tree parent $id]
    }
    return ""
}

# marked_among --
#   Which of these rows the tree shows as selected. Where it has many such, to ask for all of them takes
#   longer than to ask the executable, and they are those of the model. While rows go, nothing is chosen.
proc ::vesk::objects::marked_among {ids} {
    variable tree
    variable chosen
    variable asked
    variable at_once
    variable fill_state
    variable marked
    if {[is_clearing]} {return [lmap id $ids {if {![dict exists $marked $id]} continue; set id}]}
    if {[llength $asked] > 0 || [llength $fill_state] > 0 || [llength $chosen] <= $at_once} {
        set selection [$tree selection]
        return [lmap id $ids {if {$id ni $selection} continue; set id}]
    }
    return [lmap id $ids on [vesk objects_are_selected $ids] {if {!$on} continue; set id}]
}

# draw_strip --
#   Draws the icons of the visible rows, on the band of the selected ones, and gives these the object's
#   icon that contrasts with it.
proc ::vesk::objects::draw_strip {} {
    variable strip_pending 0
    variable strip
    variable tree
    variable rows
    variable marked
    $strip delete all
    set width [winfo width $strip]
    set seen [visible_rows]
    set chosen [marked_among [dict keys $seen]]
    dict for {id place} $seen {
        lassign $place y0 y1
        lassign [dict get $rows $id] parent type name surfaces visible locked
        set on [expr {$id in $chosen}]
        if {$on != [dict exists $marked $id]} {
            $tree item $id -tags [list [expr {$on ? "$type-active" : $type}]]
            if {$on} {dict set marked $id 1} else {dict unset marked $id}
        }
        if {$on} {
            $strip create rectangle 0 $y0 $width $y1 -width 0 -fill [::vesk::theme::colour sel]
        }
        set middle [expr {($y0 + $y1) / 2}]
        set variant [expr {$on ? "active" : $visible ? "dim" : "disabled"}]
        $strip create image [::vesk::theme::px 13] $middle \
            -image [::vesk::icons::get [expr {$visible ? "eye" : "eye-off"}] $variant]
        if {$locked || $on} {
            $strip create image [::vesk::theme::px 38] $middle \
                -image [::vesk::icons::get [expr {$locked ? "lock" : "unlock"}] \
                    [expr {$on ? "active" : "normal"}]]
        }
    }
}

# strip_click --
#   A click on an eye or a lock; on a selected row it changes all selected rows.
proc ::vesk::objects::strip_click {x y} {
    variable tree
    variable rows
    set id [$tree identify row 5 $y]
    if {$id eq "" || ![dict exists $rows $id]} {return}
    lassign [dict get $rows $id] parent type name surfaces visible locked
    set ids [list $id]
    if {$id in [$tree selection]} {set ids [$tree selection]}
    if {$x < [::vesk::theme::px 26]} {
        ::vesk::ops::run objects_set $ids visible [expr {!$visible}]
    } else {
        ::vesk::ops::run objects_set $ids locked [expr {!$locked}]
    }
    vesk redraw_all
}
