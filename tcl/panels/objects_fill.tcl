# objects_fill.tcl --
#   The objects panel: its rows are asked for, made, changed and taken away, many of them in slices.

# refresh --
#   Takes over a changed tree, names or flags. While the same objects stand in the same order only
#   the rows that differ are touched.
proc ::vesk::objects::refresh {} {
    variable told
    take [vesk object_rows_begin $told]
}

# take --
#   Takes over an answer of "object_rows_begin".
proc ::vesk::objects::take {answer} {
    variable told
    variable coming
    variable taken
    variable surfaces
    variable filtered
    variable filter
    if {[is_waiting] && ![lindex $answer 1] && [lindex $answer 5] > 0} {
        # Rows that are still to be made may have changed.
        set answer [vesk object_rows_begin 0]
    }
    set before [expr {[is_waiting] || $filtered ? "" : $told}]
    lassign $answer told anew objects hidden locked count
    show_count $objects $hidden $locked
    set surfaces [lindex [vesk get_counts] 3]
    if {$anew} {
        set edit [vesk object_rows_edit $told]
        if {$before ne "" && [lindex $edit 0] eq $before && $filter eq ""} {
            edit_rows {*}$edit
        } else {
            fill_rows $count
        }
    } elseif {$count > 0} {
        set coming $count
        set taken 0
        fit_numbers
        take_rows
    }
    strip_later
}

# is_waiting --
#   Whether rows are still to be made or changed.
proc ::vesk::objects::is_waiting {} {
    variable coming
    variable taken
    return [expr {$taken < $coming || [is_clearing]}]
}

# is_clearing --
#   Whether rows are still to be taken away.
proc ::vesk::objects::is_clearing {} {
    variable leaving
    return [expr {[llength $leaving] > 0}]
}

# change_rows --
#   Takes over other names, numbers and flags.
proc ::vesk::objects::change_rows {changed} {
    variable rows
    variable tree
    foreach {id parent type name surfaces visible locked} $changed {
        lassign [dict get $rows $id] old_parent old_type old_name old_surfaces
        dict set rows $id [list $parent $type $name $surfaces $visible $locked]
        # The flags are the strip's.
        if {($name ne $old_name || $surfaces != $old_surfaces) && [$tree exists $id]} {
            $tree item $id -text [shown_name $name] \
                -values [list [::vesk::arith::grouped $surfaces]]
        }
    }
}

# follow_counts --
#   Renews the numbers after an operation that changed surfaces but not the tree.
proc ::vesk::objects::follow_counts {} {
    variable surfaces
    if {[lindex [vesk get_counts] 3] != $surfaces} refresh
}

# fit_numbers --
#   No number is wider than that of all surfaces.
proc ::vesk::objects::fit_numbers {} {
    variable tree
    variable surfaces
    set widest [font measure TkDefaultFont "[::vesk::arith::grouped $surfaces]0"]
    $tree column surfaces -width [expr {max([::vesk::theme::px 58], $widest)}]
}

# fill --
#   Makes all rows anew.
proc ::vesk::objects::fill {} {
    take [vesk object_rows_begin 0]
}

# fill_rows --
#   Makes all rows anew, so many; open objects stay open.
proc ::vesk::objects::fill_rows {count} {
    variable rows
    variable filter
    variable icons
    variable filtered
    variable tree
    variable made 0
    if {!$filtered} note_open
    set wanted [string tolower $filter]
    set filtered [expr {$wanted ne ""}]
    # The images belong to tags: an image of each row would cost a walk over all rows at a change.
    foreach {type icon} $icons {
        $tree tag configure $type -image [::vesk::icons::get $icon dim]
        $tree tag configure $type-active -image [::vesk::icons::get $icon active]
    }
    change_all [dict keys $rows] 0 $count {} $wanted [lindex [$tree yview] 0]
}

# edit_rows --
#   Takes over rows most of which stay; the arguments are what "object_rows_edit" answers.
proc ::vesk::objects::edit_rows {before from count ids others places} {
    variable told
    foreach row $others {change_rows [vesk object_rows_part $told $row 1]}
    note_open
    change_all $ids $from $count $places "" ""
}

# change_all --
#   Begins to take some rows away, and then to make others.
#   ids     rows that go
#   from    the first that comes, in the executable's answer; `count` of them
#   places  parents, and the place of the first that comes among the rows below them; none: the last
#   wanted  what their names are to have, in lower case
#   top     where the list stands, as a share; "" where it stays there by itself
proc ::vesk::objects::change_all {ids from count places wanted top} {
    variable open
    variable coming
    variable taken $from
    variable leaving $ids
    variable leaving_above {}
    variable gone 0
    variable insert_at $places
    variable fill_state
    fit_numbers
    set fill_state [list $wanted [expr {[dict size $open] == 0}] [vesk get_world] $top]
    set coming [expr {$from + $count}]
    note_selection
    take_rows
}

