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
    if {[is_waiting] && ![lindex $answer 1] && [lindex $answer 5] > 0} {
        # Rows that are still to be made may have changed.
        set answer [vesk object_rows_begin 0]
    }
    lassign $answer told anew objects hidden locked count
    show_count $objects $hidden $locked
    set surfaces [lindex [vesk get_counts] 3]
    if {$anew} {
        fill_rows $count
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
    variable clearing
    return [expr {[llength $clearing] > 0}]
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
    variable tree
    variable filter
    variable icons
    variable open
    variable filtered
    variable coming
    variable taken 0
    variable clearing
    variable cleared 0
    variable leaving {}
    variable gone 0
    variable above
    variable fill_state
    variable marked {}
    if {!$filtered} note_open
    set top [lindex [$tree yview] 0]
    set clearing [parents_upwards]
    set above {}
    variable made 0
    set wanted [string tolower $filter]
    set filtered [expr {$wanted ne ""}]
    fit_numbers
    # The images belong to tags: an image of each row would cost a walk over all rows at a change.
    foreach {type icon} $icons {
        $tree tag configure $type -image [::vesk::icons::get $icon dim]
        $tree tag configure $type-active -image [::vesk::icons::get $icon active]
    }
    set fill_state [list $wanted [expr {[dict size $open] == 0}] [vesk get_world] $top]
    set coming $count
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
    after cancel ::vesk::objects::take_rows
    set many [expr {max($coming, [is_clearing] ? [dict size $rows] : 0) > $at_once}]
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
        set words [vesk object_rows_part $told $taken $piece]
        if {$words eq ""} {
            # Somebody else has asked.
            set coming $taken
            after 1 ::vesk::objects::fill
            break
        }
        incr taken $piece
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

# parents_upwards --
#   The rows with others below them, each after those below it: one that goes takes none along. Last
#   the top of the tree.
proc ::vesk::objects::parents_upwards {} {
    variable tree
    variable above
    return [concat [present [lreverse [dict keys $above]]] [list {}]]
}

# drop_piece --
#   Takes some of the rows away that are made anew.
proc ::vesk::objects::drop_piece {} {
    variable tree
    variable rows
    variable clearing
    variable cleared
    variable leaving
    variable gone
    variable piece
    if {$gone >= [llength $leaving]} {
        set leaving [$tree children [lindex $clearing $cleared]]
        set gone 0
        incr cleared
    }
    set ids [lrange $leaving $gone [expr {$gone + $piece - 1}]]
    foreach id $ids {dict unset rows $id}
    $tree delete [present $ids]
    incr gone $piece
    if {$cleared == [llength $clearing] && $gone >= [llength $leaving]} {
        set clearing {}
        set leaving {}
        set rows {} ;# those that the filter hid
    }
}

# filled --
#   Ends what fill_rows began.
proc ::vesk::objects::filled {} {
    variable fill_state
    variable tree
    variable taken
    variable at_once
    # Who has scrolled meanwhile stays there.
    if {[lindex [$tree yview] 0] == 0} {$tree yview moveto [lindex $fill_state 3]}
    set fill_state {}
    show_empty
    if {$taken > $at_once} {
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
    set selected {}
    foreach {id parent type name surfaces visible locked} $words {
        dict set rows $id [list $parent $type $name $surfaces $visible $locked]
        dict set above $parent 1
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
        $tree insert $parent end -id $id -text $text -tags [list $type] -open $opened \
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
    if {$made > 0} {
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