# take_rows --
#   Makes or changes the rows that are waiting, for as long as nobody notices.
proc ::vesk::objects::take_rows {} {
    variable told
    variable coming
    variable taken
    variable rows
    variable fill_state
    variable at_once
    variable piece
    variable slice
    variable leaving
    after cancel ::vesk::objects::take_rows
    set many [expr {max($coming - $taken, [llength $leaving]) > $at_once}]
    if {$many && ![::vesk::ops::take_turn]} {
        after 1 ::vesk::objects::take_rows
        return
    }
    variable syncing 1
    set until [expr {$many ? [clock milliseconds] + $slice : inf}]
    while {[is_waiting] && [clock milliseconds] < $until} {
        if {[is_clearing]} {
            drop_piece
            continue
        }
        set count [expr {min($piece, $coming - $taken)}]
        set words [vesk object_rows_part $told $taken $count]
        if {$words eq ""} {
            # Somebody else has asked.
            set coming $taken
            after 1 ::vesk::objects::fill
            break
        }
        incr taken $count
        if {[llength $fill_state] > 0} {
            insert_rows $words {*}$fill_state
        } else {
            change_rows $words
        }
    }
    # As in show_selection.
    after idle {set ::vesk::objects::syncing 0}
    if {[is_waiting]} {
        after 1 ::vesk::objects::take_rows
        return
    }
    if {[llength $fill_state] > 0} filled
    strip_later
}

# drop_piece --
#   Takes some of the rows away that go. One that goes takes those below it along, so it comes after them.
proc ::vesk::objects::drop_piece {} {
    variable tree
    variable rows
    variable above
    variable marked
    variable leaving
    variable leaving_above
    variable gone
    variable piece
    set ids {}
    foreach id [lrange $leaving $gone [expr {$gone + $piece - 1}]] {
        if {[dict exists $above $id]} {
            lappend leaving_above $id
            continue
        }
        lappend ids $id
        dict unset rows $id
        dict unset marked $id
    }
    $tree delete [present $ids]
    incr gone $piece
    if {$gone < [llength $leaving]} {return}
    foreach id $leaving_above {dict unset above $id}
    set leaving $leaving_above
    set leaving_above {}
    set gone 0
}

# filled --
#   Ends what fill_rows began.
proc ::vesk::objects::filled {} {
    variable fill_state
    variable tree
    variable rows
    variable at_once
    variable insert_at {}
    # Who has scrolled meanwhile stays there. The tree counts its rows for the answer.
    set top [lindex $fill_state 3]
    if {$top ne "" && [lindex [$tree yview] 0] == 0} {$tree yview moveto $top}
    set fill_state {}
    show_empty
    if {[dict size $rows] > $at_once} {
        after 1 ::vesk::objects::show_filled
    } else {
        show_filled
    }
}

proc ::vesk::objects::show_filled {} {
    show_selection
    see_selected
}

proc ::vesk::objects::insert_rows {words wanted first_time world top} {
    variable rows
    variable tree
    variable open
    variable above
    variable made
    variable to_select
    variable insert_at
    set selected {}
    foreach {id parent type name surfaces visible locked} $words {
        dict set rows $id [list $parent $type $name $surfaces $visible $locked]
        dict set above $parent 1
        set at end
        if {[dict exists $insert_at $parent]} {
            set at [dict get $insert_at $parent]
            if {$at ne "end"} {dict incr insert_at $parent}
        }
        if {$wanted ne ""} {
            if {[string first $wanted [string tolower $name]] < 0} {continue}
            set parent {}
        } elseif {$parent == $world || ![$tree exists $parent]} {
            set parent {}
        }
        set opened [expr {$first_time && $parent eq {}}]
        if {[dict exists $open $id]} {set opened [dict get $open $id]}
        # There may be ten thousand rows: procedures are called only where they change the text.
        if {$surfaces >= 1000} {set surfaces [::vesk::arith::grouped $surfaces]}
        set text " $name"
        if {$name eq "" || [string first \n $name] >= 0} {set text [shown_name $name]}
        $tree insert $parent $at -id $id -text $text -tags [list $type] -open $opened \
            -values [list $surfaces]
        incr made
        if {[dict exists $to_select $id]} {lappend selected $id}
    }
    if {[llength $selected] > 0} {$tree selection add $selected}
}

# note_open --
#   Notes which of the rows with children are open.
proc ::vesk::objects::note_open {} {
    variable tree
    variable open
    variable above
    # Rows that were never made are as they were noted.
    if {![is_waiting]} {set open {}}
    foreach id [dict keys $above] {
        if {[$tree exists $id]} {dict set open $id [$tree item $id -open]}
    }
}

# show_empty --
#   Shows why the list is empty.
proc ::vesk::objects::show_empty {} {
    variable path
    variable tree
    variable filter
    variable made
    variable rows
    if {$filter eq "" ? [dict size $rows] > 0 : $made > 0} {
        place forget $path.empty
        return
    }
    $path.empty configure -text [expr {$filter eq "" \
        ? "No objects yet.\nDraw one with a tool at the left,\nor open a file."
        : "No object has this in its name."}]
    place $path.empty -in $tree -relx 0.5 -rely 0.4 -anchor center
}

proc ::vesk::objects::shown_name {name} {
    if {$name eq ""} {return " (no name)"}
    return " [string map {\n " "} $name]"
}

proc ::vesk::objects::show_count {count hidden locked} {
    variable path
    $path.head.count configure -text [::vesk::arith::grouped $count]
    ::vesk::status::show_badges $hidden $locked
}
